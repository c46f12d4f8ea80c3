// Writes the example modules, one labelled image each, into the folder given as argument:
//    make_modules examples/modules
// The modules and their vendors are invented. The same images come out of every run.
#include "examples/example_modules.h"
#include "tests/support/SfpImageBuilder.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

namespace Examples {
namespace {

using XcvrTest::SfpImageBuilder;

SfpImageBuilder module( Vendor vendor, char const * partNumber, char const * serialNumber ) {
   return SfpImageBuilder()
      .raw( "extIdentifier", 4 )
      .text( "vendorName", vendor.name )
      .raw( "vendorOui", vendor.oui )
      .text( "vendorPn", partNumber )
      .text( "vendorRev", "A1" )
      .text( "vendorSn", serialNumber )
      .text( "dateCode", "241015" )
      .bit( "options", "Tx disable" )
      .bit( "options", "Rx LOS" );
}

enum Connector : uint8_t { lc = 0x07, copperPigtail = 0x21, rj45 = 0x22 };
enum Encoding : uint8_t { encoding8b10b = 1, encoding64b66b = 6 };

void line( SfpImageBuilder & sfp, Connector connector, Encoding encoding, double megabaud ) {
   sfp.raw( "connector", connector )
      .raw( "encoding", encoding )
      .value( "bitrateNominal", megabaud );
}

void wavelength( SfpImageBuilder & sfp, unsigned nanometres, unsigned hundredths = 0 ) {
   sfp.raw( "laserWavelengthInteger", nanometres ).raw( "laserWavelengthFractional", hundredths );
}

void monitor( SfpImageBuilder & sfp, std::string const & threshold, std::string const & live,
              Monitor const & m ) {
   sfp.value( threshold + "HighAlarm", m.highAlarm )
      .value( threshold + "LowAlarm", m.lowAlarm )
      .value( threshold + "HighWarn", m.highWarn )
      .value( threshold + "LowWarn", m.lowWarn )
      .value( live, m.now );
}

/// A linear calibration: value = raw × slope + offset, offset in raw units.
struct Calibration {
   double slope;
   double offset;
};

/// Stores the calibration of a quantity and what the module has to state to come out at its values.
void calibratedMonitor( SfpImageBuilder & sfp, std::string const & threshold,
                        std::string const & live, Calibration const & c, double scale,
                        Monitor const & m ) {
   sfp.value( live + "Slope", c.slope ).value( live + "Offset", c.offset );
   auto const raw = [&]( double value ) { return ( value - c.offset * scale ) / c.slope; };
   monitor( sfp, threshold, live,
            { raw( m.highAlarm ), raw( m.lowAlarm ), raw( m.highWarn ), raw( m.lowWarn ),
              raw( m.now ) } );
}

void diagnostics( SfpImageBuilder & sfp, char const * calibration ) {
   sfp.bit( "diagsMonitoringType", "digital diagnostics" )
      .bit( "diagsMonitoringType", calibration )
      .bit( "diagsMonitoringType", "received power is average power" )
      .bit( "enhancedOptions", "alarm and warning flags" )
      .bit( "enhancedOptions", "soft Tx disable" )
      .bit( "enhancedOptions", "soft Tx fault" )
      .bit( "enhancedOptions", "soft Rx LOS" )
      .bit( "options", "Tx fault" )
      .raw( "revision", 8 );
}

void internalDiagnostics( SfpImageBuilder & sfp, double celsius, double volts, Monitor const & bias,
                          Monitor const & txPower, Monitor const & rxPower ) {
   diagnostics( sfp, "internally calibrated" );
   monitor( sfp, "domTemp", "domTemperature", { 75, -5, 70, 0, celsius } );
   monitor( sfp, "domVolt", "domSupplyVoltage", voltage( volts ) );
   monitor( sfp, "domBias", "domBiasCurrent", bias );
   monitor( sfp, "domTxPower", "domTxPower", txPower );
   monitor( sfp, "domRxPower", "domRxPower", rxPower );
}

SfpImageBuilder tenGigSr() {
   SfpImageBuilder sfp = module( northlight, "NL-10G-SR", "NL24100001" );
   line( sfp, lc, encoding64b66b, 10300 );
   wavelength( sfp, 850 );
   sfp.bit( "compliance", "10GBASE-SR" )
      .value( "lengthOm1", 30 )
      .value( "lengthOm2", 80 )
      .value( "lengthOm3", 300 )
      .value( "lengthCopper", 40 ); // of an optical module: 400 m of OM4
   internalDiagnostics( sfp, 36.4, 3.291, { 12, 2, 11, 3, 6.24 }, power( 2, -9.3, -1, -7.3, -2.31 ),
                        power( 2, -13.9, -1, -11.1, -4.08 ) );
   return sfp;
}

SfpImageBuilder tenGigLrExternallyCalibrated() {
   SfpImageBuilder sfp = module( oakfiber, "OF-LR-10-XC", "OF24100002" );
   line( sfp, lc, encoding64b66b, 10300 );
   wavelength( sfp, 1310 );
   sfp.bit( "compliance", "10GBASE-LR" ).value( "length9umKm", 10 ).value( "length9um100m", 10000 );
   diagnostics( sfp, "externally calibrated" );
   calibratedMonitor( sfp, "domTemp", "domTemperature", { 1.0234375, -384 }, 1 / 256.,
                      { 80, -10, 75, -5, 41.75 } );
   calibratedMonitor( sfp, "domVolt", "domSupplyVoltage", { 0.98828125, 210 }, 0.0001,
                      voltage( 3.318 ) );
   calibratedMonitor( sfp, "domBias", "domBiasCurrent", { 1.5, -120 }, 0.002,
                      { 85, 15, 80, 20, 38.6 } );
   calibratedMonitor( sfp, "domTxPower", "domTxPower", { 2.25, 64 }, 0.0001,
                      power( 3.5, -12.2, 0.5, -8.2, -2.4 ) );
   // The receiver is calibrated by a polynomial of its converter's counts, in 0.1 µW:
   //    P( r ) = 3e-12 r^4 - 2.1e-8 r^3 + 1.8e-4 r^2 + 2.35 r - 12.5
   sfp.value( "domRxPower4", 3e-12 )
      .value( "domRxPower3", -2.1e-8 )
      .value( "domRxPower2", 1.8e-4 )
      .value( "domRxPower1", 2.35 )
      .value( "domRxPower0", -12.5 )
      .raw( "domRxPowerHighAlarm", 5539 ) // 2.5 dBm
      .raw( "domRxPowerLowAlarm", 138 )   // -15.0 dBm
      .raw( "domRxPowerHighWarn", 3866 )  // 0.5 dBm
      .raw( "domRxPowerLowWarn", 172 )    // -14.0 dBm
      .raw( "domRxPower", 1500 );         // -4.1 dBm
   return sfp;
}

SfpImageBuilder twentyFiveGigSr() {
   SfpImageBuilder sfp = module( northlight, "NL-25G-SR", "NL24100003" );
   line( sfp, lc, encoding64b66b, 25500 ); // the largest code: the rate is in the next field
   wavelength( sfp, 850 );
   sfp.raw( "bitrateMax", 103 ) // × 250 MBd
      .raw( "complianceExtended", 0x02 )
      .value( "lengthOm3", 70 )
      .value( "lengthCopper", 10 ) // 100 m of OM4
      .bit( "options", "retimer or CDR" )
      .bit( "options", "rate select" );
   internalDiagnostics( sfp, 43.7, 3.274, { 12, 2, 11, 3, 7.118 },
                        power( 4, -9.4, 2.4, -8.4, -0.62 ), power( 4, -12.3, 2.4, -10.3, -1.95 ) );
   return sfp;
}

SfpImageBuilder gigabitCopper() {
   SfpImageBuilder sfp = module( oakfiber, "OF-1G-T", "OF24100004" );
   line( sfp, rj45, encoding8b10b, 1300 );
   sfp.bit( "compliance", "1000BASE-T" ).value( "lengthCopper", 100 );
   return sfp.a2hMissing();
}

SfpImageBuilder tenGigPassiveCable() {
   SfpImageBuilder sfp = module( oakfiber, "OF-CR-10-3M", "OF24100005" );
   line( sfp, copperPigtail, encoding64b66b, 10300 );
   sfp.bit( "compliance", "passive cable" )
      .value( "lengthCopper", 3 )
      .raw( "passiveAttenuation", 0x0100 ); // complies with SFF-8431 appendix E
   return sfp.a2hMissing();
}

SfpImageBuilder tunableDwdm() {
   SfpImageBuilder sfp = module( northlight, "NL-DWDM-T80", "NL24100006" );
   line( sfp, lc, encoding64b66b, 11300 );
   wavelength( sfp, 1552, 52 );
   sfp.raw( "identifier", 0x0B )
      .bit( "compliance", "10GBASE-ER" )
      .value( "length9umKm", 80 )
      .value( "length9um100m", 25500 ) // more than the field can say
      .bit( "options", "tunable transmitter" )
      .bit( "options", "paging" )
      .bit( "options", "cooled laser" )
      .bit( "options", "power level 2" );
   internalDiagnostics( sfp, 51.2, 3.302, { 120, 20, 110, 30, 71.4 }, power( 4, -4, 3, -1, 1.52 ),
                        power( -5, -26, -7, -24, -16.35 ) );
   // Channel 37 of a 50 GHz grid from 191.3 THz: 193.1 THz.
   sfp.raw( "tuningPageSelect", 2 )
      .value( "tuningFirstFrequencyTHz", 191 )
      .value( "tuningFirstFrequencyGHz", 300 )
      .value( "tuningLastFrequencyTHz", 196 )
      .value( "tuningLastFrequencyGHz", 100 )
      .value( "tuningGridSpacingGHz", 50 )
      .raw( "tuningChannel", 37 )
      .value( "tuningWavelength", 1552.5 );
   return sfp;
}

SfpImageBuilder gigabitBidi() {
   SfpImageBuilder sfp = module( oakfiber, "OF-1G-BX-U", "OF24100007" );
   line( sfp, lc, encoding8b10b, 1300 );
   wavelength( sfp, 1310 );
   sfp.bit( "compliance", "BASE-BX10" ).value( "length9umKm", 10 ).value( "length9um100m", 10000 );
   internalDiagnostics( sfp, 39.1, 3.325, { 60, 3, 55, 5, 14.8 }, power( 0, -12, -1, -10, -6.2 ),
                        power( 0, -24, -1, -22, -9.47 ) );
   return sfp;
}

SfpImageBuilder badChecksum() {
   SfpImageBuilder sfp = module( northlight, "NL-1G-SX", "NL24100008" );
   line( sfp, lc, encoding8b10b, 1300 );
   wavelength( sfp, 850 );
   sfp.bit( "compliance", "1000BASE-SX" ).value( "lengthOm1", 270 ).value( "lengthOm2", 550 );
   internalDiagnostics( sfp, 28.6, 3.287, { 12, 1, 11, 2, 5.6 }, power( -1, -12, -2, -10, -5.1 ),
                        power( 1, -20, 0, -18, -18.9 ) );
   return sfp.bit( "warningFlags", "Rx power low" ).checksumBroken( "storedCcExt" );
}

/// Too hot, and the fibre to its receiver is out.
SfpImageBuilder alarmed() {
   SfpImageBuilder sfp = module( oakfiber, "OF-10G-LR", "OF24100009" );
   line( sfp, lc, encoding64b66b, 10300 );
   wavelength( sfp, 1310 );
   sfp.bit( "compliance", "10GBASE-LR" ).value( "length9umKm", 10 ).value( "length9um100m", 10000 );
   internalDiagnostics( sfp, 78.25, 3.124, { 85, 15, 80, 20, 82.7 },
                        power( 3.5, -12.2, 0.5, -8.2, -2.75 ),
                        power( 2.5, -18.4, 0.5, -14.4, -31.5 ) );
   return sfp.bit( "domStatusBits", "Rx LOS" )
      .bit( "alarmFlags", "temperature high" )
      .bit( "alarmFlags", "Rx power low" )
      .bit( "warningFlags", "temperature high" )
      .bit( "warningFlags", "voltage low" )
      .bit( "warningFlags", "Tx bias high" )
      .bit( "warningFlags", "Rx power low" );
}

std::string hex( size_t byte ) {
   constexpr char const * digits = "0123456789abcdef";
   return { digits[byte >> 4 & 15], digits[byte & 15] };
}

/// A section of a labelled image. The program's own writer is not used: it comes with the program's
/// packages, and examples are built without these too.
void writePage( std::ostream & out, std::string_view label, std::string_view bytes ) {
   if ( bytes.empty() ) {
      return;
   }
   out << "\n[" << label << "]";
   for ( size_t at = 0; at < bytes.size(); ++at ) {
      out << ( at % 16 == 0 ? "\n" + hex( at ) + ": " : " " )
          << hex( static_cast<unsigned char>( bytes[at] ) );
   }
   out << "\n";
}

bool write( std::filesystem::path const & folder, Example const & example ) {
   std::ofstream out( folder / ( std::string( example.name ) + ".txt" ) );
   out << "# " << example.about
       << "\n# Made by examples/make_modules.cpp; the vendor is invented.\n";
   for ( Page const & page : example.pages ) {
      writePage( out, page.label, page.bytes );
   }
   return out.flush().good();
}

Example sfp( char const * name, char const * about, SfpImageBuilder const & module ) {
   return { name, about, { { "a0h", module.a0h() }, { "a2h", module.a2h() } } };
}

std::vector<Example> sfpExamples() {
   return {
      sfp( "10gbase-sr", "10GBASE-SR, diagnostics calibrated internally", tenGigSr() ),
      sfp( "10gbase-lr-external", "10GBASE-LR, diagnostics calibrated externally",
           tenGigLrExternallyCalibrated() ),
      sfp( "25gbase-sr", "25GBASE-SR", twentyFiveGigSr() ),
      sfp( "1000base-t", "1000BASE-T copper module, no diagnostics", gigabitCopper() ),
      sfp( "10gbase-cr", "10GBASE-CR passive copper cable of 3 m, no diagnostics",
           tenGigPassiveCable() ),
      sfp( "dwdm-tunable", "10G DWDM module for 80 km, tunable, with its tuning page",
           tunableDwdm() ),
      sfp( "1000base-bx10-u", "1000BASE-BX10, upstream end of a single fibre", gigabitBidi() ),
      sfp( "bad-checksum", "1000BASE-SX whose extended checksum is wrong, with a weak signal",
           badChecksum() ),
      sfp( "alarms", "10GBASE-LR that is too hot and receives no light", alarmed() ),
   };
}

} // namespace
} // namespace Examples

int main( int argc, char ** argv ) {
   if ( argc != 2 ) {
      std::cerr << "usage: make_modules FOLDER\n";
      return 2;
   }
   for ( auto const & examples : { Examples::sfpExamples(), Examples::qsfpExamples() } ) {
      for ( Examples::Example const & example : examples ) {
         if ( !Examples::write( argv[1], example ) ) {
            std::cerr << "make_modules: cannot write " << example.name << " into " << argv[1]
                      << "\n";
            return 1;
         }
      }
   }
   return 0;
}

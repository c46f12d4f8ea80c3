// The QSFP modules among the examples.
#include "examples/example_modules.h"
#include "tests/support/QsfpImageBuilder.h"

#include <array>

namespace Examples {
namespace {

using XcvrTest::QsfpImageBuilder;

enum Identifier : uint8_t { qsfpPlus = 13, qsfp28 = 17 };
enum Revision : uint8_t { sff8436 = 1, sff8636r2p5 = 7, sff8636r2p8 = 8 };
enum Connector : uint8_t { lc = 0x07, mpo = 0x0C, noConnector = 0x23 };
constexpr uint8_t encoding64b66b = 5;
enum Technology : uint8_t { vcsel850 = 0x00, dfb1310 = 0x40, eml1310 = 0x60, copper = 0xA0 };

QsfpImageBuilder module( Vendor vendor, char const * partNumber, char const * serialNumber,
                         Identifier identifier, Revision revision ) {
   return QsfpImageBuilder()
      .identifier( identifier )
      .raw( "revisionCompliance", revision )
      .bit( "moduleStatus", "interrupt not asserted" )
      .text( "vendorName", vendor.name )
      .raw( "vendorOui", vendor.oui )
      .text( "vendorPn", partNumber )
      .text( "vendorRev", "A1" )
      .text( "vendorSn", serialNumber )
      .text( "dateCode", "241015" )
      .value( "maxCaseTemp", 70 )
      .missing( "02h" )
      .missing( "20h" )
      .missing( "21h" );
}

void line( QsfpImageBuilder & qsfp, Connector connector, Technology technology, double megabaud ) {
   qsfp.raw( "connector", connector )
      .raw( "encoding", encoding64b66b )
      .raw( "deviceTech", technology );
   if ( megabaud > 25400 ) { // more than the field can say
      qsfp.raw( "bitrateNominal", 255 ).value( "bitrateExtended", megabaud );
   } else {
      qsfp.value( "bitrateNominal", megabaud );
   }
}

void extendedCode( QsfpImageBuilder & qsfp, uint8_t code ) {
   qsfp.bit( "compliance", "extended compliance" ).raw( "complianceExtended", code );
}

void wavelength( QsfpImageBuilder & qsfp, double nanometres, double tolerance ) {
   qsfp.value( "laserWavelength", nanometres ).value( "wavelengthTolerance", tolerance );
}

void opticalOptions( QsfpImageBuilder & qsfp ) {
   for ( char const * option : { "Tx disable", "Tx fault", "Tx LOS", "Tx squelch",
                                 "Rx output disable", "Rx squelch disable" } ) {
      qsfp.bit( "options", option );
   }
}

void retimers( QsfpImageBuilder & qsfp ) {
   qsfp.bit( "identifierExtended", "Tx CDR" )
      .bit( "identifierExtended", "Rx CDR" )
      .raw( "cdrControl", 0xff );
   for ( char const * option :
         { "Tx CDR control", "Rx CDR control", "Tx CDR loss of lock", "Rx CDR loss of lock" } ) {
      qsfp.bit( "options", option );
   }
}

void thresholds( QsfpImageBuilder & qsfp, std::string const & monitor, Monitor const & m ) {
   qsfp.value( monitor + "HighAlarm", m.highAlarm )
      .value( monitor + "LowAlarm", m.lowAlarm )
      .value( monitor + "HighWarn", m.highWarn )
      .value( monitor + "LowWarn", m.lowWarn );
}

/// A quantity of the lanes: thresholds, and values as multiples of that of the first lane.
void lanes( QsfpImageBuilder & qsfp, std::string const & monitor, Monitor const & m ) {
   constexpr std::array factors{ 1., 0.94, 1.07, 1.01 };
   thresholds( qsfp, monitor, m );
   for ( size_t lane = 0; lane < factors.size(); ++lane ) {
      qsfp.value( monitor + std::to_string( lane + 1 ), m.now * factors[lane] );
   }
}

void diagnostics( QsfpImageBuilder & qsfp, double celsius, double volts, Monitor const & bias,
                  Monitor const & rxPower ) {
   Monitor const supply = voltage( volts );
   thresholds( qsfp, "temp", { 75, -5, 70, 0, celsius } );
   thresholds( qsfp, "voltage", supply );
   qsfp.value( "temperature", celsius ).value( "supplyVoltage", volts );
   lanes( qsfp, "txBias", bias );
   lanes( qsfp, "rxPower", rxPower );
}

void txPower( QsfpImageBuilder & qsfp, Monitor const & m ) {
   qsfp.bit( "diagsMonitoringType", "Tx power monitor" )
      .bit( "diagsMonitoringType", "received power is average power" );
   lanes( qsfp, "txPower", m );
}

QsfpImageBuilder fortyGigSr4() {
   QsfpImageBuilder qsfp = module( northlight, "NL-40G-SR4", "NL24100009", qsfpPlus, sff8636r2p5 );
   line( qsfp, mpo, vcsel850, 10300 );
   wavelength( qsfp, 850, 10 );
   opticalOptions( qsfp );
   qsfp.bit( "compliance", "40GBASE-SR4" ).value( "lengthOm3", 100 ).value( "lengthOm4", 150 );
   diagnostics( qsfp, 31.2, 3.297, { 10, 2, 9, 3, 6.5 }, power( 2.4, -12, 1, -9.5, -1.7 ) );
   txPower( qsfp, power( 3, -9.6, 1, -7.6, -0.9 ) );
   return qsfp;
}

QsfpImageBuilder hundredGigCwdm4() {
   QsfpImageBuilder qsfp = module( oakfiber, "OF-CWDM4-2", "OF24100010", qsfp28, sff8636r2p8 );
   line( qsfp, lc, dfb1310, 25750 );
   wavelength( qsfp, 1301, 36.5 );
   extendedCode( qsfp, 0x06 );
   opticalOptions( qsfp );
   qsfp
      .raw( "identifierExtended", 0xC0 ) // power class 4
      .value( "lengthSmf", 2 )
      .bit( "deviceTech", "active wavelength control" )
      .bit( "deviceTech", "cooled transmitter" )
      .bit( "diagsMonitoringType", "temperature monitor" )
      .bit( "diagsMonitoringType", "supply voltage monitor" );
   retimers( qsfp );
   diagnostics( qsfp, 44.8, 3.281, { 90, 20, 85, 25, 41.6 },
                power( 3.5, -14.5, 2.5, -11.5, -2.4 ) );
   txPower( qsfp, power( 3.5, -9.5, 2.5, -6.5, 0.6 ) );
   for ( char const * option : { "Rx output amplitude", "Rx output emphasis", "Tx input EQ fixed",
                                 "Tx input EQ auto-adaptive" } ) {
      qsfp.bit( "options", option );
   }
   return qsfp.raw( "rxOutputAmplitude", 0x2222 )
      .raw( "rxOutputEmphasis", 0x1111 )
      .raw( "txInputEqualization", 0x3333 )
      .value( "rxPower2", milliwatts( -12.2 ) )
      .bit( "rxPowerFlags", "Rx power 2 low warning" );
}

QsfpImageBuilder hundredGigCr4() {
   QsfpImageBuilder qsfp = module( oakfiber, "OF-CR4-3M", "OF24100011", qsfp28, sff8636r2p8 );
   line( qsfp, noConnector, copper, 25750 );
   extendedCode( qsfp, 0x0B );
   return qsfp.bit( "compliance", "40GBASE-CR4" )
      .value( "lengthCableOrOm4", 3 )
      .value( "attenuation2p5GHz", 6 )
      .value( "attenuation5GHz", 9 )
      .value( "attenuation7GHz", 11 )
      .value( "attenuation12p9GHz", 16 )
      .flat();
}

QsfpImageBuilder hundredGigActiveCable() {
   QsfpImageBuilder qsfp = module( northlight, "NL-AOC-100-10", "NL24100012", qsfp28, sff8636r2p8 );
   line( qsfp, noConnector, vcsel850, 25750 );
   wavelength( qsfp, 850, 10 );
   extendedCode( qsfp, 0x18 );
   opticalOptions( qsfp );
   qsfp.raw( "identifierExtended", 0x80 ).value( "lengthActiveCable", 10 ); // power class 3
   retimers( qsfp );
   diagnostics( qsfp, 38.9, 3.312, { 12, 2, 11, 3, 6.9 }, power( 3.4, -11, 2.4, -8, -0.8 ) );
   txPower( qsfp, power( 3.4, -9.4, 2.4, -8.4, -0.4 ) );
   return qsfp;
}

/// Of before SFF-8636: four power classes, no monitor of Tx power, received power as OMA.
QsfpImageBuilder fortyGigLr4OfSff8436() {
   QsfpImageBuilder qsfp = module( oakfiber, "OF-40G-LR4", "OF12030013", qsfpPlus, sff8436 );
   line( qsfp, lc, dfb1310, 10300 );
   wavelength( qsfp, 1301, 36.5 );
   qsfp
      .raw( "identifierExtended", 0x80 ) // power class 3
      .text( "dateCode", "120309" )
      .bit( "compliance", "40GBASE-LR4" )
      .value( "lengthSmf", 10 )
      .bit( "options", "Tx disable" )
      .bit( "options", "Tx fault" );
   diagnostics( qsfp, 35.5, 3.268, { 80, 15, 75, 20, 36.2 }, power( 3.5, -16, 2.3, -13.7, -4.6 ) );
   return qsfp;
}

/// A parameter of page 20h: type, value, and the lane or, without one, the module.
void parameter( QsfpImageBuilder & qsfp, unsigned number, unsigned type, unsigned value,
                unsigned thresholdSet, bool ofLane ) {
   std::string const name = "parameter" + std::to_string( number );
   qsfp.raw( name + "Config", thresholdSet << 12 | ( ofLane ? 0x400u : 0u ) | type )
      .raw( name + "Value", value );
}

/// With the enhanced monitors of four-level modulation, and a text that its user has put in.
QsfpImageBuilder hundredGigDr() {
   QsfpImageBuilder qsfp = module( northlight, "NL-100G-DR", "NL24100014", qsfp28, sff8636r2p8 );
   line( qsfp, lc, eml1310, 25750 );
   wavelength( qsfp, 1310, 6.5 );
   extendedCode( qsfp, 0x25 );
   opticalOptions( qsfp );
   qsfp
      .raw( "identifierExtended", 0xC2 ) // power class 6
      .value( "maxPower", 4.3 )
      .value( "lengthSmf", 1 )
      .bit( "deviceTech", "cooled transmitter" );
   retimers( qsfp );
   diagnostics( qsfp, 47.3, 3.294, { 120, 30, 110, 40, 72 }, power( 5, -9.9, 4, -5.9, 0.4 ) );
   txPower( qsfp, power( 5, -5.9, 4, -2.9, 1.1 ) );
   parameter( qsfp, 1, 1, 0x1580, 0, true );  // SNR 21.5 dB
   parameter( qsfp, 2, 4, 0x7078, 1, true );  // bit errors before correction 1.2e-8
   parameter( qsfp, 3, 5, 0x0000, 1, true );  // frame errors after it
   parameter( qsfp, 4, 6, 0x0136, 2, false ); // cooler 31.0 mA
   parameter( qsfp, 5, 8, 0xFFE0, 3, true );  // laser 0.125 °C below its target
   qsfp.raw( "thresholdSet0", 0x2800'1000'2600'1100 )
      .raw( "thresholdSet1", 0xA018'0000'900A'0000 )
      .raw( "thresholdSet2", 0x07D0'F830'0708'F8F8 )
      .raw( "thresholdSet3", 0x0500'FB00'0300'FD00 )
      .bit( "options", "pages 20h and 21h" )
      .bit( "options", "page 02h" )
      .text( "userText", "Hall 2, rack 7, spare since 2024-10" );
   return qsfp.present( "02h" ).present( "20h" ).present( "21h" );
}

Example qsfp( char const * name, char const * about, QsfpImageBuilder const & module ) {
   Example example{ name, about, {} };
   for ( std::string_view label : QsfpImageBuilder::labels ) {
      example.pages.push_back( { label, module.page( label ) } );
   }
   return example;
}

} // namespace

std::vector<Example> qsfpExamples() {
   return {
      qsfp( "40gbase-sr4", "40GBASE-SR4, QSFP+", fortyGigSr4() ),
      qsfp( "100gbase-cwdm4", "100GBASE-CWDM4, QSFP28, with monitors, thresholds and a weak lane",
            hundredGigCwdm4() ),
      qsfp( "100gbase-cr4", "100GBASE-CR4 passive copper cable of 3 m, flat memory",
            hundredGigCr4() ),
      qsfp( "100gbase-ar4", "100GBASE-SR4 active optical cable (AR4) of 10 m",
            hundredGigActiveCable() ),
      qsfp( "40gbase-lr4-sff8436", "40GBASE-LR4 of 2012, memory after SFF-8436",
            fortyGigLr4OfSff8436() ),
      qsfp( "100gbase-dr", "100GBASE-DR, QSFP28, with the enhanced monitors of pages 20h and 21h",
            hundredGigDr() ),
   };
}

} // namespace Examples

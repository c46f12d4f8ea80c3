// The example modules of the OSFP and QSFP-DD families.
#include "examples/example_modules.h"
#include "tests/support/CmisImageBuilder.h"

#include <string>

namespace Examples {
namespace {

using XcvrTest::CmisImageBuilder;

constexpr uint8_t qsfpDd = 0x18, osfp = 0x19;
enum ModuleType : uint8_t { multimode = 1, singleMode = 2, passiveCopper = 3 };
enum Connector : uint8_t { csConnector = 0x25, mpo12 = 0x0c, mpo16 = 0x28, noConnector = 0x23 };

CmisImageBuilder module( uint8_t identifier, ModuleType type, char const * partNumber,
                         char const * serialNumber ) {
   CmisImageBuilder image;
   image.identifier( identifier )
      .raw( "revision", 0x40 )
      .raw( "moduleType", type )
      .text( "vendorName", "NORTHLIGHT" )
      .raw( "vendorOui", 0x024E4C ) // locally administered, so nobody's
      .text( "vendorPn", partNumber )
      .text( "vendorRev", "A1" )
      .text( "vendorSn", serialNumber )
      .text( "dateCode", "241015" );
   constexpr unsigned moduleReady = 3, noInterrupt = 1;
   return image.raw( "moduleState", moduleReady << 1 | noInterrupt );
}

void power( CmisImageBuilder & image, unsigned powerClass, double watts ) {
   image.raw( "powerClass", ( powerClass - 1 ) << 5 ).value( "maxPower", watts );
}

/// Four limits of a quantity.
struct Limits {
   double highAlarm, lowAlarm, highWarn, lowWarn;
};

void limits( CmisImageBuilder & image, std::string const & name, Limits const & l ) {
   image.value( name + "HighAlarm", l.highAlarm )
      .value( name + "LowAlarm", l.lowAlarm )
      .value( name + "HighWarn", l.highWarn )
      .value( name + "LowWarn", l.lowWarn );
}

void powerLimits( CmisImageBuilder & image, std::string const & name, Limits const & dBm ) {
   limits( image, name,
           { milliwatts( dBm.highAlarm ), milliwatts( dBm.lowAlarm ), milliwatts( dBm.highWarn ),
             milliwatts( dBm.lowWarn ) } );
}

/// What a module with lasers has: advertisement, monitors, thresholds, lanes that run.
void optics( CmisImageBuilder & image, double nanometres, double celsius, double volts,
             unsigned mediaLanes, double txDbm, double rxDbm ) {
   image.value( "wavelength", nanometres )
      .value( "wavelengthTolerance", 6.5 )
      .value( "maxCaseTemperature", 70 )
      .raw( "hardwareRevisionMajor", 1 )
      .raw( "activeFirmwareMajor", 2 )
      .raw( "activeFirmwareMinor", 7 )
      .raw( "rxAmplitudeAndMaxTxEq", 0xf9 ) // all amplitudes, up to 9 dB
      .raw( "maxRxEmphasis", 0x77 );
   for ( char const * monitor : { "temperature", "supply voltage", "Tx bias times 2", "Tx bias",
                                  "Tx power", "Rx power" } ) {
      image.bit( "implMonitorsAdvertisement", monitor );
   }
   for ( char const * flag : { "Tx fault", "Tx LOS", "Tx CDR LOL", "Tx adaptive input EQ fault",
                               "Rx LOS", "Rx CDR LOL" } ) {
      image.bit( "implFlagsAdvertisement", flag );
   }
   for ( char const * control : { "Tx output disable", "Rx output disable", "Tx force squelch" } ) {
      image.bit( "implControlsAdvertisement", control );
   }
   for ( char const * control : { "Tx adaptive EQ", "Tx fixed EQ", "Tx CDR", "Rx CDR",
                                  "Rx pre-cursor", "Rx post-cursor", "Rx amplitude" } ) {
      image.bit( "implSignalIntegrityControl", control );
   }
   limits( image, "temp", { 75, -5, 70, 0 } );
   // The warnings of the voltage where the standard has them.
   image.value( "voltageHighAlarm", 3.63 )
      .value( "voltageLowAlarm", 2.97 )
      .value( "voltageHighWarnUnused", 3.465 )
      .value( "voltageLowWarnUnused", 3.135 );
   powerLimits( image, "txPower", { 5, -5.9, 4, -2.9 } );
   powerLimits( image, "rxPower", { 5, -8.9, 4, -5.9 } );
   // Half of what is meant: readings count twice.
   limits( image, "txBias", { 65, 10, 60, 15 } );
   image.value( "temperature", celsius ).value( "voltage", volts );
   for ( unsigned lane = 0; lane < mediaLanes; ++lane ) {
      std::string const number = std::to_string( lane );
      double const spread = 0.11 * ( lane % 4 );
      image.value( "txPower" + number, milliwatts( txDbm + spread ) )
         .value( "txBias" + number, 38 + spread )
         .value( "rxPower" + number, milliwatts( rxDbm - 2 * spread ) );
   }
   image.raw( "dataPathStates", 0x44444444 )
      .raw( "rxOutputValid", 0xff )
      .raw( "txOutputValid", ( 1u << mediaLanes ) - 1 )
      .raw( "configurationStatus", 0x11111111 )
      .raw( "activeTxCdrEnable", 0xff )
      .raw( "activeRxCdrEnable", 0xff )
      .raw( "txInputAdaptiveEqEnable", 0xff )
      .raw( "rxOutputPreEmphasis", 0x11111111 )
      .raw( "rxOutputAmplitude", 0x22222222 );
}

/// The application that every lane runs, in data paths of `lanesEach` lanes: staged and active.
void running( CmisImageBuilder & image, unsigned selectCode, unsigned lanesEach ) {
   for ( unsigned lane = 0; lane < 8; ++lane ) {
      unsigned const apSel = selectCode << 4 | lane / lanesEach * lanesEach << 1;
      image.raw( "activeApSel" + std::to_string( lane ), apSel )
         .raw( "stagedApSel" + std::to_string( lane ), apSel );
   }
}

CmisImageBuilder fourHundredGigDr4() {
   CmisImageBuilder image = module( qsfpDd, singleMode, "NL-400G-DR4", "NL24110001" );
   image.application( 1, { 0x11, 0x1c, 8, 4, 0x01, 0x01 } )
      .application( 2, { 0x0d, 0x14, 2, 1, 0x55, 0x0f } )
      .raw( "connector", mpo12 )
      .raw( "mediaLanesMissing", 0xf0 )
      .raw( "mediaTechnology", 0x06 ) // 1310 nm EML
      .raw( "lengthSmf", 0x05 );      // 0.5 km
   power( image, 6, 10 );
   optics( image, 1311, 47.25, 3.287, 4, 1.62, 0.35 );
   running( image, 1, 8 );
   return image;
}

CmisImageBuilder fourHundredGigSr8() {
   CmisImageBuilder image = module( osfp, multimode, "NL-400G-SR8", "NL24110002" );
   image.application( 1, { 0x11, 0x10, 8, 8, 0x01, 0x01 } )
      .application( 2, { 0x0f, 0x0e, 4, 4, 0x11, 0x11 } )
      .application( 3, { 0x0a, 0x07, 1, 1, 0xff, 0xff } )
      .raw( "connector", mpo16 )
      .raw( "mediaTechnology", 0x00 ) // 850 nm VCSEL
      .value( "lengthOm3", 70 )
      .value( "lengthOm4", 100 )
      .value( "lengthOm5", 100 );
   power( image, 5, 9.5 );
   optics( image, 850, 41.5, 3.302, 8, 0.9, -1.2 );
   running( image, 1, 8 );
   // Lane 6, counted from 1, receives nothing.
   image.raw( "rxPower5", 0 ).raw( "rxLos", 0x20 ).raw( "rxPowerLoAlarm", 0x20 );
   return image.raw( "rxPowerLoWarn", 0x20 ).raw( "rxCdrLol", 0x20 );
}

CmisImageBuilder fourHundredGigCr8() {
   CmisImageBuilder image = module( qsfpDd, passiveCopper, "NL-400G-CR8-2M", "NL24110003" );
   image.application( 1, { 0x1d, 0x01, 8, 8, 0x01, 0x01 } )
      .application( 2, { 0x1c, 0x01, 4, 4, 0x11, 0x11 } )
      .raw( "connector", noConnector )
      .raw( "cableLength", 0x42 )     // 2 m
      .raw( "mediaTechnology", 0x0a ) // copper, not equalised
      .raw( "attenuation5GHz", 6 )
      .raw( "attenuation7GHz", 8 )
      .raw( "attenuation12p9GHz", 11 )
      .raw( "attenuation25p8GHz", 17 );
   power( image, 1, 0.25 );
   return image.flat();
}

CmisImageBuilder breakout2x200Gig() {
   CmisImageBuilder image = module( osfp, singleMode, "NL-2X200G-FR4", "NL24110004" );
   image.application( 1, { 0x0f, 0x18, 4, 4, 0x11, 0x11 } )
      .application( 2, { 0x0c, 0x10, 4, 4, 0x11, 0x11 } )
      .application( 3, { 0x0b, 0x10, 4, 4, 0x11, 0x11 } )
      .application( 9, { 0x32, 0xf0, 4, 4, 0x11, 0x11 } ) // a medium of the vendor's own
      .raw( "connector", csConnector )
      .raw( "mediaTechnology", 0x06 )
      .raw( "lengthSmf", 0x42 ); // 2 km
   power( image, 7, 12.5 );
   optics( image, 1310, 52.75, 3.271, 8, 2.2, 0.8 );
   running( image, 1, 4 );
   // The second data path is tuned by its host.
   for ( unsigned lane = 4; lane < 8; ++lane ) {
      image.raw( "activeApSel" + std::to_string( lane ), 0x19 );
   }
   return image.raw( "txInputAdaptiveEqEnable", 0x0f ).raw( "txInputEqualization", 0x00005555 );
}

Example cmis( char const * name, char const * about, CmisImageBuilder const & module ) {
   Example example{ name, about, {} };
   for ( auto const & page : CmisImageBuilder::allPages ) {
      bool const banked = page.bank != Xcvr::OsfpBank::bankNa;
      example.pages.push_back(
         { std::string( page.label ) + ( banked ? ".0" : "" ), module.page( page.label ) } );
   }
   return example;
}

} // namespace

std::vector<Example> cmisExamples() {
   return {
      cmis( "400gbase-dr4", "400GBASE-DR4 in a QSFP-DD", fourHundredGigDr4() ),
      cmis( "400gbase-sr8", "400GBASE-SR8 in an OSFP; lane 6 receives nothing",
            fourHundredGigSr8() ),
      cmis( "400gbase-cr8", "400GBASE-CR8 cable of 2 m in a QSFP-DD, flat memory",
            fourHundredGigCr8() ),
      cmis( "2x200gbase-fr4", "2 x 200GBASE-FR4 breakout in an OSFP, four applications",
            breakout2x200Gig() ),
   };
}

} // namespace Examples

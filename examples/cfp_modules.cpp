// The example modules of the CFP2 family. A section of an image is a register table, named after its
// first address; of registers of two bytes the high byte comes first.
#include "examples/example_modules.h"
#include "tests/support/CfpImageBuilder.h"

#include <iterator>

namespace Examples {
namespace {

using namespace Xcvr;
using XcvrTest::CfpImageBuilder;

constexpr uint8_t lc = 7;

CfpImageBuilder module( CfpMsaMisIdentifier identifier, Vendor vendor, char const * partNumber,
                        char const * serialNumber ) {
   CfpImageBuilder cfp( identifier );
   cfp.raw( "connector", lc )
      .text( "vendorName", vendor.name )
      .raw( "vendorOui", vendor.oui )
      .text( "vendorPn", partNumber )
      .text( "vendorSn", serialNumber )
      .text( "dateCode", "20241015" )
      .raw( "vendorRevFirst", 'A' )
      .raw( "vendorRevSecond", '1' )
      .raw( "mgmtRevSupported", 26 )
      .raw( "timeHighPowerUpMax", 10 )
      .raw( "timeTxTurnOnMax", 5 );
   for ( char const * monitor : { "temp", "voltage", "txBias", "txPower", "rxPower" } ) {
      cfp.raw( std::string( monitor ) + "Supported", 1 );
   }
   return cfp;
}

/// The thresholds of a monitor; `scale` is the unit of its registers.
void thresholds( CfpImageBuilder & cfp, std::string const & monitor, double scale,
                 Monitor const & m ) {
   auto const limit = [&]( char const * name, double value ) {
      auto const code = static_cast<int32_t>( std::lround( value / scale ) );
      cfp.raw( monitor + name, static_cast<uint32_t>( code ) & 0xffff );
   };
   limit( "HighAlarm", m.highAlarm );
   limit( "HighWarn", m.highWarn );
   limit( "LowWarn", m.lowWarn );
   limit( "LowAlarm", m.lowAlarm );
}

/// Temperature and voltage; the voltage's thresholds are in 0.1 mV in all modules.
void environment( CfpImageBuilder & cfp, double celsius, double volts ) {
   thresholds( cfp, "temp", 1 / 256., { 75, -5, 70, 0, celsius } );
   thresholds( cfp, "voltage", 0.0001, voltage( volts ) );
   cfp.value( "temperature", celsius ).value( "voltage", volts );
}

CfpImageBuilder lr4() {
   CfpImageBuilder cfp = module( identifierCfp2, northlight, "NL-CFP2-LR4", "NL24100101" );
   cfp.raw( "identifierExtended", 0x54 ) // power class 2, with a gearbox, LANWDM
      .raw( "ethernetApplicationCode", 1 )
      .raw( "networkLanes", 4 )
      .raw( "hostLanes", 10 )
      .value( "networkLaneBitRateMax", 25.8 )
      .value( "smfFiberLengthMax", 10 )
      .value( "minWavelength", 1294.525 )
      .value( "maxWavelength", 1310.2 );
   environment( cfp, 42.5, 3.284 );
   thresholds( cfp, "txBias", 0.002, { 110, 20, 100, 30, 0 } );
   thresholds( cfp, "txPower", 0.0001, power( 5.5, -5.3, 4.5, -4.3, 0 ) );
   thresholds( cfp, "rxPower", 0.0001, power( 5.5, -12.6, 4.5, -10.6, 0 ) );
   struct Lane {
      double bias, tx, rx;
   };
   constexpr Lane lanes[] = {
      { 61.2, 1.35, -2.41 }, { 58.8, 1.12, -2.75 }, { 63.5, 1.61, -3.02 }, { 60.1, 1.28, -11.2 } };
   for ( uint8_t n = 0; n < std::size( lanes ); ++n ) {
      cfp.value( "txBias", lanes[n].bias, n )
         .value( "txPower", milliwatts( lanes[n].tx ), n )
         .value( "rxPower", milliwatts( lanes[n].rx ), n )
         .raw( "txInputEqualization", 2, n )
         .raw( "rxOutputPreEmphasis", 3, n )
         .raw( "networkLaneFaultStatus", 0, n );
   }
   // The light of the last lane is weak: an alarm of its network lane, not yet a loss of signal.
   return cfp.raw( "networkLaneAWSummary", 1u << 3 ).raw( "globalAlarmSummary", 0x9000 );
}

/// A tunable module of the C band, at 193.1 THz on the 50 GHz grid from 191.35 THz.
void coherent( CfpImageBuilder & cfp ) {
   cfp.raw( "identifierExtended", 0xCA ) // power class 4, DWDM on 50 GHz
      .raw( "ethernetApplicationCode", 17 )
      .raw( "networkLanes", 1 )
      .raw( "hostLanes", 4 )
      .value( "minWavelength", 1528.775 )
      .value( "maxWavelength", 1567.125 )
      .value( "minFrequencyTHz", 191 )
      .value( "minFrequencyGHz", 350 )
      .value( "maxFrequencyTHz", 196 )
      .value( "maxFrequencyGHz", 100 )
      .value( "txFineTuneRange", 6000 )
      .raw( "tuningCapabilities", 96 ) // channels
      .bit( "tuningCapabilities", "100 GHz grid" )
      .bit( "tuningCapabilities", "50 GHz grid" )
      .bit( "tuningCapabilities", "25 GHz grid" )
      .raw( "txChannel", 1u << 13 | 36 )
      .value( "txPowerConfig", 0 )
      .bit( "moduleState", "ready" )
      .raw( "globalAlarmSummary", 0 );
   thresholds( cfp, "txBias", 0.1, { 400, 50, 380, 60, 0 } );
   thresholds( cfp, "txPower", 0.01, { 3, -17, 2, -16, 0 } );
   thresholds( cfp, "rxPower", 0.0001, power( 2, -24, 1, -22, 0 ) );
}

CfpImageBuilder cfpx() {
   CfpImageBuilder cfp = module( identifierCfpx, oakfiber, "OF-CFP2-ACO", "OF24100102" );
   coherent( cfp );
   environment( cfp, 51.25, 3.31 );
   return cfp.value( "mmfFiberLengthMax", 0 )
      .raw( "txBias", 52000 )
      .value( "txPowerCfpx", 0.12 )
      .value( "rxPowerCfpx", -9.84 )
      .raw( "txRfDriverType", 1 )
      .raw( "txSkewAvailable", 1 )
      .raw( "txIqSwap", 1 )
      .raw( "txSkew0", 0xfff6 ) // -1
      .raw( "txSkew1", 12 )
      .raw( "txSkew2", 3 )
      .raw( "txSkew3", 0xfffb )
      .raw( "rxSkewAvailable", 1 )
      .raw( "rxSkew1", 7 )
      .raw( "rxSkew3", 0xfff9 )
      .value( "maxRxAttenuation", 15 )
      .value( "currRxAttenuation", 2.5 );
}

CfpImageBuilder dco() {
   CfpImageBuilder cfp = module( identifierCfp2Dco, northlight, "NL-CFP2-DCO", "NL24100103" );
   coherent( cfp );
   environment( cfp, 55.5, 3.296 );
   return cfp.value( "smfFiberLengthMax", 80 )
      .value( "networkLaneBitRateMax", 32 )
      .value( "txBias", 104 )
      .value( "txPower", milliwatts( -0.21 ) )
      .value( "rxPower", milliwatts( -11.4 ) )
      .raw( "txTurnUpState", 8 )
      .raw( "rxTurnUpState", 8 )
      .raw( "networkBerHigh", 0 )
      .raw( "networkBerLow", 2600 )
      .raw( "laserAge", 3 )
      .value( "networkOsnrEstimate", 26.4 )
      .value( "netLaneRxChannelPower", -11.4 )
      .raw( "clientIntfPcsAlarmStatus", 0 )
      .raw( "rxChromDispersionLow", 1240 )
      .raw( "rxDiffGroupDelay", 3 )
      .raw( "rxStateOfPolarization", 12 )
      .raw( "rxQFactor", 112 )
      .value( "rxCarrierFreqOffset", -180 )
      .value( "rxSnr", 17.9 );
}

Example cfp( char const * name, char const * about, CfpImageBuilder const & module ) {
   Example example{ name, about, {} };
   for ( uint32_t id = 0; id < static_cast<uint32_t>( maxCfpTables ); ++id ) {
      auto const table = static_cast<CfpMsaMisTableId>( id );
      example.pages.push_back( { std::string( cfpTableLabel( table ) ), module.image( table ) } );
   }
   return example;
}

} // namespace

std::vector<Example> cfpExamples() {
   return {
      cfp( "cfp2-100gbase-lr4", "100GBASE-LR4, CFP2, with a weak lane", lr4() ),
      cfp( "cfp2-100g-dwdm-e", "Coherent 100G module with a linear driver, CFPx", cfpx() ),
      cfp( "cfp2-100g-dwdm-dco", "Coherent 100G module with its own signal processor, CFP2-DCO",
           dco() ),
   };
}

} // namespace Examples

#pragma once

#include "tests/support/CfpImageBuilder.h"

// Modules of which status tests and benchmarks read everything.
namespace XcvrTest {

/// A module with all monitors, whose registers tell the lane, and all thresholds: 100h in the first
/// register of their table, 200h in the next, and so on.
inline CfpImageBuilder cfpModule( Xcvr::CfpMsaMisIdentifier identifier, uint32_t application,
                                  uint32_t lanes ) {
   CfpImageBuilder image( identifier );
   image.raw( "ethernetApplicationCode", application )
      .raw( "networkLanes", lanes & 15 )
      .raw( "hostLanes", 10 )
      .text( "vendorName", "Vendor" )
      .text( "vendorPn", "PN-1" )
      .text( "vendorSn", "SN-1" )
      .text( "dateCode", "20260101" )
      .raw( "vendorRevFirst", 'A' )
      .raw( "vendorRevSecond", '1' )
      .raw( "temperature", 0xF380 )                                         // -12.5 °C
      .raw( "voltage", identifier == Xcvr::identifierCfp2 ? 33000 : 3300 ); // 3.3 V
   for ( char const * monitor : { "temp", "voltage", "txBias", "txPower", "rxPower" } ) {
      image.raw( std::string( monitor ) + "Supported", 1 );
   }
   for ( uint8_t lane = 0; lane < lanes; ++lane ) {
      image.raw( "txBias", 2000u + lane, lane )
         .raw( "txPower", 3000u + lane, lane )
         .raw( "rxPower", 1000u + lane, lane );
   }
   for ( uint16_t limit = 0; limit < 36; ++limit ) {
      image.at( Xcvr::table8080, static_cast<uint16_t>( 0x8080 + 2 * limit ),
                static_cast<uint16_t>( limit + 1 ) );
   }
   return image;
}

/// A 100GBASE-LR4 one.
inline CfpImageBuilder cfp2Lr4() {
   return cfpModule( Xcvr::identifierCfp2, 1, 4 );
}

/// A tunable one, of one lane.
inline CfpImageBuilder coherentCfp( Xcvr::CfpMsaMisIdentifier identifier ) {
   return cfpModule( identifier, 17, 1 )
      .raw( "minFrequencyTHz", 191 )
      .value( "minFrequencyGHz", 350.05 )
      .raw( "maxFrequencyTHz", 196 )
      .value( "maxFrequencyGHz", 100 )
      .raw( "tuningCapabilities", 0x8C60 ) // 6.25, 50 and 100 GHz; 96 channels
      .raw( "txFineTuneRange", 6000 )
      .raw( "txPowerCfpx", 0xff38 )
      .raw( "rxPowerCfpx", 0xfc18 );
}

} // namespace XcvrTest

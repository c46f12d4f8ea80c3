#pragma once

#include "tests/support/CmisImageBuilder.h"
#include "tests/support/StatusValues.h"

#include <Xcvr/XcvrOsfp.h>

/// A module of single-mode optics with every page, all lane flags, and all monitors but the voltage.
inline XcvrTest::CmisImageBuilder opticalModule() {
   XcvrTest::CmisImageBuilder image;
   image.vendor()
      .raw( "moduleType", 2, "moduleState", 7, "powerClass", 0xa0 )
      .raw( "implMonitorsAdvertisement", 0x0107, "implFlagsAdvertisement", 0x0f06 )
      .application( 1, { 0x11, 0x1c, 8, 4, 0x01, 0x11 } )
      .application( 2, { 0x0d, 0x14, 2, 1, 0x55, 0x22 } )
      .value( "wavelength", 1311, "temperature", 40, "voltage", 3.3, "tempHighAlarm", 75 )
      .lanes( "txBias", 30, 1 )
      .lanes( "txPower", 1, 0 )
      .lanes( "rxPower", 0.5, 0 );
   return image;
}

/// A module's pages, and a parser over them.
struct CmisModule {
   CmisModule() = default;
   explicit CmisModule( XcvrTest::CmisImageBuilder const & image ) { image.writeTo( *raw ); }

   /// Runs every operation in the order that the data require.
   void parse( bool force = false ) const {
      parser->parseLowerPage();
      parser->parseUpperPage00();
      parser->parseUpperPage01();
      parser->parseUpperPage02();
      parser->parseUpperPage10();
      parser->parseUpperPage11();
      parser->parseDom();
      parser->parseLaneFlags( force );
      parser->parseLaneTuning();
   }

   Vel::Ptr<Xcvr::OsfpRawEepromContents> raw = Xcvr::osfpRawEepromContentsFactory( "raw" );
   Vel::Ptr<Xcvr::OsfpDecodedEepromContents> decoded =
      Xcvr::osfpDecodedEepromContentsFactory( "decoded" );
   Vel::Ptr<Xcvr::OsfpEepromParser> parser = Xcvr::osfpEepromParserFactory( raw, decoded );
};

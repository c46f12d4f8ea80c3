#pragma once

#include "tests/support/CmisImageBuilder.h"

#include <Xcvr/XcvrOsfp.h>

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

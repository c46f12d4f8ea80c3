#include "tests/support/QsfpImageBuilder.h"

namespace XcvrTest {

QsfpImageBuilder::QsfpImageBuilder()
   : ImageBuilder( Xcvr::sff8436Fields(), labels, Xcvr::Sff8436Table::pageSize ) {
   identifier( 17 );
}

QsfpImageBuilder & QsfpImageBuilder::identifier( uint8_t code ) {
   return raw( "identifier", code ).raw( "lowerIdentifier", code );
}

QsfpImageBuilder & QsfpImageBuilder::missing( std::string_view page ) {
   missing_.emplace( page );
   return *this;
}

QsfpImageBuilder & QsfpImageBuilder::present( std::string_view page ) {
   missing_.erase( std::string( page ) );
   return *this;
}

QsfpImageBuilder & QsfpImageBuilder::flat() {
   return bit( "moduleStatus", "flat memory" )
      .missing( "02h" )
      .missing( "03h" )
      .missing( "20h" )
      .missing( "21h" );
}

std::string QsfpImageBuilder::page( std::string_view label ) const {
   if ( missing_.contains( std::string( label ) ) ) {
      return {};
   }
   std::string page = pages().page( label );
   if ( label == "00h" ) {
      pages().sumUp( page, 0, "baseChecksum" );
      pages().sumUp( page, 64, "extendedChecksum" );
   }
   return page;
}

Xcvr::Sff8436IdEepromContents QsfpImageBuilder::contents() const {
   auto const bytes = [this]( std::string_view label ) {
      return Vel::String( std::string_view( page( label ) ) );
   };
   return { bytes( "lower" ),
            bytes( "00h" ),
            bytes( "02h" ),
            bytes( "03h" ),
            bytes( "20h" ),
            bytes( "21h" ),
            0.0,
            uint8_t( 0 ) };
}

} // namespace XcvrTest

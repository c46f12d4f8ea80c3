#include "tests/support/CmisImageBuilder.h"

namespace XcvrTest {
namespace {

constexpr std::string_view labels[] = { "lower", "00h", "01h", "02h", "10h", "11h" };
constexpr unsigned selectCodes = 15;

std::string descriptor( unsigned selectCode ) {
   return "application" + std::to_string( selectCode );
}

} // namespace

CmisImageBuilder::CmisImageBuilder()
   : ImageBuilder( Xcvr::cmisFields(), labels, Xcvr::CmisTable::pageSize ) {
   identifier( 0x19 );
   for ( unsigned code = 1; code <= selectCodes; ++code ) {
      raw( descriptor( code ), 0xff000000 );
   }
}

CmisImageBuilder & CmisImageBuilder::identifier( uint8_t code ) {
   return raw( "identifier", code ).raw( "identifierExtended", code );
}

CmisImageBuilder & CmisImageBuilder::application( unsigned selectCode,
                                                  Application const & application ) {
   unsigned const laneCounts = application.hostLanes * 16u + application.mediaLanes;
   constexpr size_t mediaAssignments = 176 - 128;
   return raw( descriptor( selectCode ), uint64_t{ application.host } << 24 |
                                            uint64_t{ application.media } << 16 | laneCounts << 8 |
                                            application.hostAssignment )
      .byte( "01h", mediaAssignments + selectCode - 1, application.mediaAssignment );
}

CmisImageBuilder & CmisImageBuilder::byte( std::string_view page, size_t at, uint8_t value ) {
   bytes_[{ std::string( page ), at }] = value;
   return *this;
}

CmisImageBuilder & CmisImageBuilder::lanes( std::string const & name, double first, double step ) {
   for ( int lane = 0; lane < Xcvr::osfpLanes; ++lane ) {
      value( name + std::to_string( lane ), first + step * lane );
   }
   return *this;
}

CmisImageBuilder & CmisImageBuilder::missing( std::string_view page ) {
   missing_.emplace( page );
   return *this;
}

CmisImageBuilder & CmisImageBuilder::flat() {
   return bit( "memoryAndSpeed", "flat memory" )
      .missing( "01h" )
      .missing( "02h" )
      .missing( "10h" )
      .missing( "11h" );
}

std::string CmisImageBuilder::page( std::string_view label ) const {
   if ( missing_.contains( std::string( label ) ) ) {
      return {};
   }
   std::string page = pages().page( label );
   for ( auto const & [place, value] : bytes_ ) {
      if ( place.first == label ) {
         page[place.second] = static_cast<char>( value );
      }
   }
   if ( label == "00h" ) {
      pages().sumUp( page, 0, "checksumUpperPage00" );
   } else if ( label == "01h" ) {
      pages().sumUp( page, 2, "checksumUpperPage01" );
   } else if ( label == "02h" ) {
      pages().sumUp( page, 0, "checksumUpperPage02" );
   }
   return page;
}

void CmisImageBuilder::writeTo( Xcvr::OsfpRawEepromContents & raw ) const {
   for ( Page const & at : allPages ) {
      Xcvr::OsfpBankAndPage const key( at.bank, at.page );
      std::string const bytes = page( at.label );
      if ( bytes.empty() ) {
         raw.memoryDel( key );
      } else {
         raw.memoryIs( key, std::string_view( bytes ) );
      }
   }
}

} // namespace XcvrTest

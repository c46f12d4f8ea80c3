#include "tools/xcvr/StatusImage.h"

#include "tools/xcvr/Text.h"

#include <Xcvr/HalCfp2MsaMis.h>
#include <Xcvr/HalCmis.h>
#include <Xcvr/XcvrCfp2Status.h>
#include <Xcvr/XcvrOsfpStatus.h>
#include <Xcvr/XcvrQsfpStatus.h>
#include <Xcvr/XcvrSfpStatus.h>

#include <algorithm>
#include <bit>
#include <fmt/format.h>
#include <utility>

namespace XcvrTool {

namespace {

using Pages = decltype( ModuleImage::pages );

void addPage( Pages & pages, std::string_view label, std::string_view bytes ) {
   if ( !bytes.empty() ) {
      pages.emplace( label, bytes );
   }
}

void addSfp( Pages & pages, Xcvr::SfpNewStatus const & status ) {
   constexpr std::uint8_t device = 0xa2;
   auto const & contents = status.sff8472IdEepromContents();
   addPage( pages, Xcvr::Sff8472Table::a0h, contents.buf() );
   std::string a2h( contents.eepromPageA2Data().view() );
   if ( auto const * registers = status.registerDataMap().page( device ) ) {
      for ( std::size_t at = 0; at < registers->bytes.size(); ++at ) {
         if ( registers->held[at] ) {
            a2h.resize( std::max( a2h.size(), at + 1 ) );
            a2h[at] = static_cast<char>( registers->bytes[at] );
         }
      }
   }
   addPage( pages, Xcvr::Sff8472Table::a2h, a2h );
}

void addQsfp( Pages & pages, Xcvr::QsfpNewStatus const & status ) {
   using namespace Xcvr::Sff8436Table;
   auto const & contents = status.sff8436IdEepromContents();
   addPage( pages, lower, contents.eepromPage00LowerData() );
   addPage( pages, upper00h, contents.eepromPage00UpperData() );
   addPage( pages, upper02h, contents.eepromPage02UpperData() );
   addPage( pages, upper03h, contents.eepromPage03UpperData() );
   addPage( pages, upper20h, contents.eepromPage20hUpperData() );
   addPage( pages, upper21h, contents.eepromPage21hUpperData() );
}

void addCmis( Pages & pages, Xcvr::CmisStatus const & status ) {
   using namespace Xcvr::CmisTable;
   using Xcvr::OsfpBank;
   using Xcvr::OsfpPage;
   struct Row {
      std::string_view label;
      OsfpBank bank;
      OsfpPage page;
   };
   static constexpr Row rows[] = {
      { lower, OsfpBank::bankNa, OsfpPage::lowerPage00 },
      { p00h, OsfpBank::bankNa, OsfpPage::upperPage00 },
      { p01h, OsfpBank::bankNa, OsfpPage::upperPage01 },
      { p02h, OsfpBank::bankNa, OsfpPage::upperPage02 },
      { p10h, OsfpBank::bank0, OsfpPage::upperPage10 },
      { p11h, OsfpBank::bank0, OsfpPage::upperPage11 },
   };
   auto const raw = status.rawEepromContents();
   for ( auto const & [label, bank, page] : rows ) {
      if ( raw ) {
         addPage( pages, label, raw->memory( Xcvr::OsfpBankAndPage( bank, page ) ) );
      }
   }
}

/// Words are in the order of the host in a table, and in an image with the high byte first.
void addCfp( Pages & pages, Xcvr::Cfp2NewStatus const & status ) {
   for ( unsigned id = 0; id < static_cast<unsigned>( Xcvr::maxCfpTables ); ++id ) {
      auto const kind = static_cast<Xcvr::CfpMsaMisTableId>( id );
      auto const * table = status.cfpMsaMisIdEepromContents().table( kind );
      if ( !table ) {
         continue;
      }
      std::string bytes( table->contents().view() );
      if ( Xcvr::cfpRegisterWidth( kind ) == 16 && std::endian::native == std::endian::little ) {
         for ( std::size_t at = 0; at + 1 < bytes.size(); at += 2 ) {
            std::swap( bytes[at], bytes[at + 1] );
         }
      }
      addPage( pages, fmt::format( "{:04x}h", Xcvr::cfpFirstAddress( kind ) ), bytes );
   }
}

} // namespace

/// The reader of labelled images looks over the pages: they are another process's.
ModuleImage imageOf( Xcvr::XcvrNewStatus const & status ) {
   ModuleImage image;
   if ( auto const * sfp = dynamic_cast<Xcvr::SfpNewStatus const *>( &status ) ) {
      addSfp( image.pages, *sfp );
   } else if ( auto const * qsfp = dynamic_cast<Xcvr::QsfpNewStatus const *>( &status ) ) {
      addQsfp( image.pages, *qsfp );
   } else if ( auto const * cmis = dynamic_cast<Xcvr::CmisStatus const *>( &status ) ) {
      addCmis( image.pages, *cmis );
   } else if ( auto const * cfp = dynamic_cast<Xcvr::Cfp2NewStatus const *>( &status ) ) {
      addCfp( image.pages, *cfp );
   }
   std::string const name( status.name().view() );
   if ( image.pages.empty() ) {
      throw ImageError( name, "its status holds no module memory (no page that is read here); see "
                              "whether the slot is empty" );
   }
   return parseImage( name, labelledForm( image ), status.xcvrType() );
}

std::string moduleSummary( Xcvr::XcvrNewStatus const & status ) {
   auto const shown = []( Vel::String const & text ) {
      return printable( unpadded( text.view() ) );
   };
   Xcvr::VendorInfo const vendor = status.vendorInfo();
   return fmt::format( "{}, {} {}, serial number {}", shown( status.mediaTypeString() ),
                       shown( vendor.vendorName() ), shown( vendor.vendorPn() ),
                       shown( vendor.vendorSn() ) );
}

} // namespace XcvrTool

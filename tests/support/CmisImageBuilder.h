#pragma once

#include "tests/support/ImageBuilder.h"

#include <Xcvr/XcvrOsfp.h>

namespace XcvrTest {

/// The memory of an OSFP or QSFP-DD module (CMIS); an OSFP's identifier is there from the start, and
/// applications of which there are none.
class CmisImageBuilder : public ImageBuilder<CmisImageBuilder> {
 public:
   /// The application of a select code.
   struct Application {
      uint8_t host, media;                     // SFF-8024 codes
      uint8_t hostLanes, mediaLanes;           // how many
      uint8_t hostAssignment, mediaAssignment; // a bit for each lane at which it may start
   };

   CmisImageBuilder()
      : ImageBuilder( Xcvr::cmisFields(), sums, labels, Xcvr::CmisTable::pageSize ) {
      identifier( 0x19 );
      for ( unsigned code = 1; code <= 15; ++code ) {
         raw( descriptor( code ), 0xff000000 );
      }
   }
   /// Sets the identifier in both places.
   CmisImageBuilder & identifier( uint8_t code ) {
      return raw( "identifier", code ).raw( "identifierExtended", code );
   }
   /// Sets the application of a select code, 1 to 15.
   CmisImageBuilder & application( unsigned selectCode, Application const & set ) {
      constexpr size_t mediaAssignments = 176 - 128;
      uint64_t const lanes = set.hostLanes * 16u + set.mediaLanes;
      return raw( descriptor( selectCode ), uint64_t{ set.host } << 24 |
                                               uint64_t{ set.media } << 16 | lanes << 8 |
                                               set.hostAssignment )
         .byte( "01h", mediaAssignments + selectCode - 1, set.mediaAssignment );
   }
   /// The values of the fields "<name>0" to "<name>7".
   CmisImageBuilder & lanes( std::string const & name, double first, double step ) {
      for ( int lane = 0; lane < Xcvr::osfpLanes; ++lane ) {
         value( name + std::to_string( lane ), first + step * lane );
      }
      return *this;
   }
   /// Only the lower page and page 00h are there.
   CmisImageBuilder & flat() {
      bit( "memoryAndSpeed", "flat memory" ).missing( "01h" ).missing( "02h" );
      return missing( "10h" ).missing( "11h" );
   }
   /// Writes all pages into raw contents, and takes away those that are missing.
   void writeTo( Xcvr::OsfpRawEepromContents & raw ) const {
      for ( Page const & at : allPages ) {
         Xcvr::OsfpBankAndPage const key( at.bank, at.page );
         std::string const bytes = page( at.label );
         bytes.empty() ? raw.memoryDel( key ) : raw.memoryIs( key, std::string_view( bytes ) );
      }
   }

   struct Page {
      std::string_view label;
      Xcvr::OsfpBank bank;
      Xcvr::OsfpPage page;
   };
   static constexpr Page allPages[] = {
      { "lower", Xcvr::OsfpBank::bankNa, Xcvr::OsfpPage::lowerPage00 },
      { "00h", Xcvr::OsfpBank::bankNa, Xcvr::OsfpPage::upperPage00 },
      { "01h", Xcvr::OsfpBank::bankNa, Xcvr::OsfpPage::upperPage01 },
      { "02h", Xcvr::OsfpBank::bankNa, Xcvr::OsfpPage::upperPage02 },
      { "10h", Xcvr::OsfpBank::bank0, Xcvr::OsfpPage::upperPage10 },
      { "11h", Xcvr::OsfpBank::bank0, Xcvr::OsfpPage::upperPage11 },
   };

 private:
   static constexpr std::string_view labels[] = { "lower", "00h", "01h", "02h", "10h", "11h" };
   static constexpr PageSum sums[] = { { "00h", 0, "checksumUpperPage00" },
                                       { "01h", 2, "checksumUpperPage01" },
                                       { "02h", 0, "checksumUpperPage02" } };
   static std::string descriptor( unsigned selectCode ) {
      return "application" + std::to_string( selectCode );
   }
};

} // namespace XcvrTest

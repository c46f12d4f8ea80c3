#pragma once

#include "tests/support/ImageBuilder.h"

#include <Xcvr/XcvrOsfp.h>

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace XcvrTest {

/// Builds the memory of an OSFP or QSFP-DD module (CMIS) from fields and bits named as in the field
/// table; a name that it lacks throws. Checksums come out right unless one is broken on purpose.
class CmisImageBuilder : public ImageBuilder<CmisImageBuilder> {
 public:
   /// The application of a select code.
   struct Application {
      uint8_t host, media;                     // SFF-8024 codes
      uint8_t hostLanes, mediaLanes;           // how many
      uint8_t hostAssignment, mediaAssignment; // a bit for each lane at which it may start
   };

   /// All pages whole and of zeros, but for an OSFP's identifier, blank texts, and applications, of
   /// which there are none.
   CmisImageBuilder();

   /// Sets the identifier in both places.
   CmisImageBuilder & identifier( uint8_t code );
   /// Sets the application of a select code, 1 to 15.
   CmisImageBuilder & application( unsigned selectCode, Application const & application );
   /// One byte, wherever it lies.
   CmisImageBuilder & byte( std::string_view page, size_t at, uint8_t value );
   /// The values of the fields "<name>0" to "<name>7".
   CmisImageBuilder & lanes( std::string const & name, double first, double step );
   /// The page of that label is not there.
   CmisImageBuilder & missing( std::string_view page );
   /// Only the lower page and page 00h are there.
   CmisImageBuilder & flat();

   /// By the label of the page; empty for one that is missing.
   [[nodiscard]] std::string page( std::string_view label ) const;
   /// Writes all pages into raw contents, and takes away those that are missing.
   void writeTo( Xcvr::OsfpRawEepromContents & raw ) const;

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
   std::set<std::string> missing_;
   std::map<std::pair<std::string, size_t>, uint8_t> bytes_;
};

} // namespace XcvrTest

#pragma once

#include "tests/support/ImageBuilder.h"

#include <Xcvr/XcvrSfpPlus.h>

namespace XcvrTest {

/// The memory of an SFP module (SFF-8472); an SFP's identifier is there from the start.
class SfpImageBuilder : public ImageBuilder<SfpImageBuilder> {
 public:
   SfpImageBuilder() : ImageBuilder( Xcvr::sff8472Fields(), sums, labels, 256 ) {
      raw( "identifier", 3 );
   }
   /// A module without diagnostics has no page A2h.
   SfpImageBuilder & a2hMissing() { return missing( "a2h" ); }

   [[nodiscard]] std::string a0h() const { return page( "a0h" ); }
   [[nodiscard]] std::string a2h() const { return page( "a2h" ); }
   [[nodiscard]] Xcvr::XcvrSff8472IdEepromContents contents() const {
      return { std::string_view( a0h() ), std::string_view( a2h() ), 0.0 };
   }

 private:
   static constexpr std::string_view labels[] = { "a0h", "a2h" };
   static constexpr PageSum sums[] = {
      { "a0h", 0, "storedCcBase" }, { "a0h", 64, "storedCcExt" }, { "a2h", 0, "storedCcDmi" } };
};

} // namespace XcvrTest

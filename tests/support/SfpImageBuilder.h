#pragma once

#include "tests/support/ImageBuilder.h"

#include <Xcvr/XcvrSfpPlus.h>

#include <string>

namespace XcvrTest {

/// Builds the memory of an SFP module (SFF-8472) from fields and bits named as in the field table; a
/// name that it lacks throws. Checksums come out right unless one is broken on purpose.
class SfpImageBuilder : public ImageBuilder<SfpImageBuilder> {
 public:
   /// Two whole pages of zeros, but for an SFP's identifier and blank texts.
   SfpImageBuilder();

   /// A module without diagnostics has no page A2h.
   SfpImageBuilder & a2hMissing();

   [[nodiscard]] std::string a0h() const;
   [[nodiscard]] std::string a2h() const;
   [[nodiscard]] Xcvr::XcvrSff8472IdEepromContents contents() const;

 private:
   bool hasA2h_ = true;
};

} // namespace XcvrTest

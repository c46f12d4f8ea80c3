#pragma once

#include "tests/support/ImageBuilder.h"

#include <Xcvr/XcvrQsfpPlus.h>

#include <set>
#include <string>
#include <string_view>

namespace XcvrTest {

/// Builds the memory of a QSFP module (SFF-8636) from fields and bits named as in the field table; a
/// name that it lacks throws. Checksums come out right unless one is broken on purpose.
class QsfpImageBuilder : public ImageBuilder<QsfpImageBuilder> {
 public:
   /// All pages whole and of zeros, but for a QSFP28's identifier and blank texts.
   QsfpImageBuilder();

   /// Sets the identifier in both places.
   QsfpImageBuilder & identifier( uint8_t code );
   /// The page of that label is not there, or there again.
   QsfpImageBuilder & missing( std::string_view page );
   QsfpImageBuilder & present( std::string_view page );
   /// Only the lower page and upper page 00h are there.
   QsfpImageBuilder & flat();

   /// By the label of the page: "lower", "00h", …; empty for one that is missing.
   [[nodiscard]] std::string page( std::string_view label ) const;
   [[nodiscard]] Xcvr::Sff8436IdEepromContents contents() const;

   static constexpr std::string_view labels[] = { "lower", "00h", "02h", "03h", "20h", "21h" };

 private:
   std::set<std::string> missing_;
};

} // namespace XcvrTest

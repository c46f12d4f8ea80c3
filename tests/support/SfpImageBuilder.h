#pragma once

#include <Xcvr/XcvrSfpPlus.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace XcvrTest {

/// Builds the memory of an SFP module (SFF-8472) from fields and bits named as in the field table; a
/// name that it lacks throws. Checksums come out right unless one is broken on purpose.
class SfpImageBuilder {
 public:
   /// Two whole pages of zeros, but for an SFP's identifier and blank texts.
   SfpImageBuilder();

   /// A number in the field's unit.
   SfpImageBuilder & value( std::string_view field, double value );
   /// A number as stored.
   SfpImageBuilder & raw( std::string_view field, uint64_t number );
   SfpImageBuilder & text( std::string_view field, std::string_view text );
   SfpImageBuilder & bit( std::string_view field, std::string_view bit );
   /// Stores a checksum that is one off; the field is one of the three stored checksums.
   SfpImageBuilder & checksumBroken( std::string_view field );
   /// A module without diagnostics has no page A2h.
   SfpImageBuilder & a2hMissing();

   [[nodiscard]] std::string a0h() const;
   [[nodiscard]] std::string a2h() const;
   [[nodiscard]] Xcvr::XcvrSff8472IdEepromContents contents() const;

 private:
   [[nodiscard]] std::string & pageOf( Xcvr::MemoryField const & field );

   std::string a0h_;
   std::string a2h_;
   bool hasA2h_ = true;
   std::string brokenChecksum_;
};

} // namespace XcvrTest

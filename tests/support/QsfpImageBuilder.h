#pragma once

#include "tests/support/ImageBuilder.h"

#include <Xcvr/XcvrQsfpPlus.h>

namespace XcvrTest {

/// The memory of a QSFP module (SFF-8636); a QSFP28's identifier is there from the start.
class QsfpImageBuilder : public ImageBuilder<QsfpImageBuilder> {
 public:
   QsfpImageBuilder()
      : ImageBuilder( Xcvr::sff8436Fields(), sums, labels, Xcvr::Sff8436Table::pageSize ) {
      identifier( 17 );
   }
   /// Sets the identifier in both places.
   QsfpImageBuilder & identifier( uint8_t code ) {
      return raw( "identifier", code ).raw( "lowerIdentifier", code );
   }
   /// Only the lower page and upper page 00h are there.
   QsfpImageBuilder & flat() {
      bit( "moduleStatus", "flat memory" ).missing( "02h" ).missing( "03h" );
      return missing( "20h" ).missing( "21h" );
   }
   [[nodiscard]] Xcvr::Sff8436IdEepromContents contents() const {
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

   static constexpr std::string_view labels[] = { "lower", "00h", "02h", "03h", "20h", "21h" };

 private:
   static constexpr PageSum sums[] = { { "00h", 0, "baseChecksum" },
                                       { "00h", 64, "extendedChecksum" } };
};

} // namespace XcvrTest

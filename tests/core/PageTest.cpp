#include "core/MemoryMapCheck.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Xcvr {
namespace {

using enum MemoryKind;

// A field that ends behind the page, even by one byte, is not there; a text is what there is of it.
TEST( PageView, NothingLiesBehindThePage ) {
   std::string const bytes = "\xff\xff\xff";
   PageView const page( bytes );
   for ( uint32_t at : { 2u, 3u, 0xffffu, 0xffffffffu } ) {
      EXPECT_EQ( page.u16be( at ), 0 ) << at;
      EXPECT_EQ( page.unsignedBe( at, 8 ), 0u ) << at;
      EXPECT_EQ( page.f32be( at ), 0.0f ) << at;
   }
   EXPECT_EQ( page.u8( 3 ), 0 );
   EXPECT_EQ( page.text( 1, 16 ), bytes.substr( 1 ) );
   EXPECT_EQ( page.text( 3, 16 ), "" );
   EXPECT_EQ( page.text( 0xffffffff, 0xffffffff ), "" );
   EXPECT_FALSE( PageView( "" ).bit( { 0, 0xff } ) );
}

TEST( MemoryMap, FaultyTablesAreRefused ) {
   static constexpr MemoryBit high[] = { { 7, "high" }, { 0, "low" } };
   static constexpr MemoryBit outside[] = { { 8, "ninth" } };
   MemoryField const first{ "first", "p", 0, 2, u16be };
   auto const bitField = [&]( std::span<MemoryBit const> of, uint16_t at = 0 ) {
      return MemoryField{ "bits", "p", at, 1, MemoryKind::bits, "", 1, of };
   };
   using Fields = std::vector<MemoryField>;
   std::pair<std::string_view, Fields> const cases[] = {
      { "", { first, bitField( high, 2 ), { "x", "q", 0, 1, u8 } } },
      { "", { first, { "again", "p", 1, 1, u8, "", 1, {}, true } } },
      { "the width of a row does not fit its kind", { { "first", "p", 0, 2, u8 } } },
      { "a row runs off its page", { { "first", "p", 15, 2, u16be } } },
      { "the bits of a row are out of order or outside it", { bitField( outside ) } },
      { "rows are out of order", { { "second", "p", 2, 1, u8 }, first } },
      { "two rows have one name", { first, { "first", "p", 2, 1, u8 } } },
      { "rows overlap without being marked as shared", { first, { "next", "p", 1, 1, u8 } } },
      { "a row marked as shared shares nothing",
        { first, { "x", "p", 2, 1, u8, "", 1, {}, true } } },
   };
   for ( auto const & [fault, fields] : cases ) {
      EXPECT_EQ( memoryMapFault( fields, 16 ), fault );
   }
   Fields const fields = { bitField( high ), { "number", "p", 4, 1, u8 } };
   auto const conditionFault = [&]( MemoryCondition const & condition ) {
      return memoryConditionsFault( std::vector{ condition }, fields );
   };
   EXPECT_EQ( conditionFault( { "p", 2, 9, "bits", "high" } ), "" );
   EXPECT_EQ( conditionFault( { "p", 2, 9, "bits", "other" } ),
              "a condition names no bit of the table" );
   EXPECT_EQ( conditionFault( { "p", 5, 9, "bits", "high" } ), "a condition covers no row" );
}

} // namespace
} // namespace Xcvr

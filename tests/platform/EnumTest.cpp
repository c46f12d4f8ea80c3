#include <Vel/Define.h>
#include <Vel/Enum.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace EnumTest {

// clang-format off
VEL_ENUM( Register,
   control, status = 0x10, statusMirror = 0x10, next, decimal = 16, last = 0xFFffFFff, )
// clang-format on
VEL_ENUM_DEFINE( Register )

VEL_ENUM( Switch, off, on )
VEL_ENUM_DEFINE( Switch )

TEST( Enum, NamesAndCodesAsDeclared ) {
   std::pair<char const *, uint32_t> const declared[] = {
      { "control", 0 }, { "status", 16 },  { "statusMirror", 16 },
      { "next", 17 },   { "decimal", 16 }, { "last", 0xffffffff } };
   EXPECT_EQ( velEnumModel( Register() ).typeName, "EnumTest::Register" );
   EXPECT_EQ( velEnumModel( Register() ).count, std::size( declared ) );
   for ( auto const & [name, code] : declared ) {
      Register const value = RegisterInstance( name );
      EXPECT_EQ( static_cast<uint32_t>( value ), code ) << name;
      // Of several names of one code the first is its string form.
      EXPECT_EQ( stringValue( value ), code == 16 ? "status" : name );
   }
   for ( uint32_t code : { 1U, 15U, 18U, 0xfffffffeU } ) {
      EXPECT_EQ( stringValue( Register( code ) ), std::to_string( code ) ) << "has no name";
      EXPECT_EQ( velEnumModel( Register() ).byCode( code ), nullptr );
   }
   EXPECT_EQ( stringValue( Switch( 2 ) ), "2" ) << "just beyond an enumeration without gaps";
}

} // namespace EnumTest

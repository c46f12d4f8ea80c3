// Texts and bars, whatever they are made of.
#include "tools/xcvr/Text.h"
#include "tools/xcvr/Monitors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace XcvrTool {
namespace {

using ::testing::ElementsAre;

TEST( Text, AnyBytesBecomeUtf8 ) {
   struct {
      std::string bytes, utf8;
   } const cases[] = {
      { "50 \xc2\xb5m \xe2\x82\xac \xf0\x9f\x98\x80",
        "50 \xc2\xb5m \xe2\x82\xac \xf0\x9f\x98\x80" },
      { "50 \xb5m", "50 \xc2\xb5m" },                             // Latin-1
      { "\xff\x80", "\xc3\xbf\xc2\x80" },                         // no first byte of anything
      { "\xc0\xaf", "\xc3\x80\xc2\xaf" },                         // overlong
      { "\xed\xa0\x80", "\xc3\xad\xc2\xa0\xc2\x80" },             // a surrogate
      { "\xf4\x90\x80\x80", "\xc3\xb4\xc2\x90\xc2\x80\xc2\x80" }, // beyond U+10FFFF
      { "\xc2", "\xc3\x82" },                                     // cut
   };
   for ( auto const & row : cases ) {
      EXPECT_EQ( utf8( row.bytes ), row.utf8 );
   }
}

TEST( Text, FileNamesHaveNoControlCharacters ) {
   EXPECT_EQ( shownFileName( "a b~ 50 \xc2\xb5m\xc2\xa0" ), "a b~ 50 \xc2\xb5m\xc2\xa0" );
   EXPECT_EQ( shownFileName( "\x1b[2J\n\x7f\xc2\x9b:\x9b\xff" ), "?[2J???:??" );
}

TEST( Text, LinesBreakBehindCommasElseAtBlanks ) {
   EXPECT_THAT( wrapped( "ten and up", 10 ), ElementsAre( "ten and up" ) );
   EXPECT_THAT( wrapped( "one two, three", 10 ), ElementsAre( "one two,", "three" ) );
   EXPECT_THAT( wrapped( "one two three", 10 ), ElementsAre( "one two", "three" ) );
   EXPECT_THAT( wrapped( "a longerthantheline b", 10 ),
                ElementsAre( "a", "longerthantheline", "b" ) );
}

TEST( Monitors, WhereAValueStands ) {
   constexpr double none = -std::numeric_limits<double>::infinity();
   constexpr Limits limits{ 0, 10, 40, 50 };
   constexpr Limits onlyHigh{ none, none, 40, 50 };
   struct {
      Limits limits;
      double value;
      Place place;
      char const * bar;
   } const cases[] = {
      { limits, -0.1, Place::lowAlarm, "<-|---------|--" },
      { limits, 0, Place::lowWarning, "*-|---------|--" }, // the limit itself is within
      { limits, 25, Place::normal, "--|----*----|--" },
      { limits, 40, Place::normal, "--|--------*|--" },
      { limits, 50, Place::highWarning, "--|---------|-*" },
      { limits, 51, Place::highAlarm, "--|---------|->" },
      { onlyHigh, none, Place::normal, "" },
      { onlyHigh, 45, Place::highWarning, "" },
   };
   for ( auto const & row : cases ) {
      EXPECT_EQ( ( Reading{ nullptr, "", row.value, row.limits }.place() ), row.place )
         << row.value;
      EXPECT_EQ( bar( row.limits, row.value ), row.bar ) << row.value;
   }
   for ( Limits const & senseless : { Limits{ 0, 0, 0, 0 }, Limits{ 0, 30, 20, 50 } } ) {
      EXPECT_EQ( ( Reading{ nullptr, "", 25, senseless }.place() ), Place::unknown );
   }
}

} // namespace
} // namespace XcvrTool

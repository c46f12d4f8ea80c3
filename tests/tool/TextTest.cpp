#include "tools/xcvr/Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace XcvrTool {
namespace {

using ::testing::ElementsAre;

TEST( Text, AnyBytesBecomeUtf8 ) {
   struct {
      std::string bytes, utf8;
   } const cases[] = {
      { "", "" },
      { "plain", "plain" },
      { "50 \xc2\xb5m", "50 \xc2\xb5m" },
      { "\xe2\x82\xac \xf0\x9f\x98\x80", "\xe2\x82\xac \xf0\x9f\x98\x80" },
      { "50 \xb5m", "50 \xc2\xb5m" },     // Latin-1
      { "\xff\x80", "\xc3\xbf\xc2\x80" }, // no first byte of anything
      { "\xc0\xaf", "\xc3\x80\xc2\xaf" }, // overlong
      { "\xe0\x80\xaf", "\xc3\xa0\xc2\x80\xc2\xaf" },
      { "\xed\xa0\x80", "\xc3\xad\xc2\xa0\xc2\x80" },             // a surrogate
      { "\xf4\x90\x80\x80", "\xc3\xb4\xc2\x90\xc2\x80\xc2\x80" }, // beyond U+10FFFF
      { "\xe2\x82", "\xc3\xa2\xc2\x82" },                         // cut
      { "\xc2", "\xc3\x82" },
   };
   for ( auto const & row : cases ) {
      EXPECT_EQ( utf8( row.bytes ), row.utf8 );
   }
}

TEST( Text, FileNamesHaveNoControlCharacters ) {
   struct {
      std::string name, shown;
   } const cases[] = {
      { "", "\"\"" },
      { "a b~.bin", "a b~.bin" },
      { "50 \xc2\xb5m\xc2\xa0\xe2\x82\xac", "50 \xc2\xb5m\xc2\xa0\xe2\x82\xac" },
      { "a\x1b[2J\n\x7f", "a?[2J??" },
      { "\xc2\x9b"
        "2J\x9b\xff",
        "?2J??" }, // control characters beyond ASCII, and no UTF-8
   };
   for ( auto const & row : cases ) {
      EXPECT_EQ( shownFileName( row.name ), row.shown );
   }
}

TEST( Text, LinesBreakBehindCommasElseAtBlanks ) {
   EXPECT_THAT( wrapped( "", 9 ), ElementsAre( "" ) );
   EXPECT_THAT( wrapped( "ten and up", 10 ), ElementsAre( "ten and up" ) );
   EXPECT_THAT( wrapped( "one two, three", 10 ), ElementsAre( "one two,", "three" ) );
   EXPECT_THAT( wrapped( "one two three", 10 ), ElementsAre( "one two", "three" ) );
   EXPECT_THAT( wrapped( "a longerthantheline b", 10 ),
                ElementsAre( "a", "longerthantheline", "b" ) );
   EXPECT_THAT( wrapped( "longerthantheline", 10 ), ElementsAre( "longerthantheline" ) );
}

} // namespace
} // namespace XcvrTool

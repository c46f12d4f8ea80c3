// The program as its users meet it: arguments, inputs, outputs, exit codes.
#include "tests/tool/ToolRun.h"
#include "tools/xcvr/Commands.h"

#include <algorithm>
#include <cctype>
#include <random>

namespace XcvrTest {
namespace {

/// The linear memory of an example module.
std::string memoryOf( char const * example ) {
   XcvrTool::ModuleImage const image = exampleImage( example );
   return *image.page( "a0h" ) + *image.page( "a2h" );
}

std::string sr() {
   return memoryOf( "10gbase-sr" );
}

TEST_F( ToolTest, Usage ) {
   for ( char const * name : { "sr", "[a,b]", "\xc3\xa9\x1b" } ) {
      file( name, sr() );
   }
   struct {
      char const * arguments;
      int exitCode;
      char const * out;
      char const * err;
   } const cases[] = {
      { "--version", 0, "xcvr [0-9]+\\.[0-9]+\\.[0-9]+\n", "^$" },
      { "--help", 0, "show.*hexdump.*explain", "^$" },
      { "", 2, "^$", "subcommand" },
      { "sing sr", 2, "^$", "xcvr: .*" },
      { "show \"--$( printf 'b\\033[2J\\nx' )\" sr", 2, "^$",
        "^xcvr: [^\n\x1b]*--b\\?\\[2J\\?x[^\n]*\n$" },
      { "show", 2, "^$", "FILE is required" },
      { "show --family radio sr", 2, "^$", "radio" },
      { "show - -", 2, "^$", "standard input" },
      { "show . sr", 3, "xcvr10GBaseSr", "xcvr: \\.: .*directory" },
      // Names that a reader of arguments, or a terminal, could make something else of.
      { "show '[a,b]' '[a]'", 3, "^\\./\\[a,b]\n.*xcvr10GBaseSr",
        "xcvr: \\./\\[a]: cannot be opened" },
      { "show --connect '[a,b]'", 3, "^$", "xcvr: \\[a,b]: no agent can be reached" },
      { "agent --listen s --slot '[a]=b' '[c]=d'", 2, "^$", "\\[c]=d" },
      { "watch --connect ''", 3, "^$", "cannot be a socket's name" },
      { "show ''", 3, "^$", "xcvr: \"\": cannot be opened" },
      { "show \"$( printf 'e\\033[2J' )\" sr", 3, "^sr", "xcvr: e\\?\\[2J: cannot be opened" },
      { "show sr \"$( printf '\\303\\251\\033' )\"", 0, "\n\xc3\xa9\\?\n", "^$" },
   };
   for ( auto const & row : cases ) {
      ToolRun const run = this->run( row.arguments );
      EXPECT_EQ( run.exitCode, row.exitCode ) << row.arguments;
      EXPECT_THAT( run.out, ContainsRegex( row.out ) ) << row.arguments;
      EXPECT_THAT( run.err, ContainsRegex( row.err ) ) << row.arguments;
   }
}

TEST_F( ToolTest, SeveralFiles ) {
   file( "sr", sr() );
   file( "bad", memoryOf( "bad-checksum" ) );
   file( "empty", "" );
   for ( std::string const command : { "show", "hexdump", "explain" } ) {
      std::string const one = run( command + " sr" ).out;
      EXPECT_EQ( run( command + " sr sr" ).out, "sr\n" + one + "\nsr\n" + one );
   }
   // A bad file does not stop the others.
   ToolRun const text = run( "show empty sr missing" );
   EXPECT_EQ( text.exitCode, 3 );
   EXPECT_THAT( text.out, StartsWith( "sr\n   Identifier" ) );
   EXPECT_THAT( text.err, ContainsRegex( "xcvr: empty: .*; give .*xcvr: missing: .*; check " ) );
   EXPECT_EQ( Json::parse( run( "show --json empty sr" ).out )["modules"].size(), 1u );
   // No module at all is the same document, with none in it.
   EXPECT_EQ( Json::parse( run( "show --json empty" ).out ),
              Json::parse( R"( { "schema": 1, "units": {}, "modules": [] } )" ) );
   // An input that cannot be read weighs more than a finding; the others are checked all the same.
   EXPECT_EQ( run( "check sr sr" ).exitCode, 0 );
   ToolRun const one = run( "check bad sr" );
   EXPECT_EQ( one.exitCode, 1 );
   EXPECT_THAT( one.out, ContainsRegex( "^bad: checksum: [^\n]*\n$" ) );
   for ( char const * arguments : { "check missing bad", "check bad missing" } ) {
      ToolRun const unreadable = run( arguments );
      EXPECT_EQ( unreadable.exitCode, 3 );
      EXPECT_EQ( unreadable.out, one.out );
   }
}

TEST_F( ToolTest, MediaTypes ) {
   std::string const out = run( "media-types" ).out;
   EXPECT_THAT( out, HasSubstr( "\n     11  xcvr2p5GBaseT           2.5GBASE-T          2.5 Gb/s"
                                "  xcvr10GLinear     no\n" ) );
   Json const all = Json::parse( run( "media-types --json" ).out )["mediaTypes"];
   EXPECT_EQ( all.size(), 91u );
   expectJson( all[39], R"( { "code": 39, "mediaType": "xcvr100BaseFx",
      "mediaTypeString": "100BASE-FX", "bitrateKbps": 100000,
      "electricalInterface": "xcvr100MMiiBaseFx", "optical": true } )" );
}

/// How many bytes of memory a dump shows, other readings of the same bytes left out.
std::size_t bytesShown( std::string const & dump ) {
   constexpr std::size_t bytesAt = 8, nameAt = 33, valueAt = 60;
   std::size_t count = 0;
   std::istringstream lines( dump );
   for ( std::string line; std::getline( lines, line ); ) {
      line.resize( std::max( line.size(), valueAt ), ' ' );
      if ( !std::isxdigit( static_cast<unsigned char>( line[2] ) ) || line[nameAt] == '(' ) {
         continue; // without an address, or in parentheses
      }
      bool const isRun = line.compare( bytesAt + 2, 4, " ..." ) == 0;
      std::string const bytes = line.substr( bytesAt, nameAt - bytesAt );
      count +=
         isRun ? std::stoul( line.substr( valueAt ) ) : ( bytes.find_last_not_of( ' ' ) + 2 ) / 3;
   }
   return count;
}

TEST_F( ToolTest, EveryByteOfAnyMemoryIsDumpedOnce ) {
   std::string const folder = XCVR_SOURCE_DIR "/examples/modules";
   std::filesystem::directory_iterator const files( folder );
   std::vector<std::filesystem::path> const examples( begin( files ), end( files ) );
   std::minstd_rand random( 1 );
   for ( unsigned round = 0; round < 400; ++round ) {
      XcvrTool::ModuleImage image =
         XcvrTool::readImage( examples[round % examples.size()], XcvrTool::anyFamily );
      std::size_t total = 0;
      for ( auto & [label, bytes] : image.pages ) {
         // Bytes of all kinds among what is there; any page but the first may end early.
         for ( std::size_t at = 0; at < bytes.size(); at += random() % 32 ) {
            bytes[at] = static_cast<char>( random() >> 8 );
         }
         bytes.resize( total == 0 ? bytes.size() : 1 + random() % bytes.size() );
         total += bytes.size();
      }
      std::unique_ptr<XcvrTool::Module> const module = XcvrTool::moduleOf( image );
      std::string const dump = XcvrTool::hexdumpText( *module, {} );
      ASSERT_EQ( bytesShown( dump ), total ) << dump;
      // °C is one character of two bytes.
      ASSERT_THAT( dump, Not( ContainsRegex( "[^\n]{102}" ) ) );
      // The other commands take the same memory.
      XcvrTool::Json units;
      static_cast<void>( XcvrTool::showJson( *module, units ).dump() );
      EXPECT_THAT( XcvrTool::showText( *module, {} ), Not( ContainsRegex( "[^ -~°\n]" ) ) );
      EXPECT_THAT( XcvrTool::explainText( *module, {} ), HasSubstr( " yes: " ) );
      EXPECT_THAT( XcvrTool::checkText( *module, {} ), Not( ContainsRegex( "[^ -~°\n]" ) ) );
   }
}

TEST_F( ToolTest, ADumpThatLooksCutIsWarnedAbout ) {
   file( "sr", sr() );
   struct {
      char const * command;
      bool warned;
   } const cases[] = {
      { "od -Ax -v -tx1 sr | head -c 1500 | grep -o '.*[^ ]' | sed '$d'", false },
      { "od -Ax -v -tx1 sr | sed '20s/ ..$//' | head -20", true },
      { "od -Ax -v -tx1 sr | sed '20s/ .. ..$//' | head -20 | sed 's/^/0x/; s/ /: /'", true },
      { "( echo '[a0h]'; od -Ax -v -tx1 sr | sed 's/ /: /; 12s/ ..$//' | head -12 )", true },
      // Without offsets nobody knows the width of the lines.
      { "od -An -v -tx1 sr | sed '20s/ ..$//' | head -20", false },
      // A read of a number of bytes that somebody chose ends with the page.
      { "od -Ax -v -tx1 -w24 sr | head -6 | sed '6s/\\( ..\\)\\{16\\}$//'", false },
   };
   for ( auto const & row : cases ) {
      ToolRun const run = shell( std::string( row.command ) + " | xcvr show -" );
      EXPECT_EQ( run.exitCode, 0 ) << run.err;
      EXPECT_THAT( run.out, HasSubstr( "10GBASE-SR" ) ) << row.command;
      EXPECT_EQ( run.err.starts_with( "xcvr: <stdin>: warning: the last line " ), row.warned )
         << row.command << run.err;
   }
}

TEST_F( ToolTest, LostResultsAreNoticed ) {
   file( "sr", sr() );
   for ( char const * arguments : { "show sr", "show --json sr", "hexdump sr", "--help" } ) {
      ToolRun const run = this->run( std::string( arguments ) + " >/dev/full" );
      EXPECT_EQ( run.exitCode, 3 ) << arguments;
      EXPECT_THAT( run.err, HasSubstr( "xcvr: cannot write the results (No space left" ) );
   }
}

TEST_F( ToolTest, AClosedPipeEndsQuietly ) {
   file( "sr", sr() );
   // Ignored signals are inherited.
   for ( std::string const before : { "", "trap '' PIPE; " } ) {
      ToolRun const run = shell( before + "f='sr sr sr sr sr sr sr sr'; "
                                          "xcvr hexdump $f $f $f | head -c 4" );
      EXPECT_EQ( run.out, "sr\nP" );
      EXPECT_THAT( run.err, IsEmpty() );
   }
}

TEST_F( ToolTest, ColourAndBarsOnATerminalOnly ) {
   file( "hot", memoryOf( "alarms" ) );
   auto const onTerminal = [this]( std::string const & before ) {
      return shell( "script -qec '" + before + "; " XCVR_TOOL_PATH " show hot' /dev/null" ).out;
   };
   EXPECT_THAT( onTerminal( "unset NO_COLOR" ),
                AllOf( HasSubstr( "\x1b[31mRx LOS\x1b[0m" ),
                       HasSubstr( "\x1b[33m--|---------|*-\x1b[0m" ) ) );
   // The place between the limits is a picture for people, colours or not.
   EXPECT_THAT(
      onTerminal( "export NO_COLOR=1" ),
      AllOf( HasSubstr( "70.00      75.00  --|---------|->" ), Not( HasSubstr( "\x1b" ) ) ) );
   EXPECT_THAT( run( "show hot" ).out,
                AllOf( HasSubstr( "75.00  high alarm\n" ), Not( HasSubstr( "\x1b" ) ) ) );
}

TEST_F( ToolTest, Examples ) {
   std::string const all = "'" XCVR_SOURCE_DIR "'/examples/modules/*.txt";
   ToolRun const shown = run( "show --json " + all );
   EXPECT_EQ( shown.exitCode, 0 ) << shown.err;
   Json const modules = Json::parse( shown.out )["modules"];
   EXPECT_GE( modules.size(), 15u );
   for ( Json const & module : modules ) {
      EXPECT_NE( module["mediaType"], "xcvrUnknown" ) << module["file"];
      EXPECT_NE( module["date"], nullptr ) << module["file"];
   }
   EXPECT_THAT( run( "check " + all ).out,
                ContainsRegex( "^[^\n]*/400gbase-sr8.txt: value-alarm: Rx power, lane 6 [^\n]*\n"
                               "[^\n]*/alarms.txt: value-alarm: Temperature [^\n]*\n"
                               "[^\n]*/alarms.txt: value-alarm: Rx power [^\n]*\n"
                               "[^\n]*/bad-checksum.txt: checksum: [^\n]*\n$" ) );
}

TEST_F( ToolTest, HelpManPageAndCompletionHaveTheSameOptions ) {
   std::string const help = run( "--help" ).out;
   std::set<std::string> const commands = allMatches( help, "\n  ([a-z][a-z-]+)  " );
   std::set<std::string> options = allMatches( help, "[ ,]-(-[a-z-]+) " );
   std::string const completion =
      ". '" XCVR_SOURCE_DIR "/tools/xcvr/completion/xcvr.bash'; COMP_WORDS=( xcvr ";
   auto const completed = [&]( std::string const & words, int current ) {
      file( "complete", completion + words + " ); COMP_CWORD=" + std::to_string( current ) +
                           "; _xcvr; echo \" ${COMPREPLY[*]} \"" );
      return shell( "bash complete" ).out;
   };
   EXPECT_EQ( allMatches( completed( "''", 1 ), "([a-z][a-z-]+) " ), commands );
   EXPECT_EQ( allMatches( completed( "-", 1 ), "-(-[a-z-]+) " ), options );
   for ( std::string const & command : commands ) {
      std::set<std::string> const own =
         allMatches( run( command + " --help" ).out, "\n  [^\n]*?-(-[a-z-]+) " );
      EXPECT_EQ( allMatches( completed( command + " -", 2 ), "-(-[a-z-]+) " ), own ) << command;
      options.insert( own.begin(), own.end() );
   }
   EXPECT_EQ( allMatches( completed( "show std", 2 ), "([a-z]+) " ),
              ( std::set<std::string>{ "stdin", "stdout", "stderr" } ) );

   std::string const manual = contentOf( XCVR_SOURCE_DIR "/docs/man/xcvr.1" );
   EXPECT_EQ( allMatches( manual, "\n\\.It Fl (?:h , Fl )?(-[a-z-]+)" ), options );
   EXPECT_EQ( allMatches( manual, "\n\\.It Cm ([a-z][a-z-]+)" ), commands );
}

} // namespace
} // namespace XcvrTest

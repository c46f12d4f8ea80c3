#pragma once

#include "tools/xcvr/ModuleImage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace XcvrTest {

using ::testing::AllOf;
using ::testing::ContainsRegex;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;
using Json = nlohmann::json;

/// The content of a file; empty if there is none.
inline std::string contentOf( std::filesystem::path const & path ) {
   std::ostringstream content;
   content << std::ifstream( path, std::ios::binary ).rdbuf();
   return content.str();
}

/// What the first group of a pattern is wherever the pattern matches.
inline std::set<std::string> allMatches( std::string const & text, char const * pattern ) {
   std::set<std::string> found;
   std::regex const expression( pattern );
   for ( std::sregex_iterator at( text.begin(), text.end(), expression ), end; at != end; ++at ) {
      found.insert( ( *at )[1] );
   }
   return found;
}

inline constexpr char const * untold = "(not told)";

/// The fact of that label, of what `show` printed, in one line; `untold` if there is none.
inline std::string fact( std::string const & out, std::string const & label ) {
   std::regex const special( R"([.()])" );
   std::regex const line( "   " + std::regex_replace( label, special, R"(\$&)" ) +
                          " +: (.*(?:\n {10,}.*)*)" );
   std::smatch found;
   return std::regex_search( out, found, line )
             ? std::regex_replace( found[1].str(), std::regex( "\n +" ), " " )
             : untold;
}

struct ExpectedFact {
   char const * label;
   char const * text;
};

inline XcvrTool::ModuleImage exampleImage( std::string const & name ) {
   return XcvrTool::readImage( XCVR_SOURCE_DIR "/examples/modules/" + name + ".txt",
                               XcvrTool::anyFamily );
}

/// A builder that begins with the pages of an example module.
template <typename Builder>
Builder example( std::string const & name ) {
   Builder builder;
   XcvrTool::ModuleImage const image = exampleImage( name );
   for ( std::string_view const label : builder.pageLabels() ) {
      std::string const * page = image.page( label );
      page ? builder.pageIs( label, *page ) : builder.missing( label );
   }
   return builder;
}

/// A labelled image of the pages that a builder has.
template <typename Builder>
std::string labelled( Builder const & built ) {
   XcvrTool::ModuleImage result;
   for ( std::string_view const label : built.pageLabels() ) {
      if ( std::string const page = built.page( label ); !page.empty() ) {
         result.pages[std::string( label )] = page;
      }
   }
   return labelledForm( result );
}

/// What a run reads: bytes, or a module's labelled image.
struct Image {
   template <typename From>
   Image( From const & from ) {
      if constexpr ( requires { labelledForm( from ); } ) {
         bytes = labelledForm( from );
      } else if constexpr ( requires { from.pageLabels(); } ) {
         bytes = labelled( from );
      } else {
         bytes = from;
      }
   }
   std::string bytes;
};

/// An image, and how the one line begins, behind the file's name, that `check` has to say of it; null
/// for one with nothing wrong.
struct CheckedImage {
   Image image;
   char const * finding;
};

/// The values in `expected` are those in the same places of `actual`; in an object, elements of an
/// array have their index for a name.
inline void expectJson( Json const & actual, std::string const & expected ) {
   Json const leaves = Json::parse( expected ).flatten();
   for ( auto const & [place, value] : leaves.items() ) {
      Json::json_pointer const pointer( place );
      EXPECT_EQ( actual.contains( pointer ) ? actual.at( pointer ) : "absent", value ) << place;
   }
}

/// What one run of the program came to.
struct ToolRun {
   int exitCode;
   std::string out;
   std::string err;
};

/// Runs the real program in a folder of its own.
class ToolTest : public ::testing::Test {
 protected:
   ToolTest() { std::filesystem::create_directories( folder_ ); }
   ~ToolTest() override { std::filesystem::remove_all( folder_ ); }

   /// Writes a file and gives its name, which is relative to the folder.
   std::string file( std::string const & name, Image const & content ) const {
      std::ofstream( folder_ / name, std::ios::binary ) << content.bytes;
      return name;
   }
   std::string path( std::string const & name ) const { return ( folder_ / name ).string(); }

   /// Runs a shell command in which `xcvr` is the program; a run of 20 s has failed.
   [[nodiscard]] ToolRun shell( std::string const & command, Image const & input = "" ) const {
      file( "stdin", input );
      file( "command", "xcvr() { timeout 20 '" XCVR_TOOL_PATH "' \"$@\"; }\n" + command + '\n' );
      std::string const line =
         "cd '" + folder_.string() + "' && sh command <stdin >stdout 2>stderr";
      int const status = std::system( line.c_str() );
      return { WIFEXITED( status ) ? WEXITSTATUS( status ) : -1, contentOf( folder_ / "stdout" ),
               contentOf( folder_ / "stderr" ) };
   }
   [[nodiscard]] ToolRun run( std::string const & arguments, Image const & input = "" ) const {
      return shell( "xcvr " + arguments, input );
   }

   void expectFacts( Image const & image, std::vector<ExpectedFact> const & facts ) const {
      ToolRun const run = this->run( "show -", image );
      EXPECT_EQ( run.exitCode, 0 ) << run.err;
      for ( auto const & [label, text] : facts ) {
         EXPECT_EQ( fact( run.out, label ), text ) << label;
      }
   }
   /// What a command prints of an image, with each run of blanks as one.
   [[nodiscard]] std::string shown( std::string const & command, Image const & image ) const {
      return std::regex_replace( run( command + " -", image ).out, std::regex( " +" ), " " );
   }
   static void expectLines( std::string const & out, std::vector<char const *> const & lines ) {
      for ( char const * line : lines ) {
         EXPECT_THAT( out, HasSubstr( line ) );
      }
   }
   void expectFindings( std::vector<CheckedImage> const & images ) const {
      for ( auto const & [image, finding] : images ) {
         ToolRun const run = this->run( "check -", image );
         EXPECT_EQ( run.exitCode, finding ? 1 : 0 ) << run.err;
         EXPECT_THAT( run.out, ContainsRegex( finding ? std::string( "<stdin>: " ) + finding
                                                      : std::string( "^$" ) ) );
      }
   }

   std::filesystem::path const folder_ =
      std::filesystem::temp_directory_path() /
      ( "xcvr-tool-test-" + std::to_string( ::getpid() ) + "-" +
        ::testing::UnitTest::GetInstance()->current_test_info()->name() );
};

} // namespace XcvrTest

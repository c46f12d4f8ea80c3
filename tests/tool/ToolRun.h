#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

namespace XcvrTest {

/// The content of a file; empty if there is none.
inline std::string contentOf( std::filesystem::path const & path ) {
   std::ostringstream content;
   content << std::ifstream( path, std::ios::binary ).rdbuf();
   return content.str();
}

/// The one fact with that label, of what `show` printed.
inline std::string fact( std::string const & out, std::string const & label ) {
   std::smatch found;
   std::regex const line( "   " + label + " +: (.*(?:\n {10,}.*)*)" );
   return std::regex_search( out, found, line ) ? found[1].str() : "(no " + label + ")";
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
   std::string file( std::string const & name, std::string_view content ) const {
      std::ofstream( folder_ / name, std::ios::binary ) << content;
      return name;
   }

   /// Runs a shell command in which `xcvr` is the program; a run of 20 s has failed.
   [[nodiscard]] ToolRun shell( std::string const & command, std::string_view input = {} ) const {
      file( "stdin", input );
      file( "command", "xcvr() { timeout 20 '" XCVR_TOOL_PATH "' \"$@\"; }\n" + command + '\n' );
      std::string const line =
         "cd '" + folder_.string() + "' && sh command <stdin >stdout 2>stderr";
      int const status = std::system( line.c_str() );
      return { WIFEXITED( status ) ? WEXITSTATUS( status ) : -1, contentOf( folder_ / "stdout" ),
               contentOf( folder_ / "stderr" ) };
   }
   [[nodiscard]] ToolRun run( std::string const & arguments, std::string_view input = {} ) const {
      return shell( "xcvr " + arguments, input );
   }

   std::filesystem::path const folder_ =
      std::filesystem::temp_directory_path() /
      ( "xcvr-tool-test-" + std::to_string( ::getpid() ) + "-" +
        ::testing::UnitTest::GetInstance()->current_test_info()->name() );
};

} // namespace XcvrTest

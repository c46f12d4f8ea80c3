#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace XcvrTest {

/// Whether something becomes true while there is any hope; waits on the way.
template <typename Condition>
bool eventually( Condition condition ) {
   auto const last = std::chrono::steady_clock::now() + std::chrono::seconds( 60 );
   while ( !condition() ) {
      if ( std::chrono::steady_clock::now() > last ) {
         return false;
      }
      ::poll( nullptr, 0, 5 );
   }
   return true;
}

/// A process of this test's own: it does not outlive this.
class Process {
 public:
   /// One that does something and ends with the exit code that this gives.
   template <typename Run>
   explicit Process( Run run ) : pid_( ::fork() ) {
      if ( pid_ == 0 ) {
         ::_exit( run() );
      }
   }
   Process( Process const & ) = delete;
   Process & operator=( Process const & ) = delete;
   ~Process() { end( SIGKILL ); }

   /// Its exit code, or the number of the signal that ended it below 0. One that does not end is a
   /// failure, and killed.
   int end( int signal = 0 ) {
      if ( pid_ > 0 ) {
         if ( signal != 0 ) {
            ::kill( pid_, signal );
         }
         int status = 0;
         if ( !eventually( [&] { return ::waitpid( pid_, &status, WNOHANG ) == pid_; } ) ) {
            ADD_FAILURE() << "process " << pid_ << " does not end";
            ::kill( pid_, SIGKILL );
            ::waitpid( pid_, &status, 0 );
         }
         pid_ = -1;
         code_ = WIFEXITED( status ) ? WEXITSTATUS( status ) : -WTERMSIG( status );
      }
      return code_;
   }

 private:
   pid_t pid_;
   int code_ = 0;
};

/// Runs the program in a folder of its own, also in the background.
class ProcessTest : public ::testing::Test {
 protected:
   ProcessTest() { std::filesystem::create_directories( folder ); }
   ~ProcessTest() override { std::filesystem::remove_all( folder ); }

   /// Its output goes to the files NAME.out, or to `out`, and NAME.err.
   [[nodiscard]] std::unique_ptr<Process>
   tool( std::string const & name, std::vector<std::string> words, int out = -1 ) const {
      return std::make_unique<Process>( [&] {
         std::vector<char *> arguments = { const_cast<char *>( XCVR_TOOL_PATH ) };
         for ( std::string & word : words ) {
            arguments.push_back( word.data() );
         }
         arguments.push_back( nullptr );
         for ( auto const & [fd, end] : { std::pair( 1, ".out" ), std::pair( 2, ".err" ) } ) {
            ::dup2(
               ::open( ( folder / ( name + end ) ).c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0666 ),
               fd );
         }
         if ( out >= 0 ) {
            ::dup2( out, STDOUT_FILENO );
         }
         return ::chdir( folder.c_str() ) == 0 ? ::execv( arguments[0], arguments.data() ) : 1;
      } );
   }
   [[nodiscard]] std::string file( std::string const & name ) const {
      std::ostringstream content;
      content << std::ifstream( folder / name, std::ios::binary ).rdbuf();
      return content.str();
   }
   /// The file is there as a whole or not at all.
   void fileIs( std::string const & name, std::string_view content ) const {
      std::ofstream( folder / ( name + ".new" ), std::ios::binary ) << content;
      std::filesystem::rename( folder / ( name + ".new" ), folder / name );
   }
   /// Whether what has been printed becomes this.
   [[nodiscard]] ::testing::AssertionResult becomes( std::string const & name,
                                                     std::string const & lines ) const {
      return eventually( [&] { return file( name ) == lines; } )
                ? ::testing::AssertionSuccess()
                : ::testing::AssertionFailure() << "it is:\n"
                                                << file( name ) << "and not:\n"
                                                << lines;
   }

   /// Not in a folder for temporary files that has a long name: names of sockets are short.
   std::filesystem::path const folder = "/tmp/xcvr-agent-test-" + std::to_string( ::getpid() );
};

} // namespace XcvrTest

#include "tools/xcvr/CommandLine.h"

#include "tools/xcvr/Commands.h"
#include "tools/xcvr/ModuleImage.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fmt/format.h>
#include <sstream>
#include <unistd.h>

namespace XcvrTool {

namespace {

enum ExitCode { exitDone = 0, exitUsage = 2, exitInput = 3 };

struct Command {
   char const * name;
   char const * purpose;
   char const * example;
   std::string ( *text )( ModuleImage const &, Style const & );
   Json ( *json )( ModuleImage const &, Json & units ); // null: no --json
};

constexpr Command commands[] = {
   { "show", "Decode module images: identity, media type, reach, options, checksums",
     "ethtool -m eth0 hex on | xcvr show -\n"
     "  xcvr show --json module.bin | jq -r '.modules[].vendorInfo.vendorPn'",
     showText, showJson },
   { "hexdump", "Print module memory with each field's name and value beside its bytes",
     "xcvr hexdump module.bin", hexdumpText, nullptr },
   { "explain", "Say which rule chose the media type, and which were tried before it",
     "xcvr explain module.bin", explainText, nullptr },
};

struct Arguments {
   Command const * command = nullptr;
   std::vector<std::string> files;
   ImageFamily family = ImageFamily::automatic;
   bool json = false;
};

/// Results on standard output. What cannot be written is noticed, not lost.
class Output {
 public:
   void write( std::string_view text ) {
      if ( std::fwrite( text.data(), 1, text.size(), stdout ) != text.size() ) {
         failed();
      }
   }
   void flush() {
      if ( std::fflush( stdout ) != 0 ) {
         failed();
      }
   }
   /// 0, or the number of the first error.
   [[nodiscard]] int error() const { return error_; }

 private:
   void failed() { error_ = error_ ? error_ : errno; }
   int error_ = 0;
};

void complain( std::string const & text ) {
   std::fputs( ( "xcvr: " + text + '\n' ).c_str(), stderr );
}

void describeArguments( CLI::App & app, Arguments & arguments ) {
   app.name( "xcvr" );
   app.description( "Decodes the management memory of pluggable transceivers (SFP, SFP+, SFP28)." );
   app.set_version_flag( "--version", "xcvr " XCVR_VERSION, "Print the version and exit" );
   app.set_help_flag( "-h,--help", "Print this help and exit" );
   app.require_subcommand( 1 );
   app.footer(
      "FILE is a binary image (ethtool -m DEV raw on), a hex dump (ethtool -m DEV hex on,\n"
      "hexdump -C, xxd, i2cdump, plain hex) or a labelled image ([a0h] and [a2h] above\n"
      "hex bytes); - is standard input.\n\n"
      "Example:\n  xcvr show module.bin\n\n"
      "Exit code: 0 done, 2 wrong usage, 3 an input could not be read or the results not\n"
      "written. See xcvr COMMAND --help and man xcvr." );
   for ( Command const & command : commands ) {
      CLI::App & sub = *app.add_subcommand( command.name, command.purpose );
      sub.add_option( "FILE", arguments.files, "Module images; - is standard input" )
         ->required()
         ->type_name( "" );
      sub.add_option( "--family", "Kind of module, instead of finding out: sfp" )
         ->type_name( "KIND" )
         ->check( CLI::IsMember( { "sfp" } ).description( "" ) )
         ->each( [&arguments]( std::string const & ) { arguments.family = ImageFamily::sfp; } );
      if ( command.json ) {
         sub.add_flag( "--json", arguments.json, "Print JSON, for programs" );
      }
      sub.footer( fmt::format( "Example:\n  {}", command.example ) );
      sub.callback( [&arguments, &command] { arguments.command = &command; } );
   }
}

/// Calls `visit` with each image that can be read and complains about the others. False if there
/// are such.
template <typename Visit>
bool forEachImage( Arguments const & arguments, Output & output, Visit visit ) {
   bool allRead = true;
   for ( std::string const & file : arguments.files ) {
      try {
         visit( readImage( file, arguments.family ) );
      } catch ( ImageError const & error ) {
         output.flush(); // so that both streams keep their order on a terminal
         complain( error.what() );
         allRead = false;
      }
   }
   return allRead;
}

bool printText( Arguments const & arguments, Output & output ) {
   char const * const noColor = std::getenv( "NO_COLOR" );
   Style const style{ .colour = isatty( STDOUT_FILENO ) && !( noColor && *noColor ) };
   bool isFirst = true;
   return forEachImage( arguments, output, [&]( ModuleImage const & image ) {
      if ( arguments.files.size() > 1 ) {
         output.write( ( isFirst ? "" : "\n" ) + style.heading( shownFileName( image.file ) ) +
                       '\n' );
      }
      output.write( arguments.command->text( image, style ) );
      isFirst = false;
   } );
}

bool printJson( Arguments const & arguments, Output & output ) {
   Json units = Json::object();
   Json modules = Json::array();
   bool const allRead = forEachImage( arguments, output, [&]( ModuleImage const & image ) {
      modules.push_back( arguments.command->json( image, units ) );
   } );
   Json const all = { { "schema", 1 }, { "units", units }, { "modules", modules } };
   // ASCII only: whatever bytes a module holds, they do nothing to a terminal.
   output.write( all.dump( 2, ' ', true ) + '\n' );
   return allRead;
}

/// What CLI11 says about wrong arguments, or about --help and --version.
int sayUsage( CLI::App const & app, CLI::ParseError const & error, Output & output ) {
   std::ostringstream out;
   std::ostringstream err;
   int const code = app.exit( error, out, err );
   output.write( out.str() );
   if ( code == 0 ) {
      return exitDone;
   }
   std::fputs( ( "xcvr: " + err.str() ).c_str(), stderr );
   return exitUsage;
}

/// The arguments, the last one first, as CLI11 takes them. It would unpack "[a,b]" into its parts;
/// the file of that name is meant.
std::vector<std::string> wordsOf( int argc, char const * const * argv ) {
   std::vector<std::string> words;
   for ( int i = argc - 1; i > 0; --i ) {
      std::string const word = argv[i];
      words.push_back( word.starts_with( '[' ) ? "./" + word : word );
   }
   return words;
}

int runCommand( int argc, char const * const * argv, Output & output ) {
   CLI::App app;
   Arguments arguments;
   describeArguments( app, arguments );
   try {
      app.parse( wordsOf( argc, argv ) );
   } catch ( CLI::ParseError const & error ) {
      return sayUsage( app, error, output );
   }
   if ( std::ranges::count( arguments.files, "-" ) > 1 ) {
      complain( "standard input (-) can be read only once; name it once" );
      return exitUsage;
   }
   bool const allRead =
      arguments.json ? printJson( arguments, output ) : printText( arguments, output );
   return allRead ? exitDone : exitInput;
}

} // namespace

int run( int argc, char const * const * argv ) {
   // A reader that has seen enough (head, less) ends the program quietly, whatever it inherited.
   std::signal( SIGPIPE, SIG_DFL );
   Output output;
   int const code = runCommand( argc, argv, output );
   output.flush();
   if ( output.error() ) {
      complain( fmt::format( "cannot write the results ({}); make room or write elsewhere",
                             std::strerror( output.error() ) ) );
      return exitInput;
   }
   return code;
}

} // namespace XcvrTool

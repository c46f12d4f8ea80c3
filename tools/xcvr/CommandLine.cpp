#include "tools/xcvr/CommandLine.h"

#include "tools/xcvr/Commands.h"
#include "tools/xcvr/ControlSet.h"
#include "tools/xcvr/Module.h"
#include "tools/xcvr/Watch.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <fstream>
#include <memory>
#include <poll.h>
#include <set>
#include <sstream>
#include <unistd.h>

namespace XcvrTool {

namespace {

enum ExitCode { exitDone = 0, exitFindings = 1, exitUsage = 2, exitInput = 3 };

/// A command that looks at modules.
struct Command {
   char const * name;
   char const * purpose;
   char const * example;
   std::string ( *text )( Module const &, Style const & );
   Json ( *json )( Module const &, Json & units ) = nullptr; // null: no --json
   /// Null: a module is what it is. Such a command names each module above what it says of it.
   bool ( *hasFindings )( Module const & ) = nullptr;
   bool takesAgents = false; // instead of files
};

constexpr Command commands[] = {
   { "show", "Decode module images: identity, media type, monitors, thresholds, checksums",
     "ethtool -m eth0 hex on | xcvr show -\n"
     "  xcvr show --json module.bin | jq -r '.modules[].vendorInfo.vendorPn'",
     showText, showJson, nullptr, true },
   { "hexdump", "Print module memory with each field's name and value beside its bytes",
     "xcvr hexdump module.bin", hexdumpText },
   { "explain", "Say which rule chose the media type, and which were tried before it",
     "xcvr explain module.bin", explainText },
   { "check", "Report what is wrong with module images, a finding a line",
     "xcvr check *.bin && echo all is well", checkText, checkJson, hasFindings },
};

struct Arguments {
   Command const * command = nullptr; // null: media-types
   std::vector<std::string> files;
   XcvrType family = anyFamily;
   bool json = false;
   bool isControlSet = false; // one file, no module
   ControlSetChange change;
   std::vector<std::string> sockets; // of agents, instead of files
   bool isWatch = false;
   bool isAgent = false;
   AgentOptions agent;
   std::string output; // where the control set goes; empty: nowhere
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

void describeJson( CLI::App & command, Arguments & arguments ) {
   command.add_flag( "--json", arguments.json, "Print JSON, for programs" );
}

void describeControlSet( CLI::App & app, Arguments & arguments ) {
   CLI::App & sub = *app.add_subcommand(
      "control-set", "Show a QSFP-DD or OSFP control set, or change settings of its lanes" );
   sub.add_option( "FILE", arguments.files,
                   "The 29 bytes, or a hex dump of them; - is standard input" )
      ->required()
      ->expected( 1 )
      ->type_name( "" );
   CLI::Option & lanes =
      *sub.add_option( "--lane", arguments.change.lanes, "Lanes to change, 1 to 8" )
          ->type_name( "LANE,..." )
          ->delimiter( ',' )
          ->expected( 1 )
          ->take_all()
          ->check( CLI::Range( 1u, 8u ).description( "" ) );
   for ( std::size_t i = 0; i < laneSettingCount; ++i ) {
      LaneSetting const & setting = laneSettings[i];
      sub.add_option( fmt::format( "--{}", setting.option ), arguments.change.values[i],
                      fmt::format( "{}, 0 to {}", setting.label, setting.largest ) )
         ->type_name( "CODE" )
         ->needs( &lanes )
         ->check( CLI::Range( 0u, setting.largest ).description( "" ) );
   }
   sub.add_flag( "--force", arguments.change.force, "Even if that changes another lane too" );
   sub.add_option( "--output", arguments.output, "Write the 29 bytes, as changed, to a file" )
      ->type_name( "FILE" );
   describeJson( sub, arguments );
   sub.footer( "Example:\n  xcvr control-set set.bin --lane 3 --application 2 --tx-eq 5" );
   sub.callback( [&arguments] { arguments.isControlSet = true; } );
}

CLI::Option & describeConnect( CLI::App & command, Arguments & arguments ) {
   return *command
              .add_option( "--connect", arguments.sockets,
                           "Socket of an xcvr agent; any number of times" )
              ->type_name( "SOCKET" )
              ->expected( 1 )
              ->take_all()
              ->allow_extra_args( false );
}

void describeWatch( CLI::App & app, Arguments & arguments ) {
   CLI::App & sub =
      *app.add_subcommand( "watch", "Print the modules that agents serve, and then every change" );
   describeConnect( sub, arguments ).required();
   sub.footer( "Example:\n  xcvr watch --connect /tmp/agent.sock" );
   sub.callback( [&arguments] { arguments.isWatch = true; } );
}

void describeAgent( CLI::App & app, Arguments & arguments ) {
   AgentOptions & options = arguments.agent;
   CLI::App & sub =
      *app.add_subcommand( "agent", "Serve slots, whose modules are image files, to readers" );
   sub.add_option( "--listen", options.socket, "Socket for readers (show --connect, watch)" )
      ->type_name( "SOCKET" )
      ->required();
   sub.add_option( "--slot", options.slots,
                   "A slot and the file that is its module; any number of times" )
      ->type_name( "NAME=FILE" )
      ->required()
      ->expected( 1 )
      ->take_all()
      ->allow_extra_args( false );
   sub.add_option( "--slice", options.slice, "Serve the slots as those of a slice" )
      ->type_name( "NAME" );
   sub.footer( "Example:\n  xcvr agent --listen /tmp/agent.sock --slot Ethernet1=module.bin" );
   sub.callback( [&arguments] { arguments.isAgent = true; } );
}

void describeArguments( CLI::App & app, Arguments & arguments ) {
   app.name( "xcvr" );
   app.description( "Decodes the management memory of pluggable transceivers (SFP, SFP+, SFP28,\n"
                    "QSFP, QSFP+, QSFP28, QSFP-DD, OSFP, CFP2, CFP2-DCO)." );
   app.set_version_flag( "--version", "xcvr " XCVR_VERSION, "Print the version and exit" );
   app.set_help_flag( "-h,--help", "Print this help and exit" );
   app.require_subcommand( 1 );
   app.footer(
      "FILE is a binary image (ethtool -m DEV raw on), a hex dump (ethtool -m DEV hex on,\n"
      "hexdump -C, xxd, i2cdump, plain hex) or a labelled image ([a0h], [lower], [00h]\n"
      "above hex bytes); - is standard input.\n\n"
      "Example:\n  xcvr show module.bin\n\n"
      "Exit code: 0 done, 1 check has findings or control-set refuses, 2 wrong usage, 3 an input "
      "could not\n"
      "be read or the results not written. See xcvr COMMAND --help and man xcvr." );
   for ( Command const & command : commands ) {
      CLI::App & sub = *app.add_subcommand( command.name, command.purpose );
      CLI::Option & files =
         *sub.add_option( "FILE", arguments.files, "Module images; - is standard input" )
             ->required()
             ->type_name( "" );
      CLI::Option & family =
         *sub.add_option_function<std::string>(
                "--family",
                [&arguments]( std::string const & name ) {
                   arguments.family = familyOfName( name );
                },
                "Kind of module, instead of finding out: " + joined( familyNames() ) )
             ->type_name( "KIND" )
             ->check( CLI::IsMember( familyNames() ).description( "" ) );
      if ( command.takesAgents ) {
         CLI::Option & agents = describeConnect( sub, arguments );
         files.required( false )->excludes( &agents );
         family.excludes( &agents );
      }
      if ( command.json ) {
         describeJson( sub, arguments );
      }
      sub.footer( fmt::format( "Example:\n  {}", command.example ) );
      sub.callback( [&arguments, &command] { arguments.command = &command; } );
   }
   describeAgent( app, arguments );
   describeWatch( app, arguments );
   describeControlSet( app, arguments );
   CLI::App & mediaTypes = *app.add_subcommand(
      "media-types", "List the media types: code, name, text, speed, interface" );
   describeJson( mediaTypes, arguments );
   mediaTypes.footer( "Example:\n  xcvr media-types | grep 25GBASE" );
}

/// Calls `visit` with each module that can be read and complains about the others. Gives the exit
/// code.
template <typename Visit>
ExitCode forEachModule( Arguments const & arguments, Output & output, Visit visit ) {
   ExitCode code = exitDone;
   auto const say = [&output]( std::string const & text ) {
      output.flush(); // so that both streams keep their order on a terminal
      complain( text );
   };
   if ( !arguments.sockets.empty() && !forEachRemoteModule( arguments.sockets, say, visit ) ) {
      code = exitInput;
   }
   for ( std::string const & file : arguments.files ) {
      try {
         std::unique_ptr<Module> const module = moduleOf( readImage( file, arguments.family ) );
         for ( std::string const & warning : module->image().warnings ) {
            say( fmt::format( "{}: warning: {}", shownFileName( module->image().file ), warning ) );
         }
         visit( *module );
         if ( auto const hasFindings = arguments.command->hasFindings;
              hasFindings && hasFindings( *module ) ) {
            code = std::max( code, exitFindings );
         }
      } catch ( ImageError const & error ) {
         say( error.what() );
         code = exitInput;
      }
   }
   return code;
}

Style styleOfOutput() {
   bool const isTerminal = isatty( STDOUT_FILENO );
   char const * const noColor = std::getenv( "NO_COLOR" );
   return { .terminal = isTerminal, .colour = isTerminal && !( noColor && *noColor ) };
}

ExitCode printText( Arguments const & arguments, Output & output ) {
   Style const style = styleOfOutput();
   bool const hasHeadings = ( arguments.files.size() > 1 || !arguments.sockets.empty() ) &&
                            !arguments.command->hasFindings;
   bool isFirst = true;
   return forEachModule( arguments, output, [&]( Module const & module ) {
      if ( hasHeadings ) {
         output.write( ( isFirst ? "" : "\n" ) +
                       style.heading( shownFileName( module.image().file ) ) + '\n' );
      }
      output.write( arguments.command->text( module, style ) );
      isFirst = false;
   } );
}

/// ASCII only: whatever bytes a module holds, they do nothing to a terminal.
std::string document( Json const & json ) {
   return json.dump( 2, ' ', true ) + '\n';
}

/// Writes the whole of a file. What stands in the way is said.
bool writeFile( std::string const & path, std::string const & content ) {
   std::ofstream file( path, std::ios::binary );
   file << content;
   file.close();
   if ( !file ) {
      complain( fmt::format( "{}: cannot be written ({}); make room or write elsewhere",
                             shownFileName( path ), std::strerror( errno ) ) );
   }
   return !file.fail();
}

ExitCode printControlSet( Arguments const & arguments, Output & output ) {
   std::string const & file = arguments.files.front();
   try {
      std::string const before = readControlSet( file );
      ControlSetOutcome const outcome = changedControlSet( before, arguments.change );
      if ( !outcome.refusal.empty() ) {
         complain( fmt::format( "{}: {}", shownFileName( file ), outcome.refusal ) );
         return exitFindings;
      }
      if ( !arguments.output.empty() && !writeFile( arguments.output, outcome.image ) ) {
         return exitInput;
      }
      bool const isChange = !arguments.change.lanes.empty();
      output.write( arguments.json ? document( controlSetJson( before, outcome ) )
                                   : controlSetText( before, outcome, isChange, styleOfOutput() ) );
   } catch ( ImageError const & error ) {
      complain( error.what() );
      return exitInput;
   }
   return exitDone;
}

/// What stands for a file of a module that came from an agent is its slot.
Json ofSlot( Json const & module ) {
   Json object = { { "slot", module["file"] } };
   object.update( module );
   object.erase( "file" );
   return object;
}

ExitCode printJson( Arguments const & arguments, Output & output ) {
   Json units = Json::object();
   Json modules = Json::array();
   ExitCode const code = forEachModule( arguments, output, [&]( Module const & module ) {
      Json object = arguments.command->json( module, units );
      modules.push_back( arguments.sockets.empty() ? object : ofSlot( object ) );
   } );
   output.write( document( { { "schema", 1 }, { "units", units }, { "modules", modules } } ) );
   return code;
}

/// Carries out a command that goes on until it is ended, or until nobody takes what it prints.
template <typename Run>
ExitCode runLong( Output & output, Run run ) {
   struct Ended {};
   auto const print = [&]( std::string const & line ) {
      output.write( line + '\n' );
      output.flush();
      if ( output.error() ) {
         throw Ended();
      }
   };
   try {
      run( Console{ print, complain } );
   } catch ( SocketError const & error ) {
      complain( error.what() );
      return exitInput;
   } catch ( Ended const & ) {
      // It is told at the end.
   }
   return exitDone;
}

/// A line that nobody takes is lost, and told when lines are taken again: readers are served meanwhile.
template <typename Write>
auto unlessBlocked( int fd, Write write ) {
   return [fd, write, lost = 0u]( std::string const & line ) mutable {
      pollfd to = { .fd = fd, .events = POLLOUT, .revents = 0 };
      if ( ::poll( &to, 1, 0 ) == 0 ) {
         ++lost;
         return;
      }
      unsigned const before = std::exchange( lost, 0 );
      write( before ? fmt::format( "(lines lost, as nobody took them: {})\n{}", before, line )
                    : line );
   };
}

ExitCode printAgent( AgentOptions const & options, Output & output ) {
   if ( std::string const problem = problemOf( options ); !problem.empty() ) {
      complain( shownFileName( problem ) + "; see xcvr agent --help" );
      return exitUsage;
   }
   std::signal( SIGPIPE, SIG_IGN ); // the socket is removed at the end
   return runLong( output, [&]( Console const & console ) {
      runAgent( options, { unlessBlocked( STDOUT_FILENO, console.print ),
                           unlessBlocked( STDERR_FILENO, console.complain ) } );
   } );
}

/// What CLI11 says about wrong arguments, or about --help and --version.
ExitCode sayUsage( CLI::App const & app, CLI::ParseError const & error, Output & output ) {
   std::ostringstream out;
   std::ostringstream err;
   if ( app.exit( error, out, err ) == 0 ) {
      output.write( out.str() );
      return exitDone;
   }
   // What it quotes of the arguments may hold anything.
   complain( shownFileName( error.what() ) + "; see xcvr --help" );
   return exitUsage;
}

/// Whether the next word is the value of this one.
bool takesValue( CLI::App const & app, std::string const & word ) {
   auto const all = app.get_subcommands( []( CLI::App const * ) { return true; } );
   return std::ranges::any_of( all, [&]( CLI::App const * command ) {
      CLI::Option const * const option = command->get_option_no_throw( word );
      return word.starts_with( '-' ) && option && option->get_items_expected_min() > 0;
   } );
}

/// The arguments, the last one first, as CLI11 takes them. Of several files it would unpack "[a,b]" into
/// its parts; the file of that name is meant.
std::vector<std::string> wordsOf( CLI::App const & app, int argc, char const * const * argv ) {
   std::vector<std::string> words;
   for ( int i = argc - 1; i > 0; --i ) {
      std::string const word = argv[i];
      bool const isFile = word.starts_with( '[' ) && !takesValue( app, argv[i - 1] );
      words.push_back( isFile ? "./" + word : word );
   }
   return words;
}

ExitCode runCommand( int argc, char const * const * argv, Output & output ) {
   CLI::App app;
   Arguments arguments;
   describeArguments( app, arguments );
   try {
      app.parse( wordsOf( app, argc, argv ) );
   } catch ( CLI::ParseError const & error ) {
      return sayUsage( app, error, output );
   }
   if ( std::ranges::count( arguments.files, "-" ) > 1 ) {
      complain( "standard input (-) can be read only once; name it once" );
      return exitUsage;
   }
   std::set<std::string> sockets;
   for ( std::string const & socket : arguments.sockets ) {
      if ( !sockets.insert( socket ).second ) {
         complain( fmt::format( "--connect {}: name an agent once", shownFileName( socket ) ) );
         return exitUsage;
      }
   }
   if ( arguments.isAgent ) {
      return printAgent( arguments.agent, output );
   }
   if ( arguments.isWatch ) {
      return runLong( output,
                      [&]( Console const & console ) { runWatch( arguments.sockets, console ); } );
   }
   if ( arguments.command && arguments.files.empty() && arguments.sockets.empty() ) {
      complain( "FILE is required, or --connect SOCKET; see xcvr show --help" );
      return exitUsage;
   }
   if ( arguments.isControlSet ) {
      return printControlSet( arguments, output );
   }
   if ( !arguments.command ) {
      output.write( arguments.json ? document( mediaTypesJson() )
                                   : mediaTypesText( styleOfOutput() ) );
      return exitDone;
   }
   try {
      return arguments.json ? printJson( arguments, output ) : printText( arguments, output );
   } catch ( SocketError const & error ) {
      complain( error.what() );
      return exitInput;
   }
}

/// What is opened must not pass for a standard stream that was closed. Using one of those still fails.
void openClosedStreams() {
   for ( int const fd : { STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO } ) {
      if ( ::fcntl( fd, F_GETFD ) < 0 ) {
         ::open( "/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY ); // it gets that number
      }
   }
}

} // namespace

int run( int argc, char const * const * argv ) {
   openClosedStreams();
   // A reader that has seen enough (head, less) ends the program quietly, whatever it inherited.
   std::signal( SIGPIPE, SIG_DFL );
   Output output;
   ExitCode const code = runCommand( argc, argv, output );
   output.flush();
   if ( output.error() ) {
      complain( fmt::format( "cannot write the results ({}); make room or write elsewhere",
                             std::strerror( output.error() ) ) );
      return exitInput;
   }
   return code;
}

} // namespace XcvrTool

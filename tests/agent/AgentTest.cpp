#include "tools/xcvr/Agent.h"
#include "tests/agent/Processes.h"
#include "tests/platform/EntityText.h"
#include "tests/support/SfpImageBuilder.h"
#include "tools/xcvr/Readers.h"
#include "tools/xcvr/Server.h"
#include "tools/xcvr/StatusPaths.h"

#include <Vel/DefineEntity.h>
#include <Xcvr/XcvrSfpPlus.h>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <memory>
#include <random>
#include <sys/socket.h>

// Agents and readers as processes of their own: the tool's, and for many writes this test itself.
namespace XcvrTool {
namespace {

using Xcvr::SfpNewStatus;
using XcvrTest::asText;
using XcvrTest::eventually;
using XcvrTest::Process;

#if defined( __has_feature )
constexpr bool keepsFreedMemory = __has_feature( address_sanitizer );
#elif defined( __SANITIZE_ADDRESS__ )
constexpr bool keepsFreedMemory = true;
#else
constexpr bool keepsFreedMemory = false;
#endif

class AgentTest : public XcvrTest::ProcessTest {
 protected:
   /// The image of a module with that serial number and temperature.
   static std::string module( char const * serialNumber, double temperature ) {
      XcvrTest::SfpImageBuilder builder;
      builder.text( "vendorName", "NORTHLIGHT" )
         .text( "vendorPn", "NL-1" )
         .text( "vendorSn", serialNumber )
         .bit( "diagsMonitoringType", "digital diagnostics" )
         .bit( "diagsMonitoringType", "internally calibrated" )
         .value( "domTemperature", temperature );
      return builder.a0h() + builder.a2h();
   }
   static std::string appeared( std::string const & slot, std::string const & serialNumber ) {
      return slot + ": appeared: Unknown, NORTHLIGHT NL-1, serial number " + serialNumber + "\n";
   }
};

TEST_F( AgentTest, whatIsServedIsShownAsTheFilesAre ) {
   std::vector<std::string> agentWords = { "agent", "--listen", "socket" };
   std::vector<std::string> showWords = { "show", "--json" };
   for ( auto const & entry :
         std::filesystem::directory_iterator( XCVR_SOURCE_DIR "/examples/modules" ) ) {
      std::string const name = entry.path().filename();
      if ( entry.path().extension() == ".txt" ) {
         agentWords.insert( agentWords.end(), { "--slot", name + '=' + entry.path().string() } );
         showWords.push_back( entry.path() );
      }
   }
   auto const agent = tool( "agent", agentWords );
   ASSERT_TRUE( eventually( [&] { return file( "agent.out" ).starts_with( "serving" ); } ) );
   EXPECT_EQ( tool( "files", showWords )->end(), 0 );
   EXPECT_EQ( tool( "slots", { "show", "--json", "--connect", "socket" } )->end(), 0 );
   auto files = nlohmann::json::parse( file( "files.out" ) );
   auto slots = nlohmann::json::parse( file( "slots.out" ) );
   for ( auto & module : files["modules"] ) {
      module["slot"] = std::filesystem::path( module["file"] ).filename();
      module.erase( "file" );
   }
   auto const before = []( auto const & one, auto const & two ) {
      return one["slot"] < two["slot"];
   };
   for ( auto * all : { &files["modules"], &slots["modules"] } ) {
      std::sort( all->begin(), all->end(), before );
   }
   ASSERT_GT( files["modules"].size(), 20u );
   EXPECT_EQ( slots, files ) << nlohmann::json::diff( files, slots );
   EXPECT_EQ( file( "slots.err" ), "" );
}

TEST_F( AgentTest, aPersonPlaysHardware ) {
   fileIs( "a", module( "A", 20 ) );
   fileIs( "b", module( "B", 20 ) );
   std::vector<std::string> const fixedWords = { "agent",       "--listen", "fixed",       "--slot",
                                                 "Ethernet1=a", "--slot",   "Ethernet10=c" };
   std::vector<std::string> const sliceWords = { "agent",         "--listen", "slice", "--slot",
                                                 "Ethernet2/1=b", "--slice",  "L1" };
   auto const fixed = tool( "fixed", fixedWords );
   auto slice = tool( "slice", sliceWords );
   std::string const greeting = "serving 1 slot on slice\n";
   ASSERT_TRUE(
      becomes( "slice.out",
               greeting + "Ethernet2/1: inserted: Unknown, NORTHLIGHT NL-1, serial number B\n" ) );
   auto const watch = tool( "watch", { "watch", "--connect", "fixed", "--connect", "slice" } );
   std::string const first = appeared( "Ethernet1", "A" );
   std::string const second = appeared( "Ethernet2/1", "B" );
   EXPECT_TRUE(
      eventually( [&] { return file( "watch.out" ).size() == ( first + second ).size(); } ) );
   std::string lines = file( "watch.out" );
   EXPECT_TRUE( lines == first + second || lines == second + first ) << lines;

   fileIs( "a", module( "A", 40 ) ); // what is measured
   ASSERT_TRUE(
      becomes( "watch.out", lines += "Ethernet1: domInfo/0/temperature: 20 °C -> 40 °C\n" ) );
   // Killed, an agent leaves its socket; what it served is gone until there is another one.
   EXPECT_EQ( slice->end( SIGKILL ), -SIGKILL );
   ASSERT_TRUE( becomes( "watch.out", lines += "Ethernet2/1: withdrawn\n" ) );
   fileIs( "c", module( "C", 20 ) ); // a module comes
   ASSERT_TRUE( becomes( "watch.out", lines += appeared( "Ethernet10", "C" ) ) );
   fileIs( "c", "nonsense" ); // and cannot be read for a while
   EXPECT_TRUE( eventually( [&] { return !file( "fixed.err" ).empty(); } ) );
   fileIs( "c", module( "C2", 20 ) ); // another one
   ASSERT_TRUE(
      becomes( "watch.out", lines += "Ethernet10: withdrawn\n" + appeared( "Ethernet10", "C2" ) ) );
   EXPECT_THAT( file( "fixed.err" ),
                testing::MatchesRegex( "xcvr: Ethernet10: c: text, but [^\n]*; "
                                       "the slot stays as it was\n" ) );
   std::filesystem::remove( folder / "a" );
   ASSERT_TRUE( becomes( "watch.out", lines += "Ethernet1: withdrawn\n" ) );

   fileIs( "b", module( "B2", 20 ) );
   slice = tool( "slice", sliceWords );
   ASSERT_TRUE( becomes( "watch.out", lines += appeared( "Ethernet2/1", "B2" ) ) );
   EXPECT_EQ( file( "watch.err" ), "xcvr: slice: the agent has gone; start it again\n" );

   EXPECT_EQ( tool( "second", fixedWords )->end(), 3 );
   EXPECT_EQ( file( "second.err" ),
              "xcvr: fixed: another agent listens there; end it or give another name\n" );
   EXPECT_EQ( tool( "show", { "show", "--connect", "slice", "--connect", "fixed" } )->end(), 0 );
   EXPECT_THAT( file( "show.out" ),
                testing::ContainsRegex( "^Ethernet2/1\n   [^$]*\n\nEthernet10\n   " ) );

   EXPECT_EQ( fixed->end( SIGTERM ), 0 );
   EXPECT_FALSE( std::filesystem::exists( folder / "fixed" ) );
   ASSERT_TRUE( becomes( "watch.out", lines += "Ethernet10: withdrawn\n" ) );
   EXPECT_EQ( tool( "show", { "show", "--connect", "slice", "--connect", "fixed" } )->end(), 3 );
   EXPECT_THAT( file( "show.out" ), testing::ContainsRegex( "^Ethernet2/1\n   " ) );
   EXPECT_EQ( file( "show.err" ), "xcvr: fixed: no agent can be reached (No such file or "
                                  "directory); start one with xcvr agent --listen\n" );
}

TEST_F( AgentTest, aSlotIsServedOnce ) {
   fileIs( "a", module( "A", 20 ) );
   fileIs( "b", module( "B", 20 ) );
   // The words of the second agent, and what show has to say.
   std::pair<std::vector<std::string>, char const *> const cases[] = {
      { { "--slice", "L2", "--slot", "E1=b" },
        "xcvr: s2: E1 is served by s1 as well; give slots other names\n" },
      { { "--slice", "L1", "--slot", "E2=b" },
        "xcvr: s2: hardware/xcvr/status/slice/L1 is served by s1 as well; give agents of different "
        "slices\n" },
   };
   auto const first =
      tool( "first", { "agent", "--listen", "s1", "--slice", "L1", "--slot", "E1=a" } );
   for ( auto const & [ofSecond, complaint] : cases ) {
      std::vector<std::string> words = { "agent", "--listen", "s2" };
      words.insert( words.end(), ofSecond.begin(), ofSecond.end() );
      std::string const name = "second" + ofSecond[1];
      auto const second = tool( name, words );
      for ( std::string const & out : { std::string( "first.out" ), name + ".out" } ) {
         ASSERT_TRUE(
            eventually( [&] { return file( out ).find( "inserted" ) != std::string::npos; } ) );
      }
      EXPECT_EQ( tool( "show", { "show", "--connect", "s1", "--connect", "s2" } )->end(), 3 );
      EXPECT_THAT( file( "show.out" ), testing::HasSubstr( "serial number  : A\n" ) );
      EXPECT_EQ( file( "show.err" ), complaint );
      EXPECT_EQ( second->end( SIGTERM ), 0 );
   }
}

TEST_F( AgentTest, nobodyWaitsForWhoTakesNoLines ) {
   std::string const longName( 300, 'E' ); // so that few lines fill a pipe
   int ends[2];
   ASSERT_EQ( ::pipe( ends ), 0 );
   std::vector<std::string> words = { "agent", "--listen", "socket" };
   for ( unsigned i = 0; i < 240; ++i ) {
      words.insert( words.end(), { "--slot", longName + std::to_string( i ) + "=a" } );
   }
   fileIs( "a", module( "A", 20 ) );
   auto const agent = tool( "agent", words, ends[1] );
   ASSERT_TRUE( eventually( [&] { return std::filesystem::exists( folder / "socket" ); } ) );
   EXPECT_EQ( tool( "show", { "show", "--connect", "socket" } )->end(), 0 );
   EXPECT_THAT( file( "show.out" ), testing::HasSubstr( "\n\n" + longName + "239\n" ) );
   EXPECT_EQ( agent->end( SIGTERM ), 0 );
   ::close( ends[0] );
   ::close( ends[1] );
}

// ---------------------------------------------------------------------------------------------
// Many writes

Vel::Ptr<SfpNewStatus> newSlot( unsigned number ) {
   return Xcvr::sfpNewStatusFactory( Vel::Name( "slot" + std::to_string( number ) ) );
}

std::string textOf( auto const & statuses ) {
   std::string all;
   for ( auto const & status : statuses ) {
      all += asText( *status );
   }
   return all;
}

/// Eight slots, which come and go, and whose attributes change, at random.
class RandomAgent {
 public:
   explicit RandomAgent( SlotSet & set ) : set_( set ) {}

   void write() {
      unsigned const slot = pick( 8 );
      Vel::Ptr<SfpNewStatus> & status = statuses_[slot];
      if ( !status || pick( 300 ) == 0 ) {
         status = newSlot( slot );
         set_.statusIs( status );
         return;
      }
      Xcvr::LaneId const lane( static_cast<uint8_t>( pick( 4 ) ) );
      auto const place = static_cast<uint16_t>( 0xa260 + pick( 20 ) );
      std::function<void()> const writes[] = {
         [&] { status->channelIs( pick( 5 ) ); },
         [&] { status->lastDomUpdateTimeIs( pick( 1000000 ) / 7. ); },
         [&] { status->presenceChangesInc( 1 ); },
         [&] { status->enhancedDomMappingIs( pick( 50 ), static_cast<uint16_t>( pick( 9 ) ) ); },
         [&] { status->enhancedDomMappingDel( pick( 50 ) ); },
         [&] { status->laneStatusIs( lane )->txLosIs( pick( 2 ) ); },
         [&] { status->laneStatusDel( lane ); },
         [&] {
            status->registerDataIs( { place, static_cast<uint8_t>( pick( 256 ) ) } );
         },
      };
      writes[pick( std::size( writes ) )]();
   }
   /// The last thing: a slot whose appearance says that there is no more.
   void end() {
      statuses_[8] = newSlot( 8 );
      set_.statusIs( statuses_[8] );
   }
   [[nodiscard]] std::string text() const { return textOf( statuses_ ); }
   unsigned pick( unsigned count ) { return static_cast<unsigned>( random_() % count ); }

 private:
   SlotSet & set_;
   std::mt19937 random_{ 7 };
   std::array<Vel::Ptr<SfpNewStatus>, 9> statuses_;
};

class ManyWritesTest : public XcvrTest::ProcessTest {
 protected:
   /// What a reader has in the end goes to a file.
   [[nodiscard]] std::unique_ptr<Process> reader( std::string const & name ) const {
      return std::make_unique<Process>( [this, name] {
         ::alarm( 60 );
         Readers readers( { socket }, []( std::string const & ) {} );
         while ( true ) {
            readers.turn( 100 );
            auto const published = readers.published();
            if ( !published.empty() && published.back()->name() == "slot8" ) {
               fileIs( name, textOf( published ) );
               return 0;
            }
         }
      } );
   }
   void serveUntil( std::function<bool()> const & condition ) {
      ASSERT_TRUE( eventually( [&] {
         server.turn( 0 );
         return condition();
      } ) );
   }
   static std::size_t residentBytes() {
      std::size_t pages = 0;
      std::ifstream( "/proc/self/statm" ) >> pages >> pages;
      return pages * static_cast<std::size_t>( ::sysconf( _SC_PAGESIZE ) );
   }

   std::string const socket = folder / "socket";
   std::string complaints;
   Statedb::EntityManager tree;
   SlotSet set{ tree, "slice/L1" };
   RandomAgent agent{ set };
   Server server{ socket, tree, [this]( std::string const & line ) { complaints += line + '\n'; } };
};

TEST_F( ManyWritesTest, readersAgreeWhateverOthersDo ) {
   std::unique_ptr<Process> const readers[] = { reader( "r0" ), reader( "r1" ), reader( "r2" ) };
   serveUntil( [&] { return server.readerCount() == 3; } );
   for ( unsigned written = 0; written < 10000; ++written ) {
      agent.write();
      if ( agent.pick( 20 ) == 0 ) {
         server.turn( 0 );
      }
      if ( written == 5000 ) {
         Descriptor const stranger = connectTo( socket );
         ASSERT_EQ( ::send( stranger.fd(), "GET / HTTP/1.1\r\n\r\n", 18, 0 ), 18 );
         char byte;
         serveUntil( [&] { return ::recv( stranger.fd(), &byte, 1, 0 ) == 0; } );
      }
   }
   agent.end();
   serveUntil( [&] { return server.readerCount() == 0; } );
   for ( auto const & name : { "r0", "r1", "r2" } ) {
      EXPECT_EQ( file( name ), agent.text() ) << name;
   }
   for ( auto const & process : readers ) {
      EXPECT_EQ( process->end(), 0 );
   }
   EXPECT_EQ( complaints, "reader 4 (process " + std::to_string( ::getpid() ) +
                             ") dropped: state database session: a message of 1195725856 bytes\n" );
}

TEST_F( ManyWritesTest, whatIsNoStatusIsNotMerged ) {
   tree.entityIs( StatusPaths::status( "slice/L1" ) + "/x", Xcvr::allConfigDirFactory( "x" ) );
   auto const show = tool( "show", { "show", "--connect", "socket" } );
   serveUntil( [&] { return !file( "show.err" ).empty(); } );
   EXPECT_EQ( show->end(), 3 );
   EXPECT_EQ( file( "show.err" ), "xcvr: socket: what it serves as x is no transceiver's status; "
                                  "give the socket of an xcvr agent\n" );
}

TEST_F( ManyWritesTest, aReaderThatStopsReadingCostsNothing ) {
   Statedb::EntityManager own;
   Vel::Ptr<Statedb::MountGroup> const group( new Statedb::MountGroup( "sleeper" ) );
   Vel::Ptr<Statedb::Mount> const mount(
      new Statedb::Mount( StatusPaths::status( "slice/L1" ), "Vel::Dir" ) );
   group->mountIs( mount );
   Stream sleeper( connectTo( socket ), own );
   sleeper.session().mountGroupIs( group );
   serveUntil( [&] {
      return sleeper.step( POLLIN | POLLOUT ) && mount->state() == Statedb::MountState::mounted;
   } );
   std::vector<Vel::Ptr<SfpNewStatus>> statuses;
   for ( unsigned i = 0; i < 8; ++i ) {
      statuses.push_back( newSlot( i ) );
      set.statusIs( statuses.back() );
   }
   std::size_t const before = residentBytes();
   for ( uint32_t i = 0; i < 1000000; ++i ) {
      statuses[i % 8]->enhancedDomMappingIs( i % 400000, static_cast<uint16_t>( i ) );
      statuses[i % 8]->enhancedDomMappingDel( i % 400000 );
      if ( i % 1000 == 0 ) {
         server.turn( 0 );
      }
   }
   EXPECT_EQ( server.readerCount(), 1u );
   if ( !keepsFreedMemory ) {
      EXPECT_LT( residentBytes(), before + 8 * 1024 * 1024 );
   }
   // Nobody has waited for it, and it may go on.
   auto const other = reader( "other" );
   agent.end();
   serveUntil( [&] { return !file( "other" ).empty() && other->end() == 0; } );
   serveUntil( [&] {
      return sleeper.step( POLLIN ) && own.entity( "hardware/xcvr/status/slice/L1/slot8" );
   } );
}

} // namespace

/// A status that only a newer agent knows.
class NewerStatus : public Vel::Entity {
 public:
   explicit NewerStatus( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( NewerStatus, Vel::Entity,
      ( Plain, level, onLevel, uint32_t ) );
};
VEL_ENTITY_DEFINE( NewerStatus )

namespace {

TEST_F( AgentTest, anAgentThatServesTheSameTakesOver ) {
   fileIs( "a", module( "A", 20 ) );
   fileIs( "b", module( "B", 20 ) );
   std::vector<std::string> const firstWords = { "agent", "--listen", "s1",  "--slice",
                                                 "L1",    "--slot",   "E1=a" };
   for ( std::string const slice : { "L1", "L2" } ) { // the whole set, the slot of another set
      auto first = tool( "first" + slice, firstWords );
      auto const second = tool( "second" + slice,
                                { "agent", "--listen", "s2", "--slice", slice, "--slot", "E1=b" } );
      for ( char const * agent : { "first", "second" } ) {
         ASSERT_TRUE( eventually( [&] {
            return file( agent + slice + ".out" ).find( "inserted" ) != std::string::npos;
         } ) );
      }
      auto const watch = tool( slice, { "watch", "--connect", "s1", "--connect", "s2" } );
      auto const watchEndsWith = [&]( std::string const & lines ) {
         return eventually( [&] { return file( slice + ".out" ).ends_with( lines ); } );
      };
      ASSERT_TRUE( watchEndsWith( appeared( "E1", "A" ) ) );
      first->end( SIGKILL );
      ASSERT_TRUE( watchEndsWith( "E1: withdrawn\n" + appeared( "E1", "B" ) ) );
      first = tool( "first", firstWords ); // it is the one named first
      ASSERT_TRUE( watchEndsWith( "E1: withdrawn\n" + appeared( "E1", "A" ) ) );
   }
}

TEST_F( ManyWritesTest, aSlotOfAnUnknownTypeIsToldAndTheOthersAreShown ) {
   Xcvr::XcvrSff8472IdEepromContents contents;
   contents.bufIs( Vel::String( XcvrTest::SfpImageBuilder().text( "vendorSn", "S1" ).a0h() ) );
   auto const known = newSlot( 1 );
   known->actualIdEepromContentsIs( contents );
   set.statusIs( known );
   Vel::Ptr<NewerStatus> const newer( new NewerStatus( "slot2" ) );
   auto const statuses =
      Vel::dynamicPtr<Vel::Dir>( tree.entity( StatusPaths::status( "slice/L1" ) ) );
   statuses->entryIs( newer );
   std::string const told =
      "xcvr: socket: slot2 is of type XcvrTool::NewerStatus, which is unknown "
      "here; use an xcvr as new as the agent\n";
   auto const watch = tool( "watch", { "watch", "--connect", "socket" } );
   auto const show = tool( "show", { "show", "--connect", "socket" } );
   serveUntil( [&] { return file( "watch.out" ) != "" && file( "show.out" ) != ""; } );
   EXPECT_EQ( show->end(), 3 );
   EXPECT_THAT( file( "show.out" ), testing::HasSubstr( "serial number  : S1\n" ) );
   EXPECT_EQ( file( "show.err" ), told );
   newer->levelIs( 7 ); // which is skipped
   known->lastDomUpdateTimeIs( 2 );
   serveUntil( [&] { return file( "watch.out" ).find( "DomUpdateTime" ) != std::string::npos; } );
   auto const replaced = newSlot( 2 );
   replaced->actualIdEepromContentsIs( contents );
   set.statusIs( replaced );
   serveUntil( [&] { return file( "watch.out" ).find( "slot2: app" ) != std::string::npos; } );
   EXPECT_EQ( file( "watch.err" ), told );
}

} // namespace
} // namespace XcvrTool

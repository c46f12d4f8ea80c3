#include "tests/platform/Hex.h"
#include "tests/platform/SampleEntities.h"

#include <Vel/Flow.h>

#include <gmock/gmock.h>

#include <functional>
#include <random>

namespace Sample {
namespace {

using testing::ElementsAre;
using testing::StartsWith;
using XcvrTest::asText;

Vel::Ptr<Vel::FlowOut> newFlow( std::size_t bound = 1 << 20 ) {
   return Vel::Ptr<Vel::FlowOut>( new Vel::FlowOut( bound ) );
}

/// Takes the next piece to a replica; says how many bytes that were.
std::size_t deliverPiece( Vel::FlowOut & flow, Vel::Entity & replica, Vel::FlowIn & in,
                          std::size_t most = 16384 ) {
   std::string_view const piece = flow.piece( most );
   if ( !piece.empty() ) {
      Vel::NboAttrLog log( piece );
      replica.doHandleAttrDeserialization( log, in );
      EXPECT_EQ( log.position(), piece.size() );
   }
   return piece.size();
}
std::size_t deliverAll( Vel::FlowOut & flow, Vel::Entity & replica, Vel::FlowIn & in,
                        std::size_t most = 16384 ) {
   std::size_t bytes = 0;
   while ( flow.pending() ) {
      std::size_t const piece = deliverPiece( flow, replica, in, most );
      EXPECT_NE( piece, 0u );
      bytes += piece;
   }
   return bytes;
}
void lose( Vel::FlowOut & flow ) {
   while ( flow.pending() ) {
      EXPECT_FALSE( flow.piece().empty() );
   }
}

/// A random number below a small bound.
class Pick {
 public:
   uint8_t operator()( unsigned below ) { return static_cast<uint8_t>( random_() % below ); }

 private:
   std::mt19937 random_{ 1 };
};

/// How many changes `changeSlot` knows: of attributes of every kind.
constexpr unsigned changes = 25;
void changeSlot( unsigned which, Slot & slot, Slot & other, Pick & pick ) {
   auto const text = [&] { return Vel::String( std::to_string( pick( 3 ) ) ); };
   auto const lane = [&] { return LaneNumber( pick( 3 ) ); };
   std::function<void()> const all[changes] = {
      [&] { slot.speedIs( pick( 5 ) ); },
      [&] { slot.labelIs( Vel::String( pick( 40 ), 'x' ) ); },
      [&] { slot.modeIs( pick( 2 ) ? Mode::on : Mode::off ); },
      [&] { slot.resetsInc(); },
      [&] { slot.readingIs( pick( 4 ), pick( 3 ) ); },
      [&] { slot.readingDel( pick( 4 ) ); },
      [&] { slot.aliasIs( text(), "v" ); },
      [&] { slot.aliasDelAll(); },
      [&] { slot.recordIs( Reading( pick( 16 ), pick( 2 ) ) ); },
      [&] { slot.recordDel( pick( 16 ) ); },
      [&] { slot.wordIs( pick( 4 ), pick( 9 ) ); },
      [&] { slot.flagImageIs( pick( 255 ), pick( 255 ) ); },
      [&] { slot.codeIs( pick( 16 ), pick( 16 ) ); },
      [&] { slot.codeDel( pick( 16 ) ); },
      [&] { slot.laneIs( lane() )->litIs( pick( 2 ) ); },
      [&] { slot.laneDel( lane() ); },
      [&] { slot.sortedIs( text() )->litIs( pick( 2 ) ); },
      [&] { slot.sortedDelAll(); },
      [&] { slot.partIs( Mode::on, lane() ); },
      [&] { slot.partDel( Mode::on ); },
      [&] { slot.folderIs( Vel::dirFactory( text() ) ); },
      [&] { slot.folderDel( text() ); },
      [&] { slot.statsIs()->litIs( pick( 2 ) ); },
      [&] { slot.statsDel(); },
      [&] { slot.tableIs( pick( 2 ) ? &other : nullptr ); },
   };
   all[which]();
}

/// A directory with a slot and what it points to, and a replica of the directory.
class FlowTest : public testing::Test {
 protected:
   FlowTest() {
      dir->entryIs( slot );
      dir->entryIs( other );
   }
   std::size_t deliver() { return deliverAll( *flow, *replica, in ); }
   void expectDelivered() {
      deliver();
      EXPECT_EQ( asText( *replica ), asText( *dir ) );
   }
   Vel::Ptr<OpticalSlot> copy() {
      return Vel::dynamicPtr<OpticalSlot>( replica->entry( "slot1" ) );
   }

   Vel::Ptr<Vel::Dir> dir = Vel::dirFactory( "dir" );
   Vel::Ptr<OpticalSlot> slot = opticalSlotFactory( "slot1" );
   Vel::Ptr<Slot> other{ new Slot( "slot2", 17 ) };
   Vel::Ptr<Vel::FlowOut> flow = newFlow();
   Vel::Ptr<Vel::NboAttrLogSa> adaptor = Vel::Dir::velNboAttrLogSaIs( dir, flow );
   Vel::Ptr<Vel::Dir> replica = Vel::dirFactory( "dir" );
   Vel::FlowIn in;
};

TEST_F( FlowTest, everyKindTravelsInTheImageAndAsIncrements ) {
   Pick pick;
   for ( unsigned which = 0; which < changes; ++which ) {
      changeSlot( which, *slot, *other, pick );
   }
   slot->wavelengthIs( 1310.5 );
   slot->peerIs( other );
   EXPECT_FALSE( adaptor->complete() );
   expectDelivered();
   EXPECT_TRUE( adaptor->complete() );
   EXPECT_EQ( Vel::dynamicPtr<Slot>( replica->entry( "slot2" ) )->made(), 17u ) << "a constant";
   // Each change alone, so that nothing arrives by chance with another one.
   for ( int i = 0; i < 1000; ++i ) {
      unsigned const which = pick( changes );
      changeSlot( which, *slot, *other, pick );
      deliver();
      ASSERT_EQ( asText( *replica ), asText( *dir ) ) << "after change " << which;
   }
   slot->peerDel( "slot2" );
   deliver();
   EXPECT_FALSE( copy()->peerHas( "slot2" ) );
}

// But children arrive before all values, and so before those that were written after them.
TEST_F( FlowTest, replicasAreToldAsOfLocalWritesInTheOrderOfTheLastWrites ) {
   deliver();
   struct Recorder : OpticalSlot::NotifieeConst {
      explicit Recorder( Vel::Dir & all ) : dir( all ) {}
      Vel::Dir & dir;
      std::vector<std::string> heard;
      void onSpeed() override { heard.push_back( dir.entryHas( "slot3" ) ? "speed" : "early" ); }
      void onLabel() override { heard.push_back( "label" ); }
      void onWavelength() override { heard.push_back( "wavelength" ); }
      void onReading( uint8_t key ) override { heard.push_back( std::to_string( key ) ); }
      void onReading() override { heard.push_back( "reading" ); }
   } recorder( *replica );
   recorder.notifierIs( copy().get() );
   slot->speedIs( 2 ); // written before slot3 comes as well as after
   slot->wavelengthIs( 1 );
   slot->labelIs( "first" );
   slot->readingIs( 3, 1 );
   dir->entryIs( new Slot( "slot3" ) );
   slot->speedIs( 1 );
   slot->labelIs( "last" );
   slot->readingIs( 9, 1 );
   slot->readingIs( 3, 2 );
   deliver();
   EXPECT_THAT( recorder.heard,
                ElementsAre( "wavelength", "speed", "label", "3", "reading", "9", "reading" ) );
   EXPECT_EQ( copy()->label(), "last" );
}

TEST_F( FlowTest, aBurstCostsOneRecordAndNothingWaitsBehindIt ) {
   deliver();
   slot->speedIs( 1 );
   std::size_t const one = deliver();
   for ( uint32_t i = 0; i < 1000; ++i ) {
      slot->speedIs( i );
   }
   EXPECT_EQ( deliver(), one );
   EXPECT_TRUE( flow->piece().empty() );
   for ( uint32_t i = 0; i < 1000; ++i ) {
      slot->readingIs( 5, i );
   }
   EXPECT_LT( flow->waitingBytes(), 100u );
   expectDelivered();
   EXPECT_EQ( flow->waitingBytes(), 0u );
}

TEST_F( FlowTest, whatIsMadeAnewUnderTheSameKeyIsMadeAnewInTheReplica ) {
   slot->laneIs( LaneNumber( 1 ) );
   deliver();
   auto const lane = copy()->lane( LaneNumber( 1 ) );
   slot->laneDel( LaneNumber( 1 ) );
   slot->laneIs( LaneNumber( 1 ) );
   deliver();
   EXPECT_TRUE( copy()->laneHas( LaneNumber( 1 ) ) );
   EXPECT_NE( copy()->lane( LaneNumber( 1 ) ), lane );
}

TEST_F( FlowTest, aNameThatLeadsNowhereYetIsFollowedLaterUnlessItIsNoMore ) {
   // What is pointed to is beside the directory, and arrives later, by another flow.
   auto const top = Vel::dirFactory( "top" ), copiedTop = Vel::dirFactory( "elsewhere" );
   auto const far = slotFactory( "far" );
   top->entryIs( dir );
   top->entryIs( far );
   copiedTop->entryIs( replica );
   for ( auto const & holder : { Vel::Ptr<Slot>( slot ), other } ) {
      holder->tableIs( far );
      holder->peerIs( far );
   }
   deliver();
   EXPECT_EQ( copy()->table(), nullptr );
   EXPECT_FALSE( copy()->peerHas( "far" ) );
   EXPECT_EQ( in.unresolved(), 4u );
   other->tableIs( slot );
   deliver();
   EXPECT_EQ( in.unresolved(), 3u );
   slot->tableIs( nullptr );
   deliver();
   EXPECT_EQ( in.unresolved(), 2u );
   slot->tableIs( far );
   other->peerDelAll();
   lose( *flow );
   adaptor->imageIs(); // which lists none
   deliver();
   EXPECT_EQ( in.unresolved(), 2u );
   copiedTop->entryIs( Vel::dirFactory( "far" ) );
   in.resolve();
   EXPECT_EQ( copy()->table(), nullptr ) << "of a wrong type";
   EXPECT_TRUE( copy()->peerHas( "far" ) ) << "may point to any entity";
   copiedTop->entryIs( slotFactory( "far" ) );
   in.resolve();
   EXPECT_EQ( copy()->table(), copiedTop->entry( "far" ).get() );
   EXPECT_EQ( in.unresolved(), 0u );
}

TEST_F( FlowTest, pointersTravelOnceTheirTargetsHaveJoinedTheTree ) {
   Vel::Ptr<Slot> const late( new Slot( "late" ) ), later( new Slot( "later" ) );
   slot->peerIs( late ); // in the image
   deliver();
   slot->tableIs( later );
   slot->peerIs( later );
   deliver();
   EXPECT_TRUE( copy()->peerMap().empty() && !copy()->table() );
   dir->entryIs( late );
   auto const below = Vel::dirFactory( "below" );
   below->entryIs( later );
   dir->entryIs( below );
   expectDelivered();
   EXPECT_EQ( in.unresolved(), 0U );
   // One that is gone before its target comes.
   slot->tableIs( Vel::Ptr<Slot>( new Slot( "never" ) ) );
   deliver();
   dir->entryDelAll();
   dir->entryIs( late );
   expectDelivered();
}

TEST_F( FlowTest, manyPointersAreFollowedInLittleTime ) {
   // Quadratic, these would take minutes.
   constexpr std::size_t count = 20000;
   auto const top = Vel::dirFactory( "top" ), far = Vel::dirFactory( "far" );
   top->entryIs( dir );
   top->entryIs( far );
   for ( std::size_t i = 0; i < count; ++i ) {
      Vel::Ptr<Slot> const peer( new Slot( Vel::Name( std::to_string( i ) ) ) );
      ( i % 2 ? far : dir )->entryIs( peer );
      slot->peerIs( peer );
   }
   deliver();
   EXPECT_EQ( in.unresolved(), count ) << "they count from another top";
   auto const copiedTop = Vel::dirFactory( "top" );
   copiedTop->entryIs( replica );
   in.resolve();
   EXPECT_EQ( in.unresolved(), count / 2 );
   EXPECT_EQ( copy()->peerMap().size(), count / 2 );
}

TEST_F( FlowTest, whatCannotBeCopiedIsLeftOut ) {
   Vel::Ptr<Lane> const lane( new Lane( Vel::Name( "stranger" ) ) ); // has no factory
   dir->entryIs( lane );
   Vel::Name path = "deep";
   auto below = Vel::dirFactory( path );
   dir->entryIs( below );
   for ( int depth = 0; depth < 70; ++depth ) {
      auto const next = Vel::dirFactory( "d" );
      below->entryIs( next );
      below = next;
      path += "/d";
   }
   deliver();
   EXPECT_FALSE( replica->entryHas( "stranger" ) || replica->entity( path ) );
   lane->litIs( true );
   dir->entryIs( new Slot( "last" ) );
   EXPECT_NO_THROW( deliver() );
   EXPECT_TRUE( replica->entryHas( "last" ) ) << "the others are not disturbed";
}

TEST_F( FlowTest, aSlowReaderOfASteadyStreamSeesTheWholeImage ) {
   flow = newFlow( 1000 );
   adaptor = Vel::Dir::velNboAttrLogSaIs( dir, flow );
   for ( int i = 0; i < 100; ++i ) {
      dir->entryIs( new Slot( Vel::Name( std::to_string( i ) ) ) );
   }
   uint32_t pieces = 0;
   for ( ; !adaptor->complete() && pieces < 1000; ++pieces ) {
      Vel::NboAttrLog log( flow->piece( 64 ) );
      replica->doHandleAttrDeserialization( log, in );
      for ( uint8_t key = 0; key < 200; ++key ) {
         slot->readingIs( key, pieces );
      }
   }
   EXPECT_LT( pieces, 1000u );
   expectDelivered();
}

TEST_F( FlowTest, imagesInsteadOfMarksLeaveParentsBeforeTheirNewChildren ) {
   flow = newFlow( 300 );
   adaptor = Vel::Dir::velNboAttrLogSaIs( dir, flow );
   deliver();
   for ( int i = 0; i < 20; ++i ) {
      Vel::Ptr<Slot> const added( new Slot( Vel::Name( std::to_string( i ) ) ) );
      added->laneIs( LaneNumber( 1 ) )->litIs( true );
      dir->entryIs( added );
   }
   expectDelivered();
}

TEST_F( FlowTest, whatCannotBeMadeIsKnownUntilItGoesOrCanBe ) {
   using Types = std::map<Vel::Name, Vel::Name>;
   auto const below = Vel::dirFactory( "below" );
   dir->entryIs( below );
   Types const unknown = { { "below/x", "Sample::Lane" } };
   auto const entryIs = [&]( Vel::Ptr<Vel::Entity> const & entity ) {
      below->entryIs( entity );
      deliver();
      return in.unmade( *replica );
   };
   Vel::Ptr<Lane> const lane( new Lane( Vel::Name( "x" ) ) ); // has no factory
   EXPECT_EQ( entryIs( lane ), unknown );
   EXPECT_EQ( entryIs( new Slot( "x" ) ), Types() );
   EXPECT_EQ( entryIs( lane ), unknown );
   adaptor->imageIs();
   EXPECT_EQ( entryIs( new Slot( "y" ) ), unknown );
   EXPECT_TRUE( Vel::dynamicPtr<Vel::Dir>( replica->entry( "below" ) )->entryHas( "y" ) );
   below->entryDel( "x" );
   EXPECT_EQ( entryIs( new Slot( "z" ) ), Types() );
   EXPECT_EQ( entryIs( lane ), unknown );
   auto const kept = replica->entry( "below" ); // out of the replica, but alive
   dir->entryDel( "below" );
   deliver();
   EXPECT_EQ( in.unmade( *replica ), Types() );
}

TEST_F( FlowTest, entitiesThatHaveGoneWaitForNobody ) {
   flow = newFlow( 5000 );
   adaptor = Vel::Dir::velNboAttrLogSaIs( dir, flow );
   deliver();
   for ( int i = 0; i < 10000; ++i ) { // each with a name of its own, three at a time
      Vel::Ptr<Slot> const added( new Slot( Vel::Name( std::to_string( i ) ) ) );
      added->laneIs( LaneNumber( 1 ) );
      dir->entryIs( added );
      dir->entryDel( Vel::Name( std::to_string( i - 3 ) ) );
      ASSERT_LE( flow->waitingBytes(), 5000U );
      ASSERT_LE( flow->waitingEntities(), 16U );
   }
   expectDelivered();
}

TEST_F( FlowTest, theEntityMayGoBeforeItsAdaptor ) {
   deliver();
   slot->speedIs( 3 );
   EXPECT_EQ( adaptor->entity(), dir.get() );
   dir = nullptr;
   EXPECT_EQ( adaptor->entity(), nullptr );
   deliver();
   EXPECT_EQ( copy()->speed(), 3u ) << "the slot lives on, and was written before";
   slot->speedIs( 4 );
   adaptor = nullptr;
   EXPECT_FALSE( flow->pending() );
}

TEST( FlowLayoutTest, isAsDocumented ) {
   Vel::Ptr<OpticalSlot> const slot = opticalSlotFactory( "slot" );
   slot->laneIs( LaneNumber( 3 ) );
   auto const flow = newFlow();
   auto const adaptor = OpticalSlot::velNboAttrLogSaIs( slot, flow );
   lose( *flow );
   slot->speedIs( 25 );
   slot->wavelengthIs( 2 );
   EXPECT_EQ( hex( flow->piece() ), "56 45 4c 01 01 01 00 00 00 04 00 00 00 19 "
                                    "02 00 00 00 00 08 40 00 00 00 00 00 00 00" );
   slot->readingIs( 9, 1 );
   slot->readingDel( 9 );
   slot->readingIs( 8, 513 );
   slot->lane( LaneNumber( 3 ) )->litIs( true );
   EXPECT_EQ( hex( flow->piece() ), "56 45 4c 01 01 05 00 00 00 02 01 09 "
                                    "01 05 00 00 00 06 00 08 00 00 02 01 "
                                    "00 00 00 00 00 03 01 08 03 01 01 00 00 00 01 01" );
}

std::string const header = "56 45 4c 01 ";

/// Applies a log in hex to a slot of its own and gives what became of it, with the problem if any.
std::string applied( std::string const & log, Slot & slot ) {
   Vel::NboAttrLog taken( unhex( log ) );
   try {
      slot.doHandleAttrDeserialization( taken );
   } catch ( Vel::AttrLogException const & problem ) {
      EXPECT_LE( problem.position(), taken.bytes().size() );
      return std::to_string( taken.position() ) + ": " + problem.what();
   }
   return "applied";
}

TEST( FlowHostileTest, otherVersionsAreReadAsFarAsTheyAreUnderstood ) {
   auto const slot = slotFactory( "slot" );
   slot->labelIs( "kept" );
   slot->speedIs( 1 );
   std::string const unknown = "01 7f 00 00 00 03 01 02 03 " // an attribute of a newer Slot
                               "05 00 00 00 00 01 ff "       // one of a type derived from it
                               "00 09 00 00 00 02 01 02 ";   // another record of the framework
   std::string const speed = "01 01 00 00 00 04 00 00 00 19 ";
   EXPECT_EQ( applied( header + unknown + speed, *slot ), "applied" );
   EXPECT_EQ( slot->speed(), 25u );
   EXPECT_EQ( slot->label(), "kept" );
   // What lies below an entity that is unknown here is skipped; the root can be named again.
   std::string const below = "00 00 00 00 00 05 01 7e 01 02 03 01 00 00 00 00 01 01 ";
   EXPECT_EQ(
      applied( header + below + "00 00 00 00 00 00 " + "01 01 00 00 00 04 00 00 00 1a", *slot ),
      "applied" );
   EXPECT_EQ( slot->speed(), 26u );
}

TEST( FlowHostileTest, aCorruptRecordChangesNothingAndWhatCameBeforeStays ) {
   std::string const speed = "01 01 00 00 00 04 00 00 00 19 ";
   std::pair<char const *, char const *> const cases[] = {
      { "an attribute cut short", "01 02 00 00 00 0a 00 00 00 09 61" },
      { "a record longer than the log", "01 01 ff ff ff ff 00 00 00 19" },
      { "a value longer than its record", "01 01 00 00 00 03 00 00 00" },
      { "a value shorter than its record", "01 01 00 00 00 05 00 00 00 19 00" },
      { "a code that is none", "01 03 00 00 00 04 00 00 00 05" },
      { "no operation", "01 05 00 00 00 02 03 01" },
      { "a second entry cut short", "01 05 00 00 00 0a 00 01 00 00 00 05 02 00 00 00" },
      { "a second entry cut short, of all", "01 05 00 00 00 0a 02 01 00 00 00 05 02 00 00 00" },
      { "a key without a place", "01 07 00 00 00 06 00 00 10 00 10 01" },
      { "a value of another key", "01 07 00 00 00 06 00 00 03 00 04 01" },
      { "a single child with bytes", "01 0b 00 00 00 02 00 00" },
      { "half a step", "00 00 00 00 00 01 01" },
      { "a step without its key", "00 00 00 00 00 02 01 08" },
   };
   auto const expected = slotFactory( "slot" );
   expected->readingIs( 77, 7 );
   expected->speedIs( 25 );
   for ( auto const & [what, record] : cases ) {
      auto const slot = slotFactory( "slot" );
      slot->readingIs( 77, 7 );
      EXPECT_THAT( applied( header + speed + record, *slot ), StartsWith( "14: " ) ) << what;
      EXPECT_EQ( asText( *slot ), asText( *expected ) ) << what;
   }
   for ( char const * start : { "", "56 45", "56 45 4c 02", "00 45 4c 01" } ) {
      EXPECT_THAT( applied( start, *slotFactory( "slot" ) ), StartsWith( "0: " ) ) << start;
   }
}

TEST( FlowHostileTest, aListOfAllLeavesNoOthersInWhateverOrderItIs ) {
   std::string const one = " 01 00 00 00 05", two = " 02 00 00 00 06", three = " 03 00 00 00 07";
   std::pair<std::string, char const *> const cases[] = {
      { "", "{}" },
      { one + two, "{1: 5, 2: 6}" },
      { two + one, "{1: 5, 2: 6}" },
      { one + one, "{1: 5}" },
      { two + three, "{2: 6, 3: 7}" },
      { one + two + three, "{1: 5, 2: 6, 3: 7}" },
   };
   for ( auto const & [entries, left] : cases ) {
      auto const slot = slotFactory( "slot" );
      slot->readingIs( 1, 5 );
      slot->readingIs( 2, 6 );
      std::size_t const size = 1 + unhex( entries ).size();
      std::string const head = "01 05 00 00 00 " + hex( std::string( 1, char( size ) ) ) + " 02";
      EXPECT_EQ( applied( header + head + entries, *slot ), "applied" );
      EXPECT_EQ( XcvrTest::entriesOf( stringForm( slot->readingMap() ) ),
                 XcvrTest::entriesOf( left ) )
         << entries;
   }
}

TEST_F( FlowTest, aFreshImageRepairsWhatACorruptLogLeftAndRemovesWhatIsNoMore ) {
   slot->laneIs( LaneNumber( 4 ) );
   slot->peerIs( other );
   slot->tableIs( other );
   deliver();
   // A log is lost, and the replica has things that are not in the original.
   slot->speedIs( 99 );
   slot->laneDel( LaneNumber( 4 ) );
   slot->peerDel( "slot2" );
   slot->tableIs( nullptr );
   dir->entryDel( "slot2" );
   copy()->laneIs( LaneNumber( 9 ) );
   copy()->readingIs( 66, 6 );
   copy()->sortedIs( "strange" );
   replica->entryIs( Vel::dirFactory( "strange" ) );
   lose( *flow );
   auto const kept = copy();
   adaptor->imageIs();
   expectDelivered();
   EXPECT_FALSE( replica->entryHas( "slot2" ) );
   EXPECT_EQ( copy(), kept ) << "what exists on both sides stays the entity that it was";
}

/// One random change somewhere below a directory of slots.
void changeAnything( Vel::Dir & dir, Pick & pick ) {
   auto const anyName = [&] { return Vel::Name( "slot" + std::to_string( pick( 6 ) ) ); };
   Vel::Name const name = anyName();
   auto const slot = Vel::dynamicPtr<Slot>( dir.entry( name ) );
   if ( !slot || pick( 50 ) == 0 ) {
      if ( pick( 4 ) == 0 ) {
         return dir.entryDel( name );
      }
      auto const joins = pick( 2 ) ? Vel::Ptr<Slot>( opticalSlotFactory( name ) )
                                   : Vel::Ptr<Slot>( new Slot( name, pick( 9 ) ) );
      for ( unsigned count = pick( 9 ); count > 0; --count ) { // with children of its own
         changeSlot( pick( changes ), *joins, *joins, pick );
      }
      return dir.entryIs( joins );
   }
   auto const other = Vel::dynamicPtr<Slot>( dir.entry( anyName() ) );
   changeSlot( pick( changes ), *slot, other ? *other : *slot, pick );
}

TEST( FlowRandomTest, replicasAgreeAfterAnyWrites ) {
   Pick pick;
   auto const dir = Vel::dirFactory( "dir" );
   // A reader that keeps up, one that is slow, one whose marks overrun, one that comes late.
   struct Reader {
      unsigned joins, often;
      std::size_t most;
      Vel::Ptr<Vel::FlowOut> flow = newFlow();
      Vel::Ptr<Vel::NboAttrLogSa> adaptor = nullptr;
      Vel::Ptr<Vel::Dir> replica = Vel::dirFactory( "dir" );
      Vel::FlowIn in{};
   };
   Reader readers[] = {
      { 0, 1, 16384 }, { 0, 100, 64 }, { 0, 255, 64, newFlow( 500 ) }, { 5000, 7, 1 } };
   for ( unsigned i = 0; i < 10000; ++i ) {
      for ( Reader & reader : readers ) {
         if ( i == reader.joins ) {
            reader.adaptor = Vel::Dir::velNboAttrLogSaIs( dir, reader.flow );
         }
         if ( pick( reader.often ) == 0 ) {
            ASSERT_LE( deliverPiece( *reader.flow, *reader.replica, reader.in, reader.most ),
                       reader.most + 300 )
               << "and one small entity";
         }
      }
      changeAnything( *dir, pick );
      ASSERT_LE( readers[2].flow->waitingBytes(), 500u );
   }
   for ( Reader & reader : readers ) {
      deliverAll( *reader.flow, *reader.replica, reader.in, reader.most );
      reader.in.resolve();
      EXPECT_EQ( asText( *reader.replica ), asText( *dir ) ) << &reader - readers;
   }
}

} // namespace
} // namespace Sample

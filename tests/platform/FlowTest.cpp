#include "tests/platform/FlowSample.h"

#include <Vel/Flow.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <random>

namespace Flow {

VEL_ENUM_DEFINE( Mode )
VEL_VALUE_DEFINE( LaneNumber )
VEL_VALUE_DEFINE( Reading )
VEL_ENTITY_DEFINE( Lane )
VEL_ENTITY_DEFINE( Slot, slotFactory )
VEL_ENTITY_DEFINE( OpticalSlot, opticalSlotFactory )

namespace {

using testing::ElementsAre;

Vel::Ptr<Vel::FlowOut> newFlow( std::size_t bound = 1 << 20 ) {
   return Vel::Ptr<Vel::FlowOut>( new Vel::FlowOut( bound ) );
}

/// Takes all that waits, in pieces, to a replica; says how many bytes that were.
std::size_t deliver( Vel::FlowOut & flow, Vel::Entity & replica, Vel::FlowIn & in,
                     std::size_t most = 16384 ) {
   std::size_t bytes = 0;
   while ( flow.pending() ) {
      std::string_view const piece = flow.piece( most );
      bytes += piece.size();
      if ( !piece.empty() ) {
         Vel::NboAttrLog log( piece );
         replica.doHandleAttrDeserialization( log, in );
         EXPECT_EQ( log.position(), piece.size() );
      }
   }
   return bytes;
}

/// A directory with a slot and what it points to, and a replica of the directory.
class FlowTest : public testing::Test {
 protected:
   FlowTest() {
      dir->entryIs( slot );
      dir->entryIs( other );
   }
   std::size_t deliver() { return Flow::deliver( *flow, *replica, in ); }
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

void fill( Slot & slot, Vel::Ptr<Slot> const & other ) {
   slot.speedIs( 25 );
   slot.labelIs( "a label that is longer than a string holds inside" );
   slot.modeIs( Mode::remote );
   slot.resetsInc( 3 );
   slot.readingIs( 1, 10 );
   slot.readingIs( 2, 20 );
   slot.aliasIs( "b", "x" );
   slot.recordIs( Reading( 7, 77 ) );
   slot.laneIs( LaneNumber( 4 ) )->litIs( true );
   slot.sortedIs( "one" )->litIs( true );
   slot.peerIs( other );
   slot.statsIs()->litIs( true );
   slot.tableIs( other );
}

TEST_F( FlowTest, everyKindTravelsInTheImageAndAsIncrements ) {
   fill( *slot, other );
   slot->wavelengthIs( 1310.5 );
   EXPECT_FALSE( adaptor->complete() );
   deliver();
   EXPECT_TRUE( adaptor->complete() );
   EXPECT_EQ( asText( *replica ), asText( *dir ) );
   EXPECT_EQ( Vel::dynamicPtr<Slot>( replica->entry( "slot2" ) )->made(), 17u ) << "a constant";

   // Each change alone, so that nothing arrives by chance with another one.
   std::vector<std::function<void()>> const changes = {
      [&] { slot->speedIs( 26 ); },
      [&] { slot->wavelengthIs( -1 ); },
      [&] { slot->resetsInc(); },
      [&] { slot->readingIs( 1, 11 ); },
      [&] { slot->readingDel( 2 ); },
      [&] { slot->aliasIs( "c", "" ); },
      [&] { slot->aliasDelAll(); },
      [&] { slot->recordIs( Reading( 7, 78 ) ); },
      [&] { slot->recordDel( 7 ); },
      [&] { slot->lane( LaneNumber( 4 ) )->litIs( false ); },
      [&] { slot->laneIs( LaneNumber( 5 ) ); },
      [&] { slot->laneDel( LaneNumber( 4 ) ); },
      [&] { slot->sortedIs( "two" )->litIs( true ); },
      [&] { slot->sortedDelAll(); },
      [&] { slot->stats()->litIs( false ); },
      [&] { slot->statsDel(); },
      [&] { slot->statsIs(); },
      [&] { slot->tableIs( nullptr ); },
      [&] { slot->peerDel( "slot2" ); },
      [&] { dir->entryIs( new Slot( "slot3", 4 ) ); },
      [&] { dir->entryDel( "slot2" ); },
   };
   for ( std::size_t i = 0; i < changes.size(); ++i ) {
      changes[i]();
      deliver();
      EXPECT_EQ( asText( *replica ), asText( *dir ) ) << "after change " << i;
   }
}

TEST_F( FlowTest, replicasAreToldAsOfLocalWritesInTheOrderOfTheLastWrites ) {
   deliver();
   class Recorder : public OpticalSlot::NotifieeConst {
    public:
      std::vector<std::string> heard;
      void onSpeed() override { heard.push_back( "speed" ); }
      void onLabel() override { heard.push_back( "label" ); }
      void onWavelength() override { heard.push_back( "wavelength" ); }
      void onReading( uint8_t key ) override {
         heard.push_back( "reading" + std::to_string( key ) );
      }
      void onReading() override { heard.push_back( "reading" ); }
   } recorder;
   recorder.notifierIs( copy().get() );
   slot->wavelengthIs( 1 );
   slot->labelIs( "first" );
   slot->readingIs( 3, 1 );
   slot->speedIs( 1 );
   slot->labelIs( "last" );
   slot->readingIs( 9, 1 );
   slot->readingIs( 3, 2 );
   deliver();
   EXPECT_THAT( recorder.heard, ElementsAre( "wavelength", "speed", "label", "reading3", "reading",
                                             "reading9", "reading" ) );
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
   EXPECT_FALSE( flow->pending() );
   EXPECT_TRUE( flow->piece().empty() );
   for ( uint32_t i = 0; i < 1000; ++i ) {
      slot->readingIs( 5, i );
   }
   EXPECT_LT( flow->waitingBytes(), 100u );
   deliver();
   EXPECT_EQ( flow->waitingBytes(), 0u );
   EXPECT_EQ( copy()->reading( 5 ), 999u );
}

TEST_F( FlowTest, childrenArriveBeforeValuesThatWereWrittenAfterThem ) {
   deliver();
   std::vector<std::string> heard;
   class Speed : public Slot::NotifieeConst {
    public:
      explicit Speed( std::function<void()> then ) : then_( std::move( then ) ) {}
      void onSpeed() override { then_(); }

    private:
      std::function<void()> then_;
   } speed(
      [&] { heard.push_back( replica->entryHas( "slot3" ) ? "with slot3" : "without slot3" ); } );
   speed.notifierIs( copy().get() );
   slot->speedIs( 1 ); // written before as well as after
   dir->entryIs( new Slot( "slot3" ) );
   slot->speedIs( 2 );
   deliver();
   EXPECT_THAT( heard, ElementsAre( "with slot3" ) );
}

TEST_F( FlowTest, whatIsMadeAnewUnderTheSameNameIsMadeAnewInTheReplica ) {
   slot->laneIs( LaneNumber( 1 ) )->litIs( true );
   deliver();
   auto const lane = copy()->lane( LaneNumber( 1 ) );
   slot->laneDel( LaneNumber( 1 ) );
   slot->laneIs( LaneNumber( 1 ) );
   dir->entryIs( opticalSlotFactory( "slot2" ) ); // of another type
   deliver();
   EXPECT_NE( copy()->lane( LaneNumber( 1 ) ), lane );
   EXPECT_FALSE( copy()->lane( LaneNumber( 1 ) )->lit() );
   EXPECT_EQ( replica->entry( "slot2" )->velModel().typeName, "Flow::OpticalSlot" );
   EXPECT_EQ( asText( *replica ), asText( *dir ) );
}

TEST_F( FlowTest, aNameThatLeadsNowhereYetIsFollowedLater ) {
   deliver();
   // The slot of a second flow is to arrive later than what points to it.
   auto const late = Vel::dirFactory( "late" );
   late->entryIs( new Slot( "far" ) );
   auto const top = Vel::dirFactory( "top" );
   top->entryIs( late );
   top->entryIs( dir );
   auto const copiedTop = Vel::dirFactory( "elsewhere" );
   copiedTop->entryIs( replica );
   auto const far = Vel::dynamicPtr<Slot>( late->entry( "far" ) );
   slot->tableIs( other );
   deliver();
   EXPECT_EQ( copy()->table(), replica->entry( "slot2" ).get() );
   slot->tableIs( far );
   slot->peerIs( far );
   deliver();
   EXPECT_EQ( copy()->table(), nullptr );
   EXPECT_FALSE( copy()->peerHas( "far" ) );
   EXPECT_EQ( in.unresolved(), 2u );
   auto const copiedLate = Vel::dirFactory( "late" );
   copiedTop->entryIs( copiedLate );
   copiedLate->entryIs( Vel::dirFactory( "far" ) );
   in.resolve();
   EXPECT_EQ( copy()->table(), nullptr ) << "of a wrong type";
   EXPECT_TRUE( copy()->peerHas( "far" ) ) << "may point to any entity";
   copiedLate->entryIs( new Slot( "far" ) );
   in.resolve();
   EXPECT_EQ( copy()->table(), copiedLate->entry( "far" ).get() );
   EXPECT_EQ( in.unresolved(), 0u );
}

TEST_F( FlowTest, beyondTheBoundComesAFreshImage ) {
   flow = newFlow( 10000 );
   adaptor = Vel::Dir::velNboAttrLogSaIs( dir, flow );
   deliver();
   copy()->readingIs( 200, 1 ); // which only an image removes
   for ( uint32_t i = 0; i < 100000; ++i ) {
      slot->aliasIs( Vel::String( std::to_string( i ) ), "x" );
      slot->aliasDel( Vel::String( std::to_string( i ) ) );
      ASSERT_LE( flow->waitingBytes(), 10000u );
   }
   deliver();
   EXPECT_TRUE( adaptor->complete() );
   EXPECT_EQ( asText( *replica ), asText( *dir ) );
}

TEST_F( FlowTest, piecesAreBounded ) {
   for ( int i = 0; i < 100; ++i ) {
      dir->entryIs( new Slot( Vel::String( "slot" + std::to_string( i ) ) ) );
   }
   deliver();
   for ( auto const & entry : dir->entryMap() ) {
      Vel::dynamicPtr<Slot>( entry.second )->speedIs( 1000 );
   }
   std::size_t pieces = 0;
   while ( flow->pending() ) {
      std::string_view const piece = flow->piece( 200 );
      EXPECT_LE( piece.size(), 200u + 40 ) << "the bound and one small entity";
      Vel::NboAttrLog log( piece );
      replica->doHandleAttrDeserialization( log, in );
      ++pieces;
   }
   EXPECT_GT( pieces, 10u );
   EXPECT_EQ( asText( *replica ), asText( *dir ) );
}

TEST_F( FlowTest, adaptorsOfOneFlowAreToldApart ) {
   deliver();
   auto const second = Slot::velNboAttrLogSaIs( other, flow, 2 );
   other->speedIs( 5 );
   std::set<uint32_t> tags;
   while ( flow->pending() ) {
      EXPECT_FALSE( flow->piece().empty() );
      tags.insert( flow->tag() );
   }
   EXPECT_THAT( tags, ElementsAre( 0, 2 ) );
   adaptor = nullptr;
   dir->entryDel( "slot1" );
   EXPECT_FALSE( flow->pending() ) << "of an adaptor that is gone";
}

TEST_F( FlowTest, theEntityMayGoBeforeItsAdaptor ) {
   deliver();
   slot->speedIs( 3 );
   Vel::Entity const * const watched = adaptor->entity();
   EXPECT_EQ( watched, dir.get() );
   dir = nullptr;
   EXPECT_EQ( adaptor->entity(), nullptr );
   deliver();
   EXPECT_FALSE( flow->pending() );
   EXPECT_EQ( copy()->speed(), 3u ) << "the slot lives on, and was written before";
}

// ---------------------------------------------------------------------------------------------
// The layout, and logs that are not as they should be

std::string hex( std::string_view bytes ) {
   std::string text;
   for ( char c : bytes ) {
      constexpr char const * digits = "0123456789abcdef";
      text += text.empty() ? "" : " ";
      text += digits[static_cast<uint8_t>( c ) >> 4];
      text += digits[static_cast<uint8_t>( c ) & 15];
   }
   return text;
}

std::string bytes( std::string_view hexText ) {
   std::string result;
   for ( std::size_t i = 0; i + 1 < hexText.size(); i += 3 ) {
      result +=
         static_cast<char>( std::stoi( std::string( hexText.substr( i, 2 ) ), nullptr, 16 ) );
   }
   return result;
}

TEST( FlowLayoutTest, isAsDocumented ) {
   Vel::Ptr<OpticalSlot> const slot = opticalSlotFactory( "slot" );
   slot->laneIs( LaneNumber( 3 ) );
   auto const flow = newFlow();
   auto const adaptor = OpticalSlot::velNboAttrLogSaIs( slot, flow );
   while ( flow->pending() ) {
      EXPECT_FALSE( flow->piece().empty() );
   }
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

constexpr std::string_view header = "56 45 4c 01 ";

/// Applies a log in hex to a slot of its own and gives what became of it, with the problem if any.
std::string applied( std::string const & log, Slot & slot ) {
   Vel::NboAttrLog taken( bytes( log ) );
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
   EXPECT_EQ( applied( std::string( header ) + unknown + speed, *slot ), "applied" );
   EXPECT_EQ( slot->speed(), 25u );
   EXPECT_EQ( slot->label(), "kept" );
   // What lies below an entity that is unknown here is skipped; the root can be named again.
   std::string const below = "00 00 00 00 00 05 01 7e 01 02 03 01 00 00 00 00 01 01 ";
   EXPECT_EQ( applied( std::string( header ) + below + "00 00 00 00 00 00 " +
                          "01 01 00 00 00 04 00 00 00 1a",
                       *slot ),
              "applied" );
   EXPECT_EQ( slot->speed(), 26u );
}

TEST( FlowHostileTest, aCorruptRecordChangesNothingAndWhatCameBeforeStays ) {
   std::string const speed = "01 01 00 00 00 04 00 00 00 19 ";
   struct {
      char const * what;
      std::string record;
   } const cases[] = {
      { "an attribute cut short", "01 02 00 00 00 0a 00 00 00 09 61" },
      { "a record head cut short", "01 02 00" },
      { "a record longer than the log", "01 01 ff ff ff ff 00 00 00 19" },
      { "a value longer than its record", "01 01 00 00 00 03 00 00 00" },
      { "a value shorter than its record", "01 01 00 00 00 05 00 00 00 19 00" },
      { "a code that is none", "01 03 00 00 00 04 00 00 00 05" },
      { "a bool that is none", "01 0c 00 00 00 01 02" },
      { "no operation", "01 05 00 00 00 02 03 01" },
      { "a second entry cut short", "01 05 00 00 00 0a 00 01 00 00 00 05 02 00 00 00" },
      { "a second entry cut short, of all", "01 05 00 00 00 0a 02 01 00 00 00 05 02 00 00 00" },
      { "a key without a place", "01 07 00 00 00 06 00 00 10 00 10 01" },
      { "a text longer than the record", "01 06 00 00 00 09 00 ff ff ff ff 61 62 63 64" },
      { "a single child with bytes", "01 0b 00 00 00 02 00 00" },
      { "half a step", "00 00 00 00 00 01 01" },
      { "a step without its key", "00 00 00 00 00 02 01 08" },
   };
   for ( auto const & test : cases ) {
      auto const slot = slotFactory( "slot" );
      slot->readingIs( 77, 7 );
      EXPECT_THAT( applied( std::string( header ) + speed + test.record, *slot ),
                   testing::StartsWith( "14: " ) )
         << test.what;
      auto const expected = slotFactory( "slot" );
      expected->readingIs( 77, 7 );
      expected->speedIs( 25 );
      EXPECT_EQ( asText( *slot ), asText( *expected ) ) << test.what;
   }
   auto const slot = slotFactory( "slot" );
   for ( char const * start : { "", "56 45", "56 45 4c 02", "00 45 4c 01" } ) {
      EXPECT_THAT( applied( start, *slot ), testing::StartsWith( "0: " ) ) << start;
   }
}

TEST_F( FlowTest, aFreshImageRepairsWhatACorruptLogLeftAndRemovesWhatIsNoMore ) {
   fill( *slot, other );
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
   while ( flow->pending() ) {
      EXPECT_FALSE( flow->piece().empty() );
   }
   auto const kept = copy();
   adaptor->imageIs();
   deliver();
   EXPECT_EQ( asText( *replica ), asText( *dir ) );
   EXPECT_FALSE( replica->entryHas( "slot2" ) );
   EXPECT_EQ( copy(), kept ) << "what exists on both sides stays the entity that it was";
}

TEST_F( FlowTest, anEntryOfATypeThatCannotBeMadeIsLeftOut ) {
   auto const lane = Vel::Ptr<Lane>( new Lane( Vel::Name( "stranger" ) ) ); // has no factory
   dir->entryIs( lane );
   deliver();
   EXPECT_FALSE( replica->entryHas( "stranger" ) );
   lane->litIs( true );
   slot->speedIs( 8 );
   deliver();
   EXPECT_EQ( copy()->speed(), 8u ) << "the others are not disturbed";
}

// ---------------------------------------------------------------------------------------------

/// One random change somewhere below a directory of slots.
void changeAnything( Vel::Dir & dir, std::mt19937 & random ) {
   auto const pick = [&]( uint32_t below ) { return static_cast<uint32_t>( random() % below ); };
   Vel::Name const name( "slot" + std::to_string( pick( 6 ) ) );
   auto const slot = Vel::dynamicPtr<Slot>( dir.entry( name ) );
   if ( !slot || pick( 50 ) == 0 ) {
      dir.entryDel( name );
      dir.entryIs( pick( 2 ) != 0 ? Vel::Ptr<Slot>( opticalSlotFactory( name ) )
                                  : Vel::Ptr<Slot>( new Slot( name, pick( 9 ) ) ) );
      return;
   }
   auto const target =
      Vel::dynamicPtr<Slot>( dir.entry( Vel::Name( "slot" + std::to_string( pick( 6 ) ) ) ) );
   switch ( pick( 18 ) ) {
   case 0:
      return slot->speedIs( pick( 5 ) );
   case 1:
      return slot->labelIs( Vel::String( std::string( pick( 40 ), 'x' ) ) );
   case 2:
      return slot->modeIs( pick( 2 ) != 0 ? Mode::on : Mode::off );
   case 3:
      return slot->resetsInc();
   case 4:
      return slot->readingIs( static_cast<uint8_t>( pick( 4 ) ), pick( 3 ) );
   case 5:
      return slot->readingDel( static_cast<uint8_t>( pick( 4 ) ) );
   case 6:
      return slot->aliasIs( Vel::String( std::to_string( pick( 4 ) ) ), "v" );
   case 7:
      return slot->aliasDelAll();
   case 8:
      return slot->recordIs( Reading( static_cast<uint16_t>( pick( 16 ) ), 1 ) );
   case 9:
      return slot->recordDel( static_cast<uint16_t>( pick( 16 ) ) );
   case 10:
      return slot->laneIs( LaneNumber( static_cast<uint8_t>( pick( 3 ) ) ) )->litIs( true );
   case 11:
      return slot->laneDel( LaneNumber( static_cast<uint8_t>( pick( 3 ) ) ) );
   case 12:
      return slot->sortedIs( Vel::String( std::to_string( pick( 3 ) ) ) )->litIs( pick( 2 ) );
   case 13:
      return slot->sortedDelAll();
   case 14:
      return slot->statsIs()->litIs( pick( 2 ) );
   case 15:
      return slot->statsDel();
   case 16:
      return target ? slot->tableIs( target ) : slot->tableIs( nullptr );
   default:
      return dir.entryDel( name );
   }
}

TEST( FlowRandomTest, replicasAgreeAfterAnyWrites ) {
   std::mt19937 random( 1 );
   auto const dir = Vel::dirFactory( "dir" );
   // A reader that keeps up, one that is slow, one whose marks overrun, one that comes late.
   struct Reader {
      Vel::Ptr<Vel::FlowOut> flow;
      unsigned often;
      std::size_t most;
      Vel::Ptr<Vel::NboAttrLogSa> adaptor = nullptr;
      Vel::Ptr<Vel::Dir> replica = Vel::dirFactory( "dir" );
      Vel::FlowIn in{};
   };
   Reader readers[] = { { newFlow(), 1, 16384 },
                        { newFlow(), 100, 64 },
                        { newFlow( 500 ), 300, 64 },
                        { newFlow(), 7, 1 } };
   for ( unsigned i = 0; i < 10000; ++i ) {
      for ( Reader & reader : readers ) {
         if ( !reader.adaptor && ( &reader != &readers[3] || i == 5000 ) ) {
            reader.adaptor = Vel::Dir::velNboAttrLogSaIs( dir, reader.flow );
         }
      }
      changeAnything( *dir, random );
      for ( Reader & reader : readers ) {
         if ( random() % reader.often == 0 && reader.flow->pending() ) {
            Vel::NboAttrLog log( reader.flow->piece( reader.most ) );
            if ( !log.bytes().empty() ) {
               reader.replica->doHandleAttrDeserialization( log, reader.in );
            }
         }
      }
   }
   for ( Reader & reader : readers ) {
      deliver( *reader.flow, *reader.replica, reader.in, reader.most );
      reader.in.resolve();
      EXPECT_EQ( asText( *reader.replica ), asText( *dir ) ) << &reader - readers;
   }
}

} // namespace
} // namespace Flow

#include "tests/platform/SampleEntities.h"

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

namespace Sample {

VEL_VALUE_DEFINE( LaneNumber )
VEL_VALUE_DEFINE( Reading )
VEL_ENTITY_DEFINE( Lane )
VEL_ENTITY_DEFINE( Slot, slotFactory )
VEL_ENTITY_DEFINE( OpticalSlot, opticalSlotFactory )

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// clang-format off
// A collection's handlers: for one entry, whose key is told as text or number, and for all.
#define KEYED( name, onName, Key, toldKey )                                                        \
   void onName( Vel::In<Key> key ) override { told( #name, toldKey ); }                            \
   void onName() override { told( #name ); }
// One entry of a collection: its key, what the setter is given, the key as it is told.
#define COLLECTION( name, key, written, toldKey )                                                  \
   { #name, #name " " toldKey,                                                                     \
     [&] { slot->name##Is written; },                                                              \
     [&] { slot->name##Del( key ); },                                                              \
     [&] { slot->name##DelAll(); },                                                                \
     [&] { return slot->name##Has( key ) && !slot->name##Map().empty(); } }
// clang-format on

/// Writes down what it is told, and then does what it is asked to.
class Recorder : public OpticalSlot::Notifiee {
 public:
   explicit Recorder( Slot * slot = nullptr, std::string name = {} ) : name_( std::move( name ) ) {
      Slot::NotifieeConst::notifierIs( slot );
   }
   std::vector<std::string> * heard = &own_;
   std::function<void( std::string const & )> then;
   std::vector<std::string> takeHeard() { return std::exchange( *heard, {} ); }

   void onSpeed() override { told( "speed" ); }
   void onLabel() override { told( "label" ); }
   void onResets() override { told( "resets" ); }
   void onStats() override { told( "stats" ); }
   void onTable() override { told( "table" ); }
   void onWavelength() override { told( "wavelength" ); }
   KEYED( reading, onReading, uint8_t, key );
   KEYED( alias, onAlias, Vel::String, key );
   KEYED( record, onRecord, uint16_t, key );
   KEYED( word, onWord, uint8_t, key );
   KEYED( flag, onFlag, uint8_t, key );
   KEYED( code, onCode, uint8_t, key );
   KEYED( lane, onLane, LaneNumber, key.value() );
   KEYED( sorted, onSorted, Vel::Name, key );
   KEYED( part, onPart, Mode, stringValue( key ) );
   KEYED( peer, onPeer, Vel::Name, key );
   KEYED( folder, onFolder, Vel::Name, key );

 private:
   void told( std::string const & what, Vel::String const & key ) {
      told( what + " " + std::string( key ) );
   }
   void told( std::string const & what, unsigned key ) {
      told( what + " " + std::to_string( key ) );
   }
   void told( std::string const & what ) {
      heard->push_back( name_ + what );
      if ( then ) {
         then( what );
      }
   }
   std::string name_;
   std::vector<std::string> own_;
};

class EntityTest : public testing::Test {
 protected:
   Vel::Ptr<Slot> slot = slotFactory( "slot1" );
   Recorder recorder{ slot.get() };
};

TEST_F( EntityTest, singleAttributesTellOfChange ) {
   slot->speedIs( 0 );
   slot->labelIs( "" );
   EXPECT_THAT( recorder.takeHeard(), IsEmpty() );
   slot->speedIs( 25 );
   slot->speedIs( 25 );
   slot->labelIs( "uplink" );
   EXPECT_THAT( recorder.takeHeard(), ElementsAre( "speed", "label" ) );
   EXPECT_EQ( slot->doubled(), 50u );

   slot->resetsIs( 254 );
   slot->resetsIs( 254 );
   slot->resetsInc( 3 ); // which wraps
   EXPECT_EQ( slot->resets(), 1 );
   slot->resetsInc( 0 ); // which always tells
   EXPECT_THAT( recorder.takeHeard(), ElementsAre( "resets", "resets", "resets" ) );

   Vel::Ptr<Lane> const stats = slot->statsIs();
   EXPECT_EQ( slot->statsIs(), stats );
   EXPECT_EQ( stats->fullName(), "slot1/stats" );
   EXPECT_EQ( slot->entity( "stats" ), stats );
   slot->statsDel();
   slot->statsDel();
   EXPECT_EQ( stats->parent(), nullptr );
   Vel::Ptr<Slot> table = slotFactory( "table" );
   slot->tableIs( table );
   slot->tableIs( table );
   EXPECT_THAT( recorder.takeHeard(), ElementsAre( "stats", "stats", "table" ) );
   EXPECT_EQ( table->refCount(), 1u ) << "a reference does not own";
   table = nullptr;
   EXPECT_EQ( slot->table(), nullptr );
}

TEST_F( EntityTest, collectionsTellOfTheEntryAndThenOfThemselves ) {
   auto const peer = Vel::dirFactory( "7" ), folder = Vel::dirFactory( "7" );
   struct {
      std::string whole, entry;
      std::function<void()> write, del, delAll;
      std::function<bool()> has;
   } const collections[] = {
      // A value that is the default one is a change when its key is new.
      COLLECTION( reading, 7, ( 7, 0 ), "7" ),
      COLLECTION( alias, "7", ( "7", "" ), "7" ),
      COLLECTION( record, 7, ( Reading( 7, 0 ) ), "7" ),
      COLLECTION( word, 3, ( 3, 0 ), "3" ),
      COLLECTION( flag, 31, ( 31, false ), "31" ),
      COLLECTION( code, 15, ( 15, 0 ), "15" ),
      COLLECTION( lane, LaneNumber( 7 ), ( LaneNumber( 7 ) ), "7" ),
      COLLECTION( sorted, "7", ( "7" ), "7" ),
      COLLECTION( part, Mode::on, ( Mode::on ), "on" ),
      COLLECTION( peer, "7", ( Vel::Ptr<Vel::Entity const>( peer ) ), "7" ),
      COLLECTION( folder, "7", ( folder ), "7" ),
   };
   for ( auto const & test : collections ) {
      SCOPED_TRACE( test.whole );
      auto const told = ElementsAre( test.entry, test.whole );
      test.del();
      test.delAll();
      EXPECT_THAT( recorder.takeHeard(), IsEmpty() ) << "there is nothing to remove";
      EXPECT_FALSE( test.has() );
      test.write();
      EXPECT_THAT( recorder.takeHeard(), told );
      EXPECT_TRUE( test.has() );
      if ( test.whole != "part" ) { // which is made anew
         test.write();
         EXPECT_THAT( recorder.takeHeard(), IsEmpty() ) << "what is there already";
      }
      test.del();
      EXPECT_THAT( recorder.takeHeard(), told );
      EXPECT_FALSE( test.has() );
      test.write();
      recorder.takeHeard();
      recorder.then = [&]( std::string const & ) { EXPECT_FALSE( test.has() ); };
      test.delAll();
      EXPECT_THAT( recorder.takeHeard(), told );
      recorder.then = nullptr;
   }
}

TEST_F( EntityTest, collectionsReadWhatWasWritten ) {
   EXPECT_EQ( slot->reading( 7 ), 0u );
   slot->readingIs( 7, 1 );
   slot->readingIs( 7, 70 );
   EXPECT_EQ( slot->reading( 7 ), 70u );
   slot->recordIs( Reading( 7, 1 ) );
   slot->recordIs( Reading( 7, 70 ) );
   EXPECT_EQ( slot->record( 7 ), Reading( 7, 70 ) );
   EXPECT_EQ( slot->record( 8 ), Reading() );
   EXPECT_EQ( recorder.takeHeard().size(), 8u );
   for ( char const * key : { "b", "a", "c" } ) {
      slot->aliasIs( key, key );
      slot->nicknameIs( key, key );
   }
   EXPECT_EQ( slot->aliasMap().begin()->first, "a" );
   recorder.takeHeard();
   slot->aliasDelAll();
   EXPECT_THAT( recorder.takeHeard(), ElementsAre( "alias a", "alias b", "alias c", "alias" ) );
   // What is written may be part of the collection: of the entry that it replaces, or that moves.
   Vel::String const before = slot->nicknameMap().begin()->second;
   slot->nicknameIs( slot->nicknameMap().begin()->second, "new" );
   EXPECT_EQ( slot->nickname( before ), "new" );
   for ( int i = 0; i < 30; ++i ) {
      slot->nicknameIs( slot->nicknameMap().begin()->second + Vel::String( std::to_string( i ) ),
                        slot->nicknameMap().begin()->first );
   }
   EXPECT_EQ( slot->nicknameMap().size(), 33u );
}

TEST_F( EntityTest, denseStorageHasPlacesForItsKeysOnly ) {
   slot->wordIs( 3, 7 );
   slot->codeIs( 15, 9 );
   EXPECT_EQ( slot->word( 3 ) + slot->code( 15 ), 16 );
   slot->wordDel( 3 );
   slot->codeDel( 15 );
   EXPECT_EQ( slot->word( 3 ) + slot->code( 15 ), 0 );
   for ( uint8_t key : std::initializer_list<uint8_t>{ 32, 100, 255 } ) {
      EXPECT_FALSE( slot->wordHas( key ) || slot->flagHas( key ) || slot->codeHas( key ) );
      EXPECT_EQ( slot->word( key ) + slot->flag( key ) + slot->code( key ), 0 );
   }
   EXPECT_DEATH( slot->wordIs( 4, 1 ), "place < places" );
   EXPECT_DEATH( slot->flagIs( 32, true ), "place < places" );
   EXPECT_DEATH( slot->codeIs( 16, 0 ), "place < places && value < 16" );
   EXPECT_DEATH( slot->codeIs( 0, 16 ), "place < places && value < 16" );
}

TEST_F( EntityTest, anImageIsWrittenWholeBeforeItIsTold ) {
   recorder.then = [&]( std::string const & ) {
      EXPECT_TRUE( slot->flag( 5 ) || slot->code( 2 ) );
   };
   slot->flagImageIs( 0xff21u, 0x71 ); // 0, 4, 5 and 6
   EXPECT_THAT( recorder.takeHeard(), ElementsAre( "flag 0", "flag", "flag 4", "flag", "flag 5",
                                                   "flag", "flag 6", "flag" ) );
   slot->flagImageIs( 0x0061u, 0x71 );
   EXPECT_THAT( recorder.takeHeard(), ElementsAre( "flag 6", "flag" ) );
   EXPECT_EQ( Vel::stringForm( slot->flagMap() ), "{0: True, 4: False, 5: True, 6: True}" );
   slot->codeImageIs( 0xf0000210u, 0x07 );
   EXPECT_THAT( recorder.takeHeard(),
                ElementsAre( "code 0", "code", "code 1", "code", "code 2", "code" ) );
   slot->codeIs( 7, 7 );
   recorder.takeHeard();
   slot->codeImageIs( 0x00000310u, 0x07 );
   EXPECT_THAT( recorder.takeHeard(), ElementsAre( "code 2", "code" ) );
   EXPECT_EQ( Vel::stringForm( slot->codeMap() ), "{0: 0, 1: 1, 2: 3, 7: 7}" );
   EXPECT_DEATH( slot->codeImageIs( 0u, 0x10000 ), "places" );
}

TEST_F( EntityTest, childrenHaveTheirParentWhileItHoldsThem ) {
   EXPECT_EQ( slot->lane( LaneNumber( 3 ) ), nullptr );
   Vel::Ptr<Lane> const lane = slot->laneIs( LaneNumber( 3 ) );
   EXPECT_EQ( slot->laneIs( LaneNumber( 3 ) ), lane );
   EXPECT_EQ( lane->lane(), LaneNumber( 3 ) );
   EXPECT_EQ( lane->parent(), slot.get() );
   EXPECT_EQ( lane->parentAttrName(), "lane" );
   EXPECT_EQ( lane->fullName(), "slot1/lane/3" );
   EXPECT_EQ( slot->entity( "lane/3" ), lane );
   for ( char const * none : { "lane/4", "lane", "speed", "name", "parent", "lane/3/lit" } ) {
      EXPECT_EQ( slot->entity( none ), nullptr ) << none;
   }
   EXPECT_EQ( slot->entity( "" ), slot );
   slot->laneDel( LaneNumber( 3 ) );
   EXPECT_EQ( lane->parent(), nullptr );
   EXPECT_EQ( lane->fullName(), "3" );
   EXPECT_EQ( lane->refCount(), 1u );

   slot->partIs( Mode::remote, LaneNumber( 8 ) );
   Vel::Ptr<Lane> const part = slot->part( Mode::remote );
   EXPECT_EQ( part->fullName(), "slot1/part/remote" );
   slot->partIs( Mode::on, LaneNumber( 9 ) );
   slot->partIs( Mode::remote );
   EXPECT_NE( slot->part( Mode::remote ), part ) << "replaced";
   EXPECT_EQ( part->parent(), nullptr );
   EXPECT_EQ( slot->partMap().begin()->second->lane(), LaneNumber( 9 ) ) << "in order of codes";
}

TEST_F( EntityTest, pointersHoldUnderTheEntitysName ) {
   for ( int i = 0; i < 2; ++i ) { // the second one replaces the first
      Vel::Ptr<Vel::Entity const> const peer( Vel::dirFactory( "Ethernet1" ) );
      slot->peerIs( peer );
      EXPECT_EQ( slot->peer( "Ethernet1" ), peer );
      EXPECT_EQ( peer->parent(), nullptr );
      EXPECT_EQ( recorder.takeHeard().size(), 2u );
   }
   EXPECT_DEATH( slot->peerIs( nullptr ),
                 "null _peer parameter to mutator for Sample::Slot::peer not allowed" );
}

TEST( Dir, ownsItsEntriesAndFindsThemByPath ) {
   Vel::Ptr<Vel::Dir> const root = Vel::dirFactory( "hardware" );
   Vel::Ptr<Vel::Dir> const xcvr = Vel::dirFactory( "xcvr" );
   Vel::Ptr<Slot> const slot = slotFactory( "slot1" );
   root->entryIs( xcvr );
   xcvr->entryIs( slot );
   xcvr->entryIs( Vel::dirFactory( "Ethernet3/1" ) );
   EXPECT_EQ( root->entity( "xcvr/Ethernet3/1" ), xcvr->entry( "Ethernet3/1" ) );
   EXPECT_DEATH( xcvr->entryIs( root ), "an entity cannot be below itself" );

   // The second directory becomes the parent; leaving the first changes nothing any more.
   Vel::Ptr<Vel::Dir> other = Vel::dirFactory( "other" );
   other->entryIs( slot );
   xcvr->entryDel( "slot1" );
   EXPECT_EQ( slot->fullName(), "other/slot1" );
   xcvr->entryIs( slot );
   other->entryIs( slot );
   xcvr->entryIs( slot ); // which still holds it
   EXPECT_EQ( slot->fullName(), "hardware/xcvr/slot1" );
   xcvr->entryDel( "slot1" );
   EXPECT_EQ( slot->parent(), nullptr );
}

TEST_F( EntityTest, switchingDeliveryOffAndOn ) {
   recorder.isRegisteredNotifieeIs( false );
   slot->speedIs( 1 );
   recorder.isRegisteredNotifieeIs( true );
   slot->speedIs( 2 );
   recorder.Slot::NotifieeConst::notifierIs( nullptr );
   slot->speedIs( 3 );
   EXPECT_THAT( recorder.takeHeard(), ElementsAre( "speed" ) ) << "of the second change";
}

TEST( Observers, ofABaseHearTheBasesAttributesOfADerivedEntity ) {
   Vel::Ptr<OpticalSlot> const slot = opticalSlotFactory( "slot1" );
   Recorder ofSlot( slot.get() ), ofOptical;
   ofOptical.notifierIs( slot );
   slot->wavelengthIs( 1550.12 );
   slot->speedIs( 10 );
   EXPECT_THAT( ofSlot.takeHeard(), ElementsAre( "speed" ) );
   EXPECT_THAT( ofOptical.takeHeard(), ElementsAre( "wavelength", "speed" ) );
   ofOptical.notifier()->wavelengthIs( 1310 );
   EXPECT_EQ( slot->wavelength(), 1310 );
}

/// Three observers of one slot with a common record, in the order of attachment a, b, c; and one that
/// is not attached yet.
struct ThreeObservers {
   ThreeObservers() {
      for ( char const * name : { "a ", "b ", "c ", "late " } ) {
         observers.push_back( std::make_unique<Recorder>( nullptr, name ) );
         observers.back()->heard = &heard;
      }
      for ( std::size_t i : { 0u, 1u, 2u } ) {
         attach( i );
      }
   }
   void attach( std::size_t i ) { observers[i]->Slot::NotifieeConst::notifierIs( slot.get() ); }
   void detach( std::size_t i ) { observers[i]->Slot::NotifieeConst::notifierIs( nullptr ); }
   void destroy( std::size_t i ) { observers[i].reset(); }
   std::vector<std::string> heard;
   Vel::Ptr<Slot> slot = slotFactory( "slot1" );
   std::vector<std::unique_ptr<Recorder>> observers;
};

TEST( Observers, mayChangeWhoIsToldWhileTheyAreTold ) {
   using Three = ThreeObservers;
   using Heard = std::vector<std::string>;
   constexpr char const *a = "a speed", *b = "b speed", *c = "c speed", *late = "late speed";
   // What one of them does when it is told, and who hears of that change and of the next.
   auto const expect = []( std::size_t who, void ( *does )( Three & three ), Heard const & first,
                           Heard const & second ) {
      Three three;
      three.observers[who]->then = [&]( std::string const & ) { does( three ); };
      three.slot->speedIs( 1 );
      EXPECT_EQ( std::exchange( three.heard, {} ), first );
      three.slot->speedIs( 2 );
      EXPECT_EQ( three.heard, second );
   };
   // clang-format off
   expect( 0, []( Three & o ) { o.destroy( 1 ); }, { a, c }, { a, c } );
   expect( 0, []( Three & o ) { o.detach( 2 ); }, { a, b }, { a, b } );
   expect( 1, []( Three & o ) { o.destroy( 0 ), o.destroy( 1 ); }, { a, b, c }, { c } );
   expect( 2, []( Three & o ) { o.attach( 3 ); }, { a, b, c }, { a, b, c, late } );
   expect( 0, []( Three & o ) { o.detach( 0 ), o.attach( 0 ); }, { a, b, c }, { b, c, a } );
   expect( 0, []( Three & o ) { o.detach( 1 ), o.slot->labelIs( "n" ); }, { a, "a label", "c label", c }, { a, c } );
   expect( 1, []( Three & o ) { o.slot->speedIs( 9 ); }, { a, b, a, b, c, c }, { a, b, a, b, c, c } );
   // clang-format on
}

class ThreeObserversTest : public testing::Test, public ThreeObservers {};

TEST_F( ThreeObserversTest, oneAttachedDuringAChangeOfACollectionHearsNoneOfItsSteps ) {
   observers[0]->then = [&]( std::string const & ) { attach( 3 ); };
   slot->aliasIs( "1", "x" );
   EXPECT_EQ( heard.size(), 6u );
   detach( 3 );
   slot->aliasDelAll();
   EXPECT_THAT( heard, testing::Not( testing::Contains( "late alias" ) ) );
}

TEST_F( ThreeObserversTest, droppingTheLastPointerKeepsTheEntityThroughTheDelivery ) {
   observers[0]->then = [this]( std::string const & ) { slot = nullptr; };
   slot->readingIs( 1, 1 );
   EXPECT_THAT( heard, ElementsAre( "a reading 1", "b reading 1", "c reading 1", "a reading",
                                    "b reading", "c reading" ) );
   EXPECT_EQ( observers[2]->notifier(), nullptr );
}

TEST_F( ThreeObserversTest, aHandlerMayDeleteTheEntryItIsToldAbout ) {
   observers[0]->then = [this]( std::string const & what ) {
      if ( what == "alias gone" ) {
         slot->aliasDel( "gone" );
      }
   };
   slot->aliasIs( "gone", "x" );
   EXPECT_FALSE( slot->aliasHas( "gone" ) );
   heard.clear();
   slot->aliasIs( "kept", "y" );
   slot->aliasDel( slot->aliasMap().begin()->first ); // a key that is part of the entry
   ASSERT_EQ( heard.size(), 12u );
   EXPECT_EQ( heard[6], "a alias kept" );
}

TEST_F( ThreeObserversTest, anExceptionReachesTheWriterAndLeavesAllInOrder ) {
   observers[1]->then = []( std::string const & ) { throw std::runtime_error( "handler" ); };
   EXPECT_THROW( slot->speedIs( 1 ), std::runtime_error );
   EXPECT_THAT( heard, ElementsAre( "a speed", "b speed" ) );
   EXPECT_EQ( slot->refCount(), 1u );
   observers[1]->then = nullptr;
   slot->speedIs( 2 );
   EXPECT_EQ( heard.size(), 5u );
}

TEST( Observers, anEntityThatNoPointerHoldsIsNotDestroyed ) {
   Slot slot( "onTheStack" );
   Recorder recorder( &slot );
   slot.speedIs( 1 );
   slot.readingIs( 1, 1 );
   EXPECT_THAT( recorder.takeHeard(), ElementsAre( "speed", "reading 1", "reading" ) );
}

TEST( Reflection, attributesAreNumberedAndReadThroughTheModel ) {
   Vel::Ptr<Slot> const slot = opticalSlotFactory( "slot1" );
   slot->speedIs( 10 );
   slot->aliasIs( "a", "it's" );
   slot->laneIs( LaneNumber( 0 ) );
   Vel::EntityModel const & optical = slot->velModel();
   EXPECT_EQ( optical.typeName, "Sample::OpticalSlot" );
   EXPECT_EQ( optical.begin()->name, "wavelength" );
   std::string texts;
   for ( Vel::AttrInfo const & attribute : *optical.base ) {
      texts += std::string( attribute.name ) + "=" + std::string( attribute.text( *slot ) ) + " ";
   }
   EXPECT_EQ( texts, "made=0 speed=10 label='' mode=off resets=0 reading={} alias={'a': 'it\\'s'} "
                     "record={} lane=['slot1/lane/0'] sorted=[] peer=[] stats=None table=None "
                     "doubled=20 nickname={} word={} flag={} code={} part=[] folder=[] " );
   slot->nameIsFromBackup( "slot10" );
   EXPECT_EQ( slot->fullName(), "slot10" );
   EXPECT_EQ( uint16_t( Slot::madeAttr ), 5 );
   EXPECT_EQ( uint16_t( OpticalSlot::wavelengthAttr ), uint16_t( Slot::velAttrEnd ) );
}

} // namespace
} // namespace Sample

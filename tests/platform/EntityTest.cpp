#include <Vel/DefineEntity.h>
#include <Vel/Dir.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

// One fixture with an attribute of every kind, and an entity type derived from it.
namespace EntityTest {

class LaneNumber {
   VEL_VALUE( LaneNumber,
      ( value, uint8_t ) );
   VEL_KEY( LaneNumber )
};
VEL_VALUE_DEFINE( LaneNumber )

class Lane : public Vel::Entity {
 public:
   explicit Lane( LaneNumber lane )
      : Vel::Entity( Vel::String( std::to_string( lane.value() ) ) ), lane_( lane ) {}
   explicit Lane( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( Lane, Vel::Entity,
      ( Constant, lane, LaneNumber ),
      ( Plain, lit, onLit, bool ) );
};
VEL_ENTITY_DEFINE( Lane )

class Slot : public Vel::Entity {
 public:
   explicit Slot( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( Slot, Vel::Entity,
      ( Plain, speed, onSpeed, uint32_t ),
      ( Plain, label, onLabel, Vel::String ),
      ( Counter, resets, onResets, uint8_t ),
      ( Values, reading, onReading, uint8_t, uint32_t ),
      ( OrderedValues, alias, onAlias, Vel::String, Vel::String ),
      ( Values, nickname, onNickname, Vel::String, Vel::String ),
      ( Children, lane, onLane, LaneNumber, Lane ),
      ( OrderedChildren, sorted, onSorted, Vel::Name, Lane ),
      ( Pointers, peer, onPeer, Vel::Entity const ),
      ( Child, stats, onStats, Lane ),
      ( Reference, table, onTable, Vel::Dir const ),
      ( Derived, doubled, uint32_t ) );

   [[nodiscard]] uint32_t doubled() const { return 2 * speed(); }
};
Vel::Ptr<Slot> slotFactory( Vel::Name name );
VEL_ENTITY_DEFINE( Slot, slotFactory )

class OpticalSlot : public Slot {
 public:
   explicit OpticalSlot( Vel::Name name ) : Slot( std::move( name ) ) {}
   VEL_ENTITY( OpticalSlot, Slot,
      ( Plain, wavelength, onWavelength, double ) );
};
VEL_ENTITY_DEFINE( OpticalSlot )

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
   void onReading( uint8_t key ) override { told( "reading " + std::to_string( key ) ); }
   void onReading() override { told( "reading" ); }
   void onAlias( Vel::String const & key ) override { told( "alias " + std::string( key ) ); }
   void onAlias() override { told( "alias" ); }
   void onNickname( Vel::String const & key ) override { told( "nickname " + std::string( key ) ); }
   void onNickname() override { told( "nickname" ); }
   void onLane( LaneNumber key ) override { told( "lane " + std::to_string( key.value() ) ); }
   void onLane() override { told( "lane" ); }
   void onPeer( Vel::Name const & key ) override { told( "peer " + std::string( key ) ); }
   void onPeer() override { told( "peer" ); }
   void onStats() override { told( "stats" ); }
   void onTable() override { told( "table" ); }
   void onWavelength() override { told( "wavelength" ); }

 private:
   void told( std::string what ) {
      heard->push_back( name_ + what );
      if ( then ) {
         then( what );
      }
   }
   std::string name_;
   std::vector<std::string> own_;
};

using Heard = std::vector<std::string>;

class EntityTest : public testing::Test {
 protected:
   Vel::Ptr<Slot> slot = slotFactory( "slot1" );
   Recorder recorder{ slot.get() };
};

// ---------------------------------------------------------------------------------------------
// What each kind of attribute tells

TEST_F( EntityTest, plainTellsOnlyOfChange ) {
   slot->speedIs( 0 );
   slot->labelIs( "" );
   EXPECT_EQ( recorder.takeHeard(), Heard{} );
   slot->speedIs( 25 );
   slot->speedIs( 25 );
   slot->labelIs( "uplink" );
   EXPECT_EQ( recorder.takeHeard(), ( Heard{ "speed", "label" } ) );
   EXPECT_EQ( slot->speed(), 25u );
   EXPECT_EQ( slot->doubled(), 50u );
}

TEST_F( EntityTest, counterIncrementAlwaysTellsAndWraps ) {
   slot->resetsIs( 254 );
   slot->resetsIs( 254 );
   EXPECT_EQ( recorder.takeHeard(), Heard{ "resets" } );
   slot->resetsInc( 3 );
   EXPECT_EQ( slot->resets(), 1 );
   slot->resetsInc( 0 );
   EXPECT_EQ( recorder.takeHeard(), ( Heard{ "resets", "resets" } ) );
}

TEST_F( EntityTest, valueCollections ) {
   EXPECT_EQ( slot->reading( 7 ), 0u );
   slot->readingDel( 7 );
   slot->readingDelAll();
   EXPECT_EQ( recorder.takeHeard(), Heard{} );

   slot->readingIs( 7, 0 ); // a new key is a change even with the default value
   slot->readingIs( 7, 0 );
   slot->readingIs( 7, 70 );
   EXPECT_TRUE( slot->readingHas( 7 ) );
   EXPECT_EQ( slot->reading( 7 ), 70u );
   EXPECT_EQ( recorder.takeHeard(), ( Heard{ "reading 7", "reading", "reading 7", "reading" } ) );
   slot->readingDel( 7 );
   EXPECT_FALSE( slot->readingHas( 7 ) );
   EXPECT_EQ( recorder.takeHeard(), ( Heard{ "reading 7", "reading" } ) );

   slot->aliasIs( "b", "2" );
   slot->aliasIs( "a", "1" );
   recorder.takeHeard();
   EXPECT_EQ( slot->aliasMap().begin()->first, "a" );
   recorder.then = [this]( std::string const & ) { EXPECT_TRUE( slot->aliasMap().empty() ); };
   slot->aliasDelAll();
   EXPECT_EQ( recorder.takeHeard(), ( Heard{ "alias a", "alias b", "alias" } ) );
}

TEST_F( EntityTest, childCollectionMakesAndKeepsChildren ) {
   EXPECT_EQ( slot->lane( LaneNumber( 3 ) ), nullptr );
   Vel::Ptr<Lane> const lane = slot->laneIs( LaneNumber( 3 ) );
   EXPECT_EQ( lane->lane(), LaneNumber( 3 ) );
   EXPECT_EQ( slot->laneIs( LaneNumber( 3 ) ), lane );
   EXPECT_EQ( recorder.takeHeard(), ( Heard{ "lane 3", "lane" } ) );
   EXPECT_EQ( lane->parent(), slot.get() );
   EXPECT_EQ( lane->parentAttrName(), "lane" );
   EXPECT_EQ( lane->fullName(), "slot1/lane/3" );
   EXPECT_EQ( slot->entity( "lane/3" ), lane );
   for ( char const * none : { "lane/4", "lane", "speed", "name", "parent", "lane/3/lit" } ) {
      EXPECT_EQ( slot->entity( none ), nullptr ) << none;
   }
   EXPECT_EQ( slot->entity( "" ), slot );

   slot->laneDel( LaneNumber( 3 ) );
   EXPECT_EQ( recorder.takeHeard(), ( Heard{ "lane 3", "lane" } ) );
   EXPECT_EQ( lane->parent(), nullptr );
   EXPECT_EQ( lane->fullName(), "3" );
   EXPECT_EQ( lane->refCount(), 1u );
}

TEST_F( EntityTest, pointerCollectionHoldsUnderTheEntitysName ) {
   Vel::Ptr<Vel::Dir> const peer = Vel::dirFactory( "Ethernet1" );
   slot->peerIs( Vel::Ptr<Vel::Entity const>( peer ) );
   slot->peerIs( Vel::Ptr<Vel::Entity const>( peer ) );
   EXPECT_EQ( recorder.takeHeard(), ( Heard{ "peer Ethernet1", "peer" } ) );
   EXPECT_EQ( slot->peer( "Ethernet1" ), peer.get() );
   EXPECT_EQ( peer->parent(), nullptr );
   slot->peerIs( Vel::Ptr<Vel::Entity const>( Vel::dirFactory( "Ethernet1" ) ) ); // replaces
   EXPECT_NE( slot->peer( "Ethernet1" ), peer.get() );
   EXPECT_EQ( recorder.takeHeard().size(), 2u );
   EXPECT_DEATH( slot->peerIs( nullptr ),
                 "null _peer parameter to mutator for EntityTest::Slot::peer not allowed" );
}

TEST_F( EntityTest, singleChildAndReference ) {
   EXPECT_EQ( slot->stats(), nullptr );
   Vel::Ptr<Lane> const stats = slot->statsIs();
   EXPECT_EQ( slot->statsIs(), stats );
   EXPECT_EQ( stats->fullName(), "slot1/stats" );
   EXPECT_EQ( slot->entity( "stats" ), stats );
   slot->statsDel();
   slot->statsDel();
   EXPECT_EQ( stats->parent(), nullptr );

   Vel::Ptr<Vel::Dir> table = Vel::dirFactory( "attenuation" );
   slot->tableIs( table.get() );
   slot->tableIs( table.get() );
   EXPECT_EQ( slot->table(), table.get() );
   EXPECT_EQ( recorder.takeHeard(), ( Heard{ "stats", "stats", "table" } ) );
   EXPECT_EQ( table->refCount(), 1u ); // a reference does not own
   table = nullptr;
   EXPECT_EQ( slot->table(), nullptr );
}

TEST( Dir, ownsItsEntriesAndFindsThemByPath ) {
   Vel::Ptr<Vel::Dir> const root = Vel::dirFactory( "hardware" );
   Vel::Ptr<Vel::Dir> const xcvr = Vel::dirFactory( "xcvr" );
   Vel::Ptr<Slot> const slot = slotFactory( "slot1" );
   root->entryIs( xcvr );
   xcvr->entryIs( slot );
   slot->laneIs( LaneNumber( 0 ) );
   EXPECT_EQ( slot->fullName(), "hardware/xcvr/slot1" );
   EXPECT_EQ( root->entity( "xcvr/slot1/lane/0" ), slot->lane( LaneNumber( 0 ) ).get() );
   EXPECT_EQ( root->entity( "xcvr/none/lane/0" ), nullptr );

   xcvr->entryIs( Vel::dirFactory( "Ethernet3/1" ) );
   EXPECT_EQ( root->entity( "xcvr/Ethernet3/1" ), xcvr->entry( "Ethernet3/1" ) );
   EXPECT_DEATH( xcvr->entryIs( root ), "an entity cannot be below itself" );

   // The second directory becomes the parent; leaving the first changes nothing any more.
   Vel::Ptr<Vel::Dir> other = Vel::dirFactory( "other" );
   other->entryIs( slot );
   xcvr->entryDel( "slot1" );
   EXPECT_EQ( slot->fullName(), "other/slot1" );
   xcvr->entryIs( slot );
   EXPECT_EQ( slot->fullName(), "hardware/xcvr/slot1" );
   other->entryIs( slot );
   xcvr->entryIs( slot ); // which still holds it
   EXPECT_EQ( slot->fullName(), "hardware/xcvr/slot1" );
   xcvr->entryDel( "slot1" );
   EXPECT_EQ( slot->parent(), nullptr );
}

// ---------------------------------------------------------------------------------------------
// Observers

TEST_F( EntityTest, switchingDeliveryOffAndOn ) {
   recorder.isRegisteredNotifieeIs( false );
   slot->speedIs( 1 );
   recorder.isRegisteredNotifieeIs( true );
   slot->speedIs( 2 );
   EXPECT_EQ( recorder.takeHeard(), Heard{ "speed" } );
   recorder.Slot::NotifieeConst::notifierIs( nullptr );
   slot->speedIs( 3 );
   EXPECT_EQ( recorder.takeHeard(), Heard{} );
}

TEST( Observers, ofABaseHearTheBasesAttributesOfADerivedEntity ) {
   struct OfSlot : Slot::NotifieeConst {
      int speeds = 0;
      void onSpeed() override { ++speeds; }
   } ofSlot;
   Vel::Ptr<OpticalSlot> const slot( new OpticalSlot( "slot1" ) );
   Recorder ofOptical;
   ofOptical.notifierIs( slot );
   ofSlot.notifierIs( slot.get() );
   slot->wavelengthIs( 1550.12 );
   slot->speedIs( 10 );
   EXPECT_EQ( ofSlot.speeds, 1 );
   EXPECT_EQ( ofOptical.takeHeard(), ( Heard{ "wavelength", "speed" } ) );
   ofOptical.notifier()->wavelengthIs( 1310 );
   EXPECT_EQ( slot->wavelength(), 1310 );
}

/// Three observers of one slot with a common record, in the order of attachment a, b, c.
class ThreeObservers : public testing::Test {
 protected:
   ThreeObservers() {
      for ( char const * name : { "a ", "b ", "c " } ) {
         observers.push_back( std::make_unique<Recorder>( slot.get(), name ) );
         observers.back()->heard = &heard;
      }
   }
   Heard heard;
   Vel::Ptr<Slot> slot = slotFactory( "slot1" );
   std::vector<std::unique_ptr<Recorder>> observers;
};

TEST_F( ThreeObservers, oneDetachedOrDestroyedByAnEarlierOneIsNotTold ) {
   observers[0]->then = [this]( std::string const & ) { observers[1].reset(); };
   slot->speedIs( 1 );
   EXPECT_EQ( heard, ( Heard{ "a speed", "c speed" } ) );
}

TEST_F( ThreeObservers, oneMayDestroyItselfOrAnEarlierOne ) {
   observers[1]->then = [this]( std::string const & ) {
      observers[0].reset();
      observers[1].reset();
   };
   slot->speedIs( 1 );
   slot->speedIs( 2 );
   EXPECT_EQ( heard, ( Heard{ "a speed", "b speed", "c speed", "c speed" } ) );
}

TEST_F( ThreeObservers, oneAttachedDuringAChangeHearsOfTheNext ) {
   Recorder late( nullptr, "late " );
   late.heard = &heard;
   observers[2]->then = [&]( std::string const & ) {
      late.Slot::NotifieeConst::notifierIs( slot.get() );
   };
   slot->speedIs( 1 );
   EXPECT_EQ( heard, ( Heard{ "a speed", "b speed", "c speed" } ) );
   heard.clear();
   slot->speedIs( 2 );
   EXPECT_EQ( heard.back(), "late speed" );
}

TEST_F( ThreeObservers, oneAttachedDuringAChangeOfACollectionHearsNoneOfItsSteps ) {
   Recorder late( nullptr, "late " );
   late.heard = &heard;
   observers[0]->then = [&]( std::string const & ) {
      late.Slot::NotifieeConst::notifierIs( slot.get() );
   };
   slot->aliasIs( "1", "x" );
   EXPECT_EQ( heard.size(), 6u );
   late.Slot::NotifieeConst::notifierIs( nullptr );
   slot->aliasDelAll();
   EXPECT_EQ( std::count( heard.begin(), heard.end(), "late alias" ), 0 );
}

TEST_F( ThreeObservers, anObserverThatMovesItselfToTheEndIsToldOnce ) {
   observers[0]->then = [this]( std::string const & ) {
      observers[0]->Slot::NotifieeConst::notifierIs( nullptr );
      observers[0]->Slot::NotifieeConst::notifierIs( slot.get() );
   };
   slot->speedIs( 1 );
   EXPECT_EQ( heard, ( Heard{ "a speed", "b speed", "c speed" } ) );
}

TEST_F( ThreeObservers, writingTheAttributeAgainNests ) {
   observers[1]->then = [this]( std::string const & ) { slot->speedIs( 2 ); };
   slot->speedIs( 1 );
   EXPECT_EQ( slot->speed(), 2u );
   EXPECT_EQ( heard,
              ( Heard{ "a speed", "b speed", "a speed", "b speed", "c speed", "c speed" } ) );
}

TEST_F( ThreeObservers, nestedChangeOfAnotherAttributeWithDetachLosesNothing ) {
   observers[0]->then = [this]( std::string const & what ) {
      if ( what == "speed" ) {
         slot->labelIs( "nested" );
         observers[1]->Slot::NotifieeConst::notifierIs( nullptr );
      }
   };
   slot->speedIs( 1 );
   EXPECT_EQ( heard, ( Heard{ "a speed", "a label", "b label", "c label", "c speed" } ) );
}

TEST_F( ThreeObservers, droppingTheLastPointerKeepsTheEntityThroughTheDelivery ) {
   observers[0]->then = [this]( std::string const & ) { slot = nullptr; };
   slot->readingIs( 1, 1 );
   EXPECT_EQ( heard, ( Heard{ "a reading 1", "b reading 1", "c reading 1", "a reading", "b reading",
                              "c reading" } ) );
   EXPECT_EQ( observers[2]->notifier(), nullptr );
}

TEST_F( ThreeObservers, aHandlerMayDeleteTheEntryItIsToldAbout ) {
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
   EXPECT_EQ( heard[6], "a alias kept" );
   EXPECT_EQ( heard.size(), 12u );
}

TEST_F( ThreeObservers, anExceptionReachesTheWriterAndLeavesAllInOrder ) {
   observers[1]->then = []( std::string const & ) { throw std::runtime_error( "handler" ); };
   EXPECT_THROW( slot->speedIs( 1 ), std::runtime_error );
   EXPECT_EQ( heard, ( Heard{ "a speed", "b speed" } ) );
   EXPECT_EQ( slot->speed(), 1u );
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
   EXPECT_EQ( recorder.takeHeard(), ( Heard{ "speed", "reading 1", "reading" } ) );
}

TEST_F( EntityTest, keysAndValuesMayBePartOfTheCollection ) {
   for ( char const * key : { "a", "b", "c", "d" } ) {
      slot->nicknameIs( key, key );
   }
   slot->nicknameIs( slot->nicknameMap().find( "a" )->second, "new" ); // of what it replaces
   EXPECT_EQ( slot->nickname( "a" ), "new" );
   recorder.takeHeard();
   slot->nicknameIs( slot->nicknameMap().find( "a" )->second, "x" ); // while the storage grows
   EXPECT_EQ( recorder.takeHeard(), ( Heard{ "nickname new", "nickname" } ) );
}

// ---------------------------------------------------------------------------------------------
// Reflection

TEST( Reflection, attributesAreNumberedAndReadThroughTheModel ) {
   Vel::Ptr<Slot> const slot( new OpticalSlot( "slot1" ) );
   slot->speedIs( 10 );
   slot->aliasIs( "a", "it's" );
   slot->laneIs( LaneNumber( 0 ) );
   Vel::EntityModel const & optical = slot->velModel();
   EXPECT_EQ( optical.typeName, "EntityTest::OpticalSlot" );
   EXPECT_EQ( optical.begin()->name, "wavelength" );
   ASSERT_NE( optical.base, nullptr );
   std::vector<std::string> texts;
   for ( Vel::AttrInfo const & attribute : *optical.base ) {
      texts.push_back( std::string( attribute.name ) + "=" +
                       std::string( attribute.text( *slot ) ) );
   }
   EXPECT_EQ( texts,
              ( Heard{ "speed=10", "label=''", "resets=0", "reading={}", "alias={'a': 'it\\'s'}",
                       "nickname={}", "lane=['slot1/lane/0']", "sorted=[]", "peer=[]", "stats=None",
                       "table=None", "doubled=20" } ) );
   ASSERT_EQ( optical.base->base->typeName, "Vel::Entity" );
   Heard inherited;
   for ( Vel::AttrInfo const & attribute : *optical.base->base ) {
      inherited.emplace_back( attribute.name );
   }
   EXPECT_EQ( inherited, ( Heard{ "name", "fullName", "parent", "parentAttrName", "entity" } ) );
   EXPECT_EQ( uint16_t( Slot::speedAttr ), 5 );
   EXPECT_EQ( uint16_t( OpticalSlot::wavelengthAttr ), uint16_t( Slot::velAttrEnd ) );
}

TEST( Reflection, theRegistryMakesEntitiesByTypeName ) {
   Vel::Ptr<Vel::Entity> const made = Vel::TypeRegistry::newEntity( "EntityTest::Slot", "slot9" );
   ASSERT_NE( Vel::dynamicPtr<Slot>( made ), nullptr );
   EXPECT_EQ( made->name(), "slot9" );
   made->nameIsFromBackup( "slot10" );
   EXPECT_EQ( made->fullName(), "slot10" );
   EXPECT_EQ( Vel::TypeRegistry::newEntity( "EntityTest::OpticalSlot", "x" ), nullptr );
   EXPECT_EQ( Vel::TypeRegistry::newEntity( "EntityTest::Nothing", "x" ), nullptr );
}

} // namespace EntityTest

#pragma once

#include "tests/platform/EntityText.h"
#include "tests/platform/SampleTypes.h"

#include <Vel/DefineEntity.h>
#include <Vel/DenseMap.h>
#include <Vel/Dir.h>

#include <string>

/// An entity type with an attribute of every kind, and one derived from it; defined in EntityTest.cpp.
namespace Sample {

class LaneNumber {
   VEL_VALUE( LaneNumber,
      ( value, uint8_t ) );
   VEL_KEY( LaneNumber )
};

class Reading {
   VEL_VALUE( Reading,
      ( address, uint16_t ),
      ( data, uint8_t ) );
};

/// Sixteen readings, by address.
class Readings {
 public:
   using key_type = uint16_t;
   using mapped_type = Reading;
   static key_type keyOf( Reading const & value ) { return value.address(); }
   static bool hasPlace( key_type key ) { return key < 16; }
   bool contains( key_type key ) const { return entries_.contains( key ); }
   Reading at( key_type key ) const { return contains( key ) ? entries_.at( key ) : Reading(); }
   bool store( Reading const & value ) {
      auto const [at, added] = entries_.try_emplace( value.address(), value );
      return added || std::exchange( at->second, value ) != value;
   }
   bool erase( key_type key ) { return entries_.erase( key ) != 0; }
   bool empty() const { return entries_.empty(); }
   auto begin() const { return entries_.begin(); }
   auto end() const { return entries_.end(); }

 private:
   std::map<key_type, Reading> entries_;
};

class Lane : public Vel::Entity {
 public:
   explicit Lane( LaneNumber lane ) : Lane( Vel::String( std::to_string( lane.value() ) ), lane ) {}
   explicit Lane( Vel::Name name, LaneNumber lane = {} )
      : Vel::Entity( std::move( name ) ), lane_( lane ) {}
   VEL_ENTITY( Lane, Vel::Entity,
      ( Constant, lane, LaneNumber ),
      ( Plain, lit, onLit, bool ) );
};

class Slot : public Vel::Entity {
 public:
   explicit Slot( Vel::Name name, uint32_t made = 0 )
      : Vel::Entity( std::move( name ) ), made_( made ) {}
   using Words = Vel::DenseMap<uint8_t, uint16_t, 4>;
   using Flags = Vel::DenseFlags<uint8_t, 32>;
   using Codes = Vel::DenseNibbles<uint8_t, 16>;
   VEL_ENTITY( Slot, Vel::Entity,
      ( Constant, made, uint32_t ),
      ( Plain, speed, onSpeed, uint32_t ),
      ( Plain, label, onLabel, Vel::String ),
      ( Plain, mode, onMode, Mode ),
      ( Counter, resets, onResets, uint8_t ),
      ( Values, reading, onReading, uint8_t, uint32_t ),
      ( OrderedValues, alias, onAlias, Vel::String, Vel::String ),
      ( Records, record, onRecord, Readings ),
      ( Children, lane, onLane, LaneNumber, Lane ),
      ( OrderedChildren, sorted, onSorted, Vel::Name, Lane ),
      ( Pointers, peer, onPeer, Vel::Entity const ),
      ( Child, stats, onStats, Lane ),
      ( Reference, table, onTable, Slot const ),
      ( Derived, doubled, uint32_t ),
      ( Values, nickname, onNickname, Vel::String, Vel::String ),
      ( DenseValues, word, onWord, Words ),
      ( DenseValues, flag, onFlag, Flags ),
      ( DenseValues, code, onCode, Codes ),
      ( Instances, part, onPart, Mode, Lane ),
      ( Entries, folder, onFolder, Vel::Dir ) );

   [[nodiscard]] uint32_t doubled() const { return 2 * speed(); }
   void partIs( Mode key, LaneNumber lane = {} ) {
      velInstanceIs( part_, key, Vel::Ptr<Lane>( new Lane( stringValue( key ), lane ) ), "part",
                     KeyedHandlers<NotifieeConst, Mode>{ partAttr, &NotifieeConst::onPart,
                                                         &NotifieeConst::onPart } );
   }
};
Vel::Ptr<Slot> slotFactory( Vel::Name name );

class OpticalSlot : public Slot {
 public:
   explicit OpticalSlot( Vel::Name name ) : Slot( std::move( name ) ) {}
   VEL_ENTITY( OpticalSlot, Slot,
      ( Plain, wavelength, onWavelength, double ) );
};
Vel::Ptr<OpticalSlot> opticalSlotFactory( Vel::Name name );

} // namespace Sample

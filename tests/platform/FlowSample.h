#pragma once

#include <Vel/DefineEntity.h>
#include <Vel/Dir.h>

#include <array>
#include <set>
#include <string>

/// An entity type with an attribute of every kind that travels, and one derived from it.
namespace Flow {

VEL_ENUM( Mode, off, on = 7, remote )

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
   struct Entry {
      key_type first;
      mapped_type second;
   };
   static key_type keyOf( Reading const & value ) { return value.address(); }
   static bool hasPlace( key_type key ) { return key < 16; }
   bool contains( key_type key ) const { return hasPlace( key ) && entries_.contains( key ); }
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
   explicit Lane( LaneNumber lane )
      : Vel::Entity( Vel::String( std::to_string( lane.value() ) ) ), lane_( lane ) {}
   explicit Lane( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( Lane, Vel::Entity,
      ( Constant, lane, LaneNumber ),
      ( Plain, lit, onLit, bool ) );
};

class Slot : public Vel::Entity {
 public:
   explicit Slot( Vel::Name name, uint32_t made = 0 )
      : Vel::Entity( std::move( name ) ), made_( made ) {}
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
      ( Derived, doubled, uint32_t ) );

   [[nodiscard]] uint32_t doubled() const { return 2 * speed(); }
};
Vel::Ptr<Slot> slotFactory( Vel::Name name );

class OpticalSlot : public Slot {
 public:
   explicit OpticalSlot( Vel::Name name ) : Slot( std::move( name ) ) {}
   VEL_ENTITY( OpticalSlot, Slot,
      ( Plain, wavelength, onWavelength, double ) );
};
Vel::Ptr<OpticalSlot> opticalSlotFactory( Vel::Name name );

/// An entity with all that it owns, as text; what has no order in the order of the texts.
inline std::string asText( Vel::Entity const & entity ) {
   std::string text =
      std::string( entity.velModel().typeName ) + " " + std::string( entity.name() );
   auto const sorted = []( auto const & map, auto const & one ) {
      std::set<std::string> lines;
      for ( auto const & entry : map ) {
         lines.insert( one( entry ) );
      }
      std::string all;
      for ( std::string const & line : lines ) {
         all += line + ";";
      }
      return "{" + all + "}";
   };
   auto const below = [&]( auto const & entry ) { return asText( *entry.second ); };
   auto const number = []( auto value ) { return std::to_string( value ); };
   if ( auto const * dir = dynamic_cast<Vel::Dir const *>( &entity ) ) {
      return text + sorted( dir->entryMap(), below );
   }
   if ( auto const * lane = dynamic_cast<Lane const *>( &entity ) ) {
      return text + number( lane->lane().value() ) + ( lane->lit() ? " lit" : "" );
   }
   if ( auto const * slot = dynamic_cast<Slot const *>( &entity ) ) {
      text += number( slot->made() ) + "," + number( slot->speed() ) + "," +
              std::string( slot->label() ) + "," + std::string( stringValue( slot->mode() ) ) +
              "," + number( slot->resets() );
      text += sorted( slot->readingMap(), [&]( auto const & e ) {
         return number( e.first ) + "=" + number( e.second );
      } );
      text += sorted( slot->aliasMap(), []( auto const & e ) {
         return std::string( e.first ) + "=" + std::string( e.second );
      } );
      text += sorted( slot->recordMap(),
                      []( auto const & e ) { return std::string( stringValue( e.second ) ); } );
      text += sorted( slot->laneMap(), below ) + sorted( slot->sortedMap(), below );
      text += sorted( slot->peerMap(),
                      []( auto const & e ) { return std::string( e.second->fullName() ); } );
      text += slot->stats() ? asText( *slot->stats() ) : "no stats";
      text += slot->table() ? std::string( slot->table()->fullName() ) : "no table";
   }
   if ( auto const * optical = dynamic_cast<OpticalSlot const *>( &entity ) ) {
      text += "," + number( optical->wavelength() );
   }
   return text;
}

} // namespace Flow

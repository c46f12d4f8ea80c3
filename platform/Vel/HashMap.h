#pragma once

#include <Vel/String.h>
#include <Vel/Types.h>

#include <cstdint>
#include <type_traits>
#include <utility>
#include <vector>

namespace Vel {

/// Hash of a key: of a type with hash(), an enumeration or an integer.
template <typename K>
std::size_t hashOf( K const & key ) {
   if constexpr ( requires { key.hash(); } ) {
      return key.hash();
   } else {
      return static_cast<std::size_t>( key ) * 0x9e3779b97f4a7c15u;
   }
}

/// Unordered map. The entries lie side by side in one array, which iteration walks; erasing moves
/// the last entry into the gap. An open-addressing table of positions finds them by hash; it is
/// closed up after an erase, so that coming and going entries never slow it down.
template <typename K, typename V>
class HashMap {
 public:
   using key_type = K;
   using mapped_type = V;
   struct Entry {
      K first;
      V second;
   };

   [[nodiscard]] std::size_t size() const { return entries_.size(); }
   [[nodiscard]] bool empty() const { return entries_.empty(); }
   [[nodiscard]] Entry const * begin() const { return entries_.data(); }
   [[nodiscard]] Entry const * end() const { return entries_.data() + entries_.size(); }
   [[nodiscard]] Entry * begin() { return entries_.data(); }
   [[nodiscard]] Entry * end() { return entries_.data() + entries_.size(); }

   /// The entry of the key, or end().
   [[nodiscard]] Entry const * find( K const & key ) const {
      std::size_t const slot = slotOf( key, hashOf( key ) );
      return slot != none ? &entries_[slots_[slot].position] : end();
   }
   [[nodiscard]] Entry * find( K const & key ) {
      return const_cast<Entry *>( std::as_const( *this ).find( key ) );
   }

   /// Adds an entry whose key must not be there yet.
   void emplace( K key, V value ) {
      if ( ( entries_.size() + 1 ) * 2 > slots_.size() ) {
         rehash( slots_.empty() ? 8 : 2 * slots_.size() );
      }
      uint32_t const tag = tagOf( hashOf( key ) );
      entries_.push_back( { std::move( key ), std::move( value ) } );
      place( tag, static_cast<uint32_t>( entries_.size() - 1 ) );
   }

   /// Removes the entry, which must be there.
   void erase( Entry const * entry ) {
      auto const position = static_cast<uint32_t>( entry - entries_.data() );
      vacate( slotOfPosition( hashOf( entry->first ), position ) );
      auto const last = static_cast<uint32_t>( entries_.size() - 1 );
      if ( position != last ) {
         slots_[slotOfPosition( hashOf( entries_[last].first ), last )].position = position;
         entries_[position] = std::move( entries_[last] );
      }
      entries_.pop_back();
   }

   void clear() {
      entries_.clear();
      slots_.clear();
   }

 private:
   static constexpr uint32_t unused = 0xffffffff;
   static constexpr std::size_t none = ~std::size_t( 0 );
   struct Slot {
      uint32_t tag;      // high half of the hash; its home slot comes from it
      uint32_t position; // of the entry, or `unused`
   };

   static uint32_t tagOf( std::size_t hash ) { return static_cast<uint32_t>( hash >> 32 ); }
   [[nodiscard]] std::size_t next( std::size_t slot ) const {
      return ( slot + 1 ) & ( slots_.size() - 1 );
   }
   [[nodiscard]] std::size_t home( uint32_t tag ) const { return tag & ( slots_.size() - 1 ); }

   [[nodiscard]] std::size_t slotOf( K const & key, std::size_t hash ) const {
      if ( slots_.empty() ) {
         return none;
      }
      uint32_t const tag = tagOf( hash );
      for ( std::size_t at = home( tag ); slots_[at].position != unused; at = next( at ) ) {
         if ( slots_[at].tag == tag && entries_[slots_[at].position].first == key ) {
            return at;
         }
      }
      return none;
   }
   [[nodiscard]] std::size_t slotOfPosition( std::size_t hash, uint32_t position ) const {
      std::size_t at = home( tagOf( hash ) );
      while ( slots_[at].position != position ) {
         at = next( at );
      }
      return at;
   }
   void place( uint32_t tag, uint32_t position ) {
      std::size_t at = home( tag );
      while ( slots_[at].position != unused ) {
         at = next( at );
      }
      slots_[at] = { tag, position };
   }
   /// Empties a slot and moves later ones of its run back to where their search would pass.
   void vacate( std::size_t gap ) {
      for ( std::size_t at = next( gap ); slots_[at].position != unused; at = next( at ) ) {
         std::size_t const mask = slots_.size() - 1;
         std::size_t const fromHome = ( at - home( slots_[at].tag ) ) & mask;
         if ( fromHome >= ( ( at - gap ) & mask ) ) {
            slots_[gap] = slots_[at];
            gap = at;
         }
      }
      slots_[gap].position = unused;
   }
   void rehash( std::size_t count ) {
      slots_.assign( count, { 0, unused } );
      for ( uint32_t i = 0; i < entries_.size(); ++i ) {
         place( tagOf( hashOf( entries_[i].first ) ), i );
      }
   }

   std::vector<Entry> entries_;
   std::vector<Slot> slots_; // a power of two, at most half in use
};

} // namespace Vel

#pragma once

#include <Vel/String.h>
#include <Vel/Types.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
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

/// What a HashMap keeps of an entry: its key and its value.
template <typename K, typename V>
struct KeyAndValue {
   K key{};
   V value{};
   [[nodiscard]] K const & ownKey() const { return key; }
   static KeyAndValue of( K key, V value ) { return { std::move( key ), std::move( value ) }; }
};

/// The same of a pointer to something under its own name: the pointer alone.
template <typename K, typename P>
struct NamedPointer {
   P value{};
   [[nodiscard]] K const & ownKey() const { return value->name(); }
   static NamedPointer of( K const &, P value ) { return { std::move( value ) }; }
};

/// Unordered map: a table of the entries themselves, each at the first free place from the one that
/// its hash names. A second table has four bytes of the hash beside each place: it answers nearly every
/// search, and stays in the cache where the entries do not. Both are closed up after an erase, so that
/// coming and going entries never slow them down. Adding and erasing invalidate iterators. begin() has
/// to pass all free places up to the first entry: no way to empty a large map one by one.
template <typename K, typename V, template <typename, typename> typename Stored = KeyAndValue>
class HashMap {
   using Place = Stored<K, V>;

 public:
   using key_type = K;
   using mapped_type = V;

   /// An entry as it is seen. `Value` is V or V const.
   template <typename Value>
   struct Entry {
      K const & first;
      Value & second;
      Entry const * operator->() const { return this; }
   };

   /// Goes over the entries.
   template <typename Value>
   class Iterator {
    public:
      using iterator_category = std::input_iterator_tag;
      using value_type = Entry<Value>;
      using difference_type = std::ptrdiff_t;
      using pointer = value_type;
      using reference = value_type;

      Iterator( HashMap const & map, std::size_t place ) : map_( &map ), place_( place ) {}
      operator Iterator<Value const>() const { return { *map_, place_ }; }
      reference operator*() const {
         Place const & place = map_->places_[place_];
         return { place.ownKey(), const_cast<Value &>( place.value ) };
      }
      pointer operator->() const { return **this; }
      Iterator & operator++() {
         ++place_;
         return skipped();
      }
      Iterator & skipped() {
         while ( place_ != map_->places_.size() && map_->tags_[place_] == unused ) {
            ++place_;
         }
         return *this;
      }
      friend bool operator==( Iterator a, Iterator b ) { return a.place_ == b.place_; }

    private:
      friend HashMap;
      HashMap const * map_;
      std::size_t place_;
   };
   using iterator = Iterator<V>;
   using const_iterator = Iterator<V const>;

   HashMap() = default;
   HashMap( HashMap const & ) = default;
   HashMap( HashMap && from ) noexcept : HashMap() { *this = std::move( from ); }
   HashMap & operator=( HashMap const & ) = default;
   HashMap & operator=( HashMap && from ) noexcept {
      tags_ = std::exchange( from.tags_, {} );
      places_ = std::exchange( from.places_, {} );
      size_ = std::exchange( from.size_, 0 );
      return *this;
   }
   ~HashMap() = default;

   [[nodiscard]] std::size_t size() const { return size_; }
   [[nodiscard]] bool empty() const { return size_ == 0; }
   [[nodiscard]] const_iterator begin() const { return const_iterator( *this, 0 ).skipped(); }
   [[nodiscard]] iterator begin() { return iterator( *this, 0 ).skipped(); }
   [[nodiscard]] const_iterator end() const { return { *this, places_.size() }; }
   [[nodiscard]] iterator end() { return { *this, places_.size() }; }

   /// The entry of the key, or end().
   [[nodiscard]] const_iterator find( K const & key ) const { return { *this, placeOf( key ) }; }
   [[nodiscard]] iterator find( K const & key ) { return { *this, placeOf( key ) }; }

   /// The entry of the key, and whether it was added, with `value`: one that is there stays as it is.
   std::pair<iterator, bool> try_emplace( K key, V value ) {
      if ( ( size_ + 1 ) * 2 > places_.size() ) {
         resize( places_.empty() ? 8 : 2 * places_.size() );
      }
      uint32_t const tag = tagOf( key );
      std::size_t const place = search( tag, key );
      bool const added = tags_[place] == unused;
      if ( added ) {
         tags_[place] = tag;
         places_[place] = Place::of( std::move( key ), std::move( value ) );
         ++size_;
      }
      return { iterator( *this, place ), added };
   }

   /// Removes the entry, which must be there, and moves later ones of its run back to where their
   /// search would pass.
   void erase( const_iterator entry ) {
      std::size_t gap = entry.place_;
      for ( std::size_t from = next( gap ); tags_[from] != unused; from = next( from ) ) {
         std::size_t const fromHome = ( from - home( tags_[from] ) ) & mask();
         if ( fromHome >= ( ( from - gap ) & mask() ) ) {
            tags_[gap] = tags_[from];
            places_[gap] = std::move( places_[from] );
            gap = from;
         }
      }
      tags_[gap] = unused;
      places_[gap] = {};
      --size_;
   }

   void clear() { *this = {}; }

 private:
   static constexpr uint32_t unused = 0;

   /// The high half of the hash, the last bit set.
   static uint32_t tagOf( K const & key ) {
      return static_cast<uint32_t>( hashOf( key ) >> 32 ) | 1;
   }
   [[nodiscard]] std::size_t mask() const { return tags_.size() - 1; }
   [[nodiscard]] std::size_t home( uint32_t tag ) const { return ( tag >> 1 ) & mask(); }
   [[nodiscard]] std::size_t next( std::size_t place ) const { return ( place + 1 ) & mask(); }

   /// The place of the key, or the unused one where it would come.
   [[nodiscard]] std::size_t search( uint32_t tag, K const & key ) const {
      std::size_t place = home( tag );
      while ( tags_[place] != unused &&
              !( tags_[place] == tag && places_[place].ownKey() == key ) ) {
         place = next( place );
      }
      return place;
   }
   /// The place of the key, or the number of places.
   [[nodiscard]] std::size_t placeOf( K const & key ) const {
      if ( empty() ) {
         return places_.size();
      }
      std::size_t const place = search( tagOf( key ), key );
      return tags_[place] != unused ? place : places_.size();
   }
   void resize( std::size_t places ) {
      HashMap old = std::exchange( *this, {} );
      tags_.resize( places );
      places_.resize( places );
      size_ = old.size_;
      for ( std::size_t at = 0; at < old.places_.size(); ++at ) {
         if ( uint32_t const tag = old.tags_[at]; tag != unused ) {
            std::size_t const place = search( tag, old.places_[at].ownKey() );
            tags_[place] = tag;
            places_[place] = std::move( old.places_[at] );
         }
      }
   }

   std::vector<uint32_t> tags_; // of each place, or `unused`; a power of two, at most half in use
   std::vector<Place> places_;
   std::size_t size_ = 0;
};

} // namespace Vel

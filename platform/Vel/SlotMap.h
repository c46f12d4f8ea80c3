#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>
#include <vector>

namespace Vel {

/// Map from the small codes of an enumeration to pointers, in an array with a slot a code: a look-up
/// is an index. A key whose pointer is null is not there. Iterated in the order of the codes.
template <typename K, typename P>
class SlotMap {
 public:
   using key_type = K;
   using mapped_type = P;
   struct Entry {
      K first{};
      P second{};
   };

   /// Goes over the entries that are there. `E` is Entry or Entry const.
   template <typename E>
   class Iterator {
    public:
      Iterator( E * at, E * end ) : at_( at ), end_( end ) {}
      E & operator*() const { return *at_; }
      E * operator->() const { return at_; }
      Iterator & operator++() {
         ++at_;
         return skipped();
      }
      Iterator & skipped() {
         while ( at_ != end_ && !at_->second ) {
            ++at_;
         }
         return *this;
      }
      friend bool operator==( Iterator a, Iterator b ) { return a.at_ == b.at_; }

    private:
      E * at_;
      E * end_;
   };

   [[nodiscard]] bool empty() const { return begin() == end(); }
   [[nodiscard]] auto begin() const { return walk( slots_ ).skipped(); }
   [[nodiscard]] auto begin() { return walk( slots_ ).skipped(); }
   [[nodiscard]] auto end() const { return walk( slots_, slots_.size() ); }
   [[nodiscard]] auto end() { return walk( slots_, slots_.size() ); }

   /// The entry of the key, or end().
   [[nodiscard]] auto find( K key ) const { return walk( slots_, positionOf( key ) ); }
   [[nodiscard]] auto find( K key ) { return walk( slots_, positionOf( key ) ); }

   /// Adds an entry whose key must not be there yet.
   void emplace( K key, P pointer ) {
      auto const code = static_cast<std::size_t>( key );
      if ( code >= slots_.size() ) {
         slots_.resize( code + 1 );
      }
      slots_[code] = { key, std::move( pointer ) };
   }
   /// Removes the entry, which must be there.
   template <typename E>
   void erase( Iterator<E> entry ) {
      slots_[static_cast<std::size_t>( entry->first )].second = nullptr;
   }

   /// The pointer of the key; null when it is not there.
   [[nodiscard]] auto get( K key ) const {
      auto const code = static_cast<std::size_t>( key );
      return code < slots_.size() ? slots_[code].second.get() : nullptr;
   }

 private:
   [[nodiscard]] std::size_t positionOf( K key ) const {
      return get( key ) ? static_cast<std::size_t>( key ) : slots_.size();
   }
   template <typename Slots>
   static auto walk( Slots & slots, std::size_t at = 0 ) {
      using E = std::remove_reference_t<decltype( *slots.data() )>;
      return Iterator<E>( slots.data() + at, slots.data() + slots.size() );
   }

   std::vector<Entry> slots_;
};

} // namespace Vel

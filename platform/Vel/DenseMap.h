#pragma once

#include <Vel/Assert.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace Vel {

/// Where a key lies in a dense storage: a small number is its own place, and a type of its own may
/// say otherwise with an overload in its namespace.
template <typename K>
constexpr std::size_t velDensePlace( K const & key ) {
   if constexpr ( requires { key.value(); } ) {
      return key.value();
   } else {
      return static_cast<std::size_t>( key );
   }
}

/// Iterates over the places of a dense storage that are set in a mask, in their order.
template <typename Storage>
class DenseIterator {
 public:
   DenseIterator( Storage const & storage, uint32_t left ) : storage_( storage ), left_( left ) {}
   [[nodiscard]] decltype( auto ) operator*() const {
      return storage_.entry( static_cast<std::size_t>( std::countr_zero( left_ ) ) );
   }
   DenseIterator & operator++() {
      left_ &= left_ - 1;
      return *this;
   }
   friend bool operator==( DenseIterator const & a, DenseIterator const & b ) {
      return a.left_ == b.left_;
   }

 private:
   Storage const & storage_;
   uint32_t left_;
};

/// A map whose keys are few and known beforehand: one entry a place, found without a search, and no
/// memory asked for. A key without a place reads as absent; writing it is fatal. The storage of the
/// attribute kind DenseValues.
template <typename K, typename V, std::size_t places>
class DenseMap {
   static_assert( places <= 32 );

 public:
   using key_type = K;
   using mapped_type = V;
   struct Entry {
      K first;
      V second;
   };

   /// Whether writing the key is allowed.
   [[nodiscard]] static bool hasPlace( K const & key ) { return velDensePlace( key ) < places; }
   [[nodiscard]] bool contains( K const & key ) const { return find( key ) != nullptr; }
   [[nodiscard]] V at( K const & key ) const {
      V const * found = find( key );
      return found ? *found : V{};
   }
   /// The value, or null.
   [[nodiscard]] V const * find( K const & key ) const {
      std::size_t const place = velDensePlace( key );
      return place < places && held_ >> place & 1 ? &entries_[place].second : nullptr;
   }
   /// Whether that changed anything.
   bool store( K const & key, V const & value ) {
      std::size_t const place = velDensePlace( key );
      VEL_ASSERT( place < places );
      Entry & entry = entries_[place];
      if ( held_ >> place & 1 && entry.second == value ) {
         return false;
      }
      entry = { key, value };
      held_ |= uint32_t( 1 ) << place;
      return true;
   }
   /// Whether there was one.
   bool erase( K const & key ) {
      if ( !contains( key ) ) {
         return false;
      }
      std::size_t const place = velDensePlace( key );
      entries_[place] = {};
      held_ &= ~( uint32_t( 1 ) << place );
      return true;
   }

   [[nodiscard]] bool empty() const { return held_ == 0; }
   [[nodiscard]] std::size_t size() const {
      return static_cast<std::size_t>( std::popcount( held_ ) );
   }
   [[nodiscard]] auto begin() const { return DenseIterator( *this, held_ ); }
   [[nodiscard]] auto end() const { return DenseIterator( *this, 0 ); }

   [[nodiscard]] Entry const & entry( std::size_t place ) const { return entries_[place]; }

 private:
   std::array<Entry, places> entries_{};
   uint32_t held_ = 0;
};

/// The same for truth values, one bit each.
template <typename K, std::size_t places>
class DenseFlags {
   static_assert( places <= 32 );

 public:
   using key_type = K;
   using mapped_type = bool;
   struct Entry {
      K first;
      bool second;
   };

   /// Whether writing the key is allowed.
   [[nodiscard]] static bool hasPlace( K const & key ) { return velDensePlace( key ) < places; }
   [[nodiscard]] bool contains( K const & key ) const {
      std::size_t const place = velDensePlace( key );
      return place < places && held_ >> place & 1;
   }
   [[nodiscard]] bool at( K const & key ) const {
      return contains( key ) && bits_ >> velDensePlace( key ) & 1;
   }
   bool store( K const & key, bool value ) {
      std::size_t const place = velDensePlace( key );
      VEL_ASSERT( place < places );
      uint32_t const mask = uint32_t( 1 ) << place;
      if ( held_ & mask && ( ( bits_ & mask ) != 0 ) == value ) {
         return false;
      }
      held_ |= mask;
      bits_ = value ? bits_ | mask : bits_ & ~mask;
      return true;
   }
   bool erase( K const & key ) {
      if ( !contains( key ) ) {
         return false;
      }
      uint32_t const mask = uint32_t( 1 ) << velDensePlace( key );
      held_ &= ~mask;
      bits_ &= ~mask;
      return true;
   }

   [[nodiscard]] bool empty() const { return held_ == 0; }
   [[nodiscard]] std::size_t size() const {
      return static_cast<std::size_t>( std::popcount( held_ ) );
   }
   [[nodiscard]] auto begin() const { return DenseIterator( *this, held_ ); }
   [[nodiscard]] auto end() const { return DenseIterator( *this, 0 ); }
   [[nodiscard]] Entry entry( std::size_t place ) const {
      return { K( static_cast<uint8_t>( place ) ), static_cast<bool>( bits_ >> place & 1 ) };
   }

   /// Stores the bits of an image at the places of a mask; the places where that changed anything.
   uint32_t storeImage( uint32_t image, uint32_t mask ) {
      VEL_ASSERT( uint64_t{ mask } >> places == 0 );
      uint32_t const changed = ( ~held_ | ( bits_ ^ image ) ) & mask;
      held_ |= mask;
      bits_ = ( bits_ & ~mask ) | ( image & mask );
      return changed;
   }

 private:
   uint32_t held_ = 0;
   uint32_t bits_ = 0;
};

/// The same for numbers of 0 to 15, four bits each. Writing a larger number is fatal.
template <typename K, std::size_t places>
class DenseNibbles {
   static_assert( places <= 16 );

 public:
   using key_type = K;
   using mapped_type = uint8_t;
   struct Entry {
      K first;
      uint8_t second;
   };

   /// Whether writing the key is allowed.
   [[nodiscard]] static bool hasPlace( K const & key ) { return velDensePlace( key ) < places; }
   /// Whether writing the number is allowed.
   [[nodiscard]] static bool hasRoomFor( uint8_t value ) { return value < 16; }
   [[nodiscard]] bool contains( K const & key ) const {
      std::size_t const place = velDensePlace( key );
      return place < places && held_ >> place & 1;
   }
   [[nodiscard]] uint8_t at( K const & key ) const {
      return contains( key ) ? number( velDensePlace( key ) ) : uint8_t( 0 );
   }
   bool store( K const & key, uint8_t value ) {
      std::size_t const place = velDensePlace( key );
      VEL_ASSERT( place < places && value < 16 );
      if ( held_ >> place & 1 && number( place ) == value ) {
         return false;
      }
      held_ |= uint32_t( 1 ) << place;
      numbers_ = ( numbers_ & ~( uint64_t( 15 ) << 4 * place ) ) | uint64_t{ value } << 4 * place;
      return true;
   }
   bool erase( K const & key ) {
      if ( !contains( key ) ) {
         return false;
      }
      std::size_t const place = velDensePlace( key );
      held_ &= ~( uint32_t( 1 ) << place );
      numbers_ &= ~( uint64_t( 15 ) << 4 * place );
      return true;
   }

   [[nodiscard]] bool empty() const { return held_ == 0; }
   [[nodiscard]] std::size_t size() const {
      return static_cast<std::size_t>( std::popcount( held_ ) );
   }
   [[nodiscard]] auto begin() const { return DenseIterator( *this, held_ ); }
   [[nodiscard]] auto end() const { return DenseIterator( *this, 0 ); }
   [[nodiscard]] Entry entry( std::size_t place ) const {
      return { K( static_cast<uint8_t>( place ) ), number( place ) };
   }

   /// Stores the numbers of an image at the places of a mask; the places where that changed anything.
   uint32_t storeImage( uint64_t image, uint32_t mask ) {
      VEL_ASSERT( uint64_t{ mask } >> places == 0 );
      uint32_t changed = ~held_ & mask;
      for ( uint64_t left = numbers_ ^ image; left != 0; ) {
         int const place = std::countr_zero( left ) / 4;
         uint64_t const field = uint64_t( 15 ) << 4 * place;
         if ( mask >> place & 1 ) {
            numbers_ = ( numbers_ & ~field ) | ( image & field );
            changed |= uint32_t( 1 ) << place;
         }
         left &= ~field;
      }
      held_ |= mask;
      return changed;
   }

 private:
   [[nodiscard]] uint8_t number( std::size_t place ) const {
      return static_cast<uint8_t>( numbers_ >> 4 * place & 15 );
   }

   uint64_t numbers_ = 0; // 0 where none is held
   uint32_t held_ = 0;
};

} // namespace Vel

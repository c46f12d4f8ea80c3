#pragma once

#include <Vel/Api.h>

#include <bit>
#include <compare>
#include <cstdint>
#include <cstring>
#include <iosfwd>
#include <string_view>

namespace Vel {

/// A text or a buffer of bytes; a value. 24 bytes: up to 23 bytes of content lie inside, longer
/// content in a counted block (not atomic) that copies share until one of them changes.
class VEL_API String {
 public:
   static constexpr std::size_t npos = std::string_view::npos;

   String() { std::memset( raw_, 0, sizeof raw_ ); }
   /// `bytes` may be null when `size` is 0.
   [[gnu::always_inline]] String( char const * bytes, std::size_t size ) {
      if ( size <= inlineCapacity ) {
         setInside( bytes, size );
      } else {
         allocate( bytes, size, size );
      }
   }
   String( std::string_view text ) : String( text.data(), text.size() ) {}
   /// A null pointer gives the empty text.
   String( char const * text ) : String( text ? std::string_view( text ) : std::string_view() ) {}
   String( std::size_t size, char fill );
   String( String const & other ) {
      std::memcpy( raw_, other.raw_, sizeof raw_ );
      if ( shared() ) {
         ++block()->refs;
      }
   }
   String( String && other ) noexcept {
      std::memcpy( raw_, other.raw_, sizeof raw_ );
      std::memset( other.raw_, 0, sizeof raw_ );
   }
   ~String() {
      if ( shared() ) {
         release();
      }
   }
   String & operator=( String const & other ) {
      if ( other.shared() ) {
         ++other.block()->refs;
      }
      if ( shared() ) {
         release();
      }
      std::memmove( raw_, other.raw_, sizeof raw_ );
      return *this;
   }
   String & operator=( String && other ) noexcept {
      char taken[sizeof raw_];
      std::memcpy( taken, other.raw_, sizeof raw_ );
      std::memset( other.raw_, 0, sizeof raw_ );
      if ( shared() ) {
         release();
      }
      std::memcpy( raw_, taken, sizeof raw_ );
      return *this;
   }

   [[nodiscard]] std::size_t size() const { return shared() ? block()->size : inlineSize(); }
   [[nodiscard]] bool empty() const { return inlineSize() == 0; }
   [[nodiscard]] char const * data() const { return shared() ? block()->bytes() : raw_; }
   [[nodiscard]] std::string_view view() const {
      char const * bytes = raw_;
      std::size_t count = inlineSize();
      // Pages are what is viewed all the time, and they lie in blocks.
      if ( shared() ) [[likely]] {
         bytes = block()->bytes();
         count = block()->size;
      }
      // Given other types than these two, g++ asks whether they are iterators, which costs every
      // including file 20 ms.
      return { bytes, count };
   }
   operator std::string_view() const { return view(); }
   [[nodiscard]] char const * begin() const { return data(); }
   [[nodiscard]] char const * end() const { return data() + size(); }

   /// The byte at `at`; 0 beyond the end.
   char operator[]( std::size_t at ) const { return at < size() ? data()[at] : '\0'; }
   /// Changes one byte; nothing happens beyond the end.
   void byteIs( std::size_t at, uint8_t value );

   /// At most `count` bytes from `at` on; empty when `at` lies beyond the end.
   [[nodiscard]] String substr( std::size_t at, std::size_t count = npos ) const;
   [[nodiscard]] std::size_t find( std::string_view text, std::size_t from = 0 ) const {
      return view().find( text, from );
   }

   String & operator+=( std::string_view text );
   friend String operator+( String left, std::string_view right ) {
      left += right;
      return left;
   }

   friend bool operator==( String const & a, String const & b ) {
      // Unused inline bytes are 0, so equal texts that lie inside are equal bit by bit.
      return std::memcmp( a.raw_, b.raw_, sizeof a.raw_ ) == 0 ||
             ( a.shared() && b.shared() && a.view() == b.view() );
   }
   friend bool operator==( String const & a, std::string_view b ) { return a.view() == b; }
   friend bool operator==( String const & a, char const * b ) {
      return a.view() == std::string_view( b );
   }
   /// Order of the bytes as unsigned numbers.
   friend std::strong_ordering operator<=>( String const & a, String const & b ) {
      return a.view() <=> b.view();
   }

   [[nodiscard]] std::size_t hash() const;

   /// Copies all bytes to `to`. Few ones go in steps of fixed width that overlap: a copy of variable
   /// width would be a call.
   [[gnu::always_inline]] void copyTo( char * to ) const {
      std::size_t const size = inlineSize();
      if ( shared() ) [[unlikely]] {
         std::memcpy( to, block()->bytes(), block()->size );
      } else if ( size >= 8 ) {
         std::memcpy( to, raw_, 8 );
         if ( size >= 16 ) {
            std::memcpy( to + 8, raw_ + 8, 8 );
         }
         std::memcpy( to + size - 8, raw_ + size - 8, 8 );
      } else if ( size >= 4 ) {
         std::memcpy( to, raw_, 4 );
         std::memcpy( to + size - 4, raw_ + size - 4, 4 );
      } else if ( size != 0 ) {
         to[0] = raw_[0];
         to[size / 2] = raw_[size / 2];
         to[size - 1] = raw_[size - 1];
      }
   }

 private:
   struct Block {
      uint32_t refs;
      std::size_t size;
      std::size_t capacity;
      [[nodiscard]] char * bytes() { return reinterpret_cast<char *>( this + 1 ); }
   };
   static constexpr std::size_t inlineCapacity = 23;
   static constexpr std::size_t tagAt = 23;
   static constexpr unsigned char sharedTag = 0xff;

   [[nodiscard]] std::size_t inlineSize() const {
      return static_cast<unsigned char>( raw_[tagAt] );
   }
   [[nodiscard]] bool shared() const { return inlineSize() == sharedTag; }
   [[nodiscard]] Block * block() const {
      Block * result;
      std::memcpy( &result, raw_, sizeof result );
      return result;
   }
// GCC takes the loads of longer texts for reads of a literal that is shorter, or of a buffer that is
// not filled so far.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Warray-bounds"
#ifndef __clang__
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
   template <typename T>
   [[gnu::always_inline]] static uint64_t load( char const * at ) {
      T word;
      std::memcpy( &word, at, sizeof word );
      return word;
   }
   /// Holds at most `inlineCapacity` bytes, put together in registers from overlapping loads of fixed
   /// width: a copy of variable width would be a call, and the bytes would come in pieces for which
   /// the next reader of the whole has to wait.
   [[gnu::always_inline]] void setInside( char const * bytes, std::size_t size ) {
      uint64_t word[3] = {};
      if constexpr ( std::endian::native != std::endian::little ) {
         std::memcpy( word, bytes ? bytes : "", size );
         std::memcpy( raw_, word, sizeof raw_ );
         raw_[tagAt] = static_cast<char>( size );
         return;
      }
      char const * const end = bytes + size;
      if ( size >= 16 ) {
         word[0] = load<uint64_t>( bytes );
         word[1] = load<uint64_t>( bytes + 8 );
         word[2] = load<uint64_t>( end - 8 ) >> 8 * ( 23 - size ) >> 8;
      } else if ( size >= 8 ) {
         word[0] = load<uint64_t>( bytes );
         word[1] = load<uint64_t>( end - 8 ) >> 8 * ( 15 - size ) >> 8;
      } else if ( size >= 4 ) {
         word[0] = load<uint32_t>( bytes ) | load<uint32_t>( end - 4 ) << 8 * ( size - 4 );
      } else if ( size != 0 ) {
         word[0] = load<uint8_t>( bytes ) | load<uint8_t>( bytes + size / 2 ) << 8 * ( size / 2 ) |
                   load<uint8_t>( end - 1 ) << 8 * ( size - 1 );
      }
      word[2] |= uint64_t( size ) << 56;
      // Stored in the pieces in which a copy loads them: a load across two stores has to wait.
      using Pair [[gnu::vector_size( 16 )]] = uint64_t;
      Pair const low = { word[0], word[1] };
      std::memcpy( raw_, &low, sizeof low );
      std::memcpy( raw_ + sizeof low, &word[2], sizeof word[2] );
   }
#pragma GCC diagnostic pop
   void allocate( char const * bytes, std::size_t size, std::size_t capacity );
   void release() noexcept;
   /// Writable bytes, in a block of this string's own when they lie in one.
   char * own();

   // The bytes and, last, their number; or a block's address and, last, `sharedTag`.
   alignas( 8 ) char raw_[inlineCapacity + 1];
};

using Name = String;

VEL_API std::ostream & operator<<( std::ostream & out, String const & text );

} // namespace Vel

template <>
struct std::hash<Vel::String> {
   std::size_t operator()( Vel::String const & text ) const { return text.hash(); }
};

#include <Vel/String.h>

#include <algorithm>
#include <new>
#include <ostream>

namespace Vel {

String::String( std::size_t size, char fill ) : String() {
   if ( size <= inlineCapacity ) {
      std::memset( raw_, fill, size );
      raw_[tagAt] = static_cast<char>( size );
   } else {
      allocate( nullptr, size, size );
      std::memset( block()->bytes(), fill, size );
   }
}

void String::allocate( char const * bytes, std::size_t size, std::size_t capacity ) {
   Block * made = new ( ::operator new( sizeof( Block ) + capacity ) ) Block{ 1, size, capacity };
   if ( bytes ) {
      std::memcpy( made->bytes(), bytes, size );
   }
   std::memset( raw_, 0, sizeof raw_ );
   std::memcpy( raw_, &made, sizeof made );
   raw_[tagAt] = static_cast<char>( sharedTag );
}

void String::release() noexcept {
   if ( --block()->refs == 0 ) {
      ::operator delete( block() );
   }
}

char * String::own() {
   if ( !shared() ) {
      return raw_;
   }
   if ( block()->refs != 1 ) {
      String copy;
      copy.allocate( data(), size(), size() );
      *this = std::move( copy );
   }
   return block()->bytes();
}

void String::byteIs( std::size_t at, uint8_t value ) {
   if ( at < size() ) {
      own()[at] = static_cast<char>( value );
   }
}

String String::substr( std::size_t at, std::size_t count ) const {
   return at < size() ? String( view().substr( at, count ) ) : String();
}

String & String::operator+=( std::string_view text ) {
   if ( text.empty() ) {
      return *this; // and its address may be null
   }
   std::size_t const oldSize = size();
   std::size_t const newSize = oldSize + text.size();
   if ( newSize <= inlineCapacity ) {
      std::memmove( raw_ + oldSize, text.data(), text.size() );
      raw_[tagAt] = static_cast<char>( newSize );
      return *this;
   }
   if ( shared() && block()->refs == 1 && block()->capacity >= newSize ) {
      std::memcpy( block()->bytes() + oldSize, text.data(), text.size() );
      block()->size = newSize;
      return *this;
   }
   String grown; // built beside this one, since `text` may lie in it
   grown.allocate( data(), oldSize, std::max( newSize, 2 * oldSize ) );
   std::memcpy( grown.block()->bytes() + oldSize, text.data(), text.size() );
   grown.block()->size = newSize;
   return *this = std::move( grown );
}

namespace {

__extension__ using Wide = unsigned __int128;

uint64_t mix( uint64_t a, uint64_t b ) {
   Wide const product = Wide( a ) * b;
   return static_cast<uint64_t>( product ) ^ static_cast<uint64_t>( product >> 64 );
}

} // namespace

std::size_t String::hash() const {
   constexpr uint64_t k0 = 0x9e3779b97f4a7c15, k1 = 0xd6e8feb86659fd93;
   if ( !shared() ) {
      uint64_t word[3];
      std::memcpy( word, raw_, sizeof word );
      return mix( word[0] ^ k0, mix( word[1] ^ k1, word[2] ^ k0 ) ^ k1 );
   }
   uint64_t result = size() ^ k0;
   std::string_view rest = view();
   while ( !rest.empty() ) {
      uint64_t word = 0;
      std::size_t const taken = std::min( rest.size(), sizeof word );
      std::memcpy( &word, rest.data(), taken );
      result = mix( result ^ word, k1 );
      rest.remove_prefix( taken );
   }
   return result;
}

std::ostream & operator<<( std::ostream & out, String const & text ) {
   return out << text.view();
}

} // namespace Vel

#pragma once

#include <Vel/AttrLog.h>
#include <Vel/Exception.h>
#include <Vel/Value.h>

#include <bit>
#include <cstring>
#include <limits>
#include <map>

/// How values lie in an attribute log. Included by the .cpp files that define model types.
namespace Vel {

namespace Internal {

/// The unsigned integer as wide as a number, as which it crosses the wire.
template <typename T>
using WireInteger =
   std::conditional_t<sizeof( T ) == 1, uint8_t,
                      std::conditional_t<sizeof( T ) == 2, uint16_t,
                                         std::conditional_t<sizeof( T ) == 4, uint32_t, uint64_t>>>;

template <typename U>
constexpr U networkOrder( U number ) {
   if constexpr ( std::endian::native == std::endian::little && sizeof( U ) > 1 ) {
      if constexpr ( sizeof( U ) == 2 ) {
         return __builtin_bswap16( number );
      } else if constexpr ( sizeof( U ) == 4 ) {
         return __builtin_bswap32( number );
      } else {
         return __builtin_bswap64( number );
      }
   }
   return number;
}

template <typename T>
constexpr bool isNumber = std::is_arithmetic_v<T> || std::is_enum_v<T>;

/// How many bytes a value takes in the log. Found first, so that a record reserves its room once.
template <typename T>
[[gnu::always_inline]] inline std::size_t encodedSize( T const & v ) {
   if constexpr ( isNumber<T> ) {
      return sizeof( T );
   } else if constexpr ( std::is_same_v<T, String> ) {
      return sizeof( uint32_t ) + v.size();
   } else if constexpr ( ModelValue<T> ) {
      std::size_t size = 0;
      T::velFields( [&]( auto const &, auto field )
                       __attribute__( ( always_inline ) ) { size += encodedSize( v.*field ); } );
      return size;
   } else {
      std::size_t size = sizeof( uint32_t );
      for ( auto const & [key, value] : v ) {
         size += encodedSize( key ) + encodedSize( value );
      }
      return size;
   }
}

/// Writes a value at `to`, where its room is reserved, and returns the end.
template <typename T>
[[gnu::always_inline]] inline uint8_t * encode( uint8_t * to, T const & v ) {
   if constexpr ( isNumber<T> ) {
      auto const wire = networkOrder( std::bit_cast<WireInteger<T>>( v ) );
      std::memcpy( to, &wire, sizeof wire );
      return to + sizeof wire;
   } else if constexpr ( std::is_same_v<T, String> ) {
      std::string_view const text = v;
      to = encode( to, static_cast<uint32_t>( text.size() ) );
      std::memcpy( to, text.data(), text.size() );
      return to + text.size();
   } else if constexpr ( ModelValue<T> ) {
      T::velFields( [&]( auto const &, auto field )
                       __attribute__( ( always_inline ) ) { to = encode( to, v.*field ); } );
      return to;
   } else {
      to = encode( to, static_cast<uint32_t>( v.size() ) );
      for ( auto const & [key, value] : v ) {
         to = encode( to, key );
         to = encode( to, value );
      }
      return to;
   }
}

/// A place in a log that is being read; every read is checked against the end.
struct LogCursor {
   uint8_t const * begin;
   uint8_t const * at;
   uint8_t const * end;

   [[gnu::always_inline]] void need( std::size_t count ) const {
      if ( static_cast<std::size_t>( end - at ) < count ) [[unlikely]] {
         truncated( *this, count );
      }
   }
   [[gnu::always_inline, noreturn]] void fail( std::string_view problem ) const {
      failAt( *this, problem );
   }
   // By value: a cursor whose address is known elsewhere would have to live in memory.
   [[noreturn, gnu::cold]] VEL_API static void truncated( LogCursor in, std::size_t needed );
   [[noreturn, gnu::cold]] VEL_API static void failAt( LogCursor in, std::string_view problem );
};

template <typename T>
[[gnu::always_inline]] inline void decode( LogCursor & in, T & v ) {
   if constexpr ( isNumber<T> ) {
      in.need( sizeof( T ) );
      WireInteger<T> wire;
      std::memcpy( &wire, in.at, sizeof wire );
      wire = networkOrder( wire );
      if constexpr ( std::is_same_v<T, bool> ) {
         if ( wire > 1 ) [[unlikely]] {
            in.fail( "neither 0 nor 1 for a bool" );
         }
         v = wire != 0;
      } else if constexpr ( ModelEnum<T> ) {
         if ( !velEnumModel( v ).byCode( wire ) ) [[unlikely]] {
            in.fail( "no " + std::string( velEnumModel( v ).typeName ) + " has code " +
                     std::to_string( wire ) );
         }
         v = static_cast<T>( wire );
      } else {
         v = std::bit_cast<T>( wire );
      }
      in.at += sizeof wire;
   } else if constexpr ( std::is_same_v<T, String> ) {
      uint32_t size;
      decode( in, size );
      in.need( size );
      v = String( reinterpret_cast<char const *>( in.at ), size );
      in.at += size;
   } else if constexpr ( ModelValue<T> ) {
      T::velFields( [&]( auto const &, auto field )
                       __attribute__( ( always_inline ) ) { decode( in, v.*field ); } );
      if constexpr ( requires { T::velBound; } ) {
         if ( v.value() > T::velBound ) [[unlikely]] {
            in.at -= sizeof v.value();
            in.fail( "a number out of range" );
         }
      }
   } else {
      uint32_t count;
      decode( in, count );
      v.clear();
      while ( count-- ) {
         typename T::key_type key{};
         typename T::mapped_type value{};
         LogCursor const atKey = in;
         decode( in, key );
         decode( in, value );
         if ( !v.emplace( std::move( key ), std::move( value ) ).second ) {
            atKey.fail( "a key that was given before" );
         }
      }
   }
}

} // namespace Internal

template <typename T>
void NboAttrLog::write( T const & v ) {
   if constexpr ( ModelValue<T> ) {
      v.velWrite( *this );
   } else {
      Internal::encode( append( Internal::encodedSize( v ) ), v );
   }
}

template <typename T>
[[gnu::always_inline]] inline void NboAttrLog::readInto( T & v ) {
   Internal::LogCursor in{ bytes_.get(), bytes_.get() + position_, bytes_.get() + size_ };
   Internal::decode( in, v );
   position_ = static_cast<std::size_t>( in.at - in.begin );
}

template <typename T>
T NboAttrLog::read() {
   T v{};
   readInto( v );
   return v;
}

} // namespace Vel

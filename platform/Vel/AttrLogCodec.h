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
      std::size_t const size = v.size();
      to = encode( to, static_cast<uint32_t>( size ) );
      v.copyTo( reinterpret_cast<char *>( to ) );
      return to + size;
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

/// The bytes that a T takes in the log when its texts and maps are empty.
template <typename T>
constexpr std::size_t leastSize = isNumber<T> ? sizeof( T ) : sizeof( uint32_t );
template <ModelValue T>
constexpr std::size_t leastSize<T> = [] {
   std::size_t size = 0;
   T::velFields( [&size]<typename F>( auto const &, F T::* ) { size += leastSize<F>; } );
   return size;
}();

/// A place in a log that is being read. The least size of a value is claimed before it is taken, the
/// bytes of a text and of a map's entry when their turn comes: one check for all the numbers in a row.
struct LogCursor {
   uint8_t const * begin;
   uint8_t const * at;
   std::size_t spare; // the bytes behind what is claimed

   [[gnu::always_inline]] void claim( std::size_t count ) {
      if ( spare < count ) [[unlikely]] {
         truncated( *this, count );
      }
      spare -= count;
   }
   /// The next T, whose least size is claimed.
   template <typename T>
   [[gnu::always_inline]] T take() {
      if constexpr ( isNumber<T> ) {
         return takeNumber<T>();
      } else if constexpr ( std::is_same_v<T, String> ) {
         uint32_t const size = takeNumber<uint32_t>();
         claim( size );
         at += size;
         return { reinterpret_cast<char const *>( at - size ), size };
      } else if constexpr ( ModelValue<T> ) {
         return T( Taken(), *this );
      } else {
         return takeMap<T>();
      }
   }
   [[gnu::always_inline]] uint8_t takeUpTo( uint8_t bound ) {
      if ( *at > bound ) [[unlikely]] {
         fail( *this, "a number out of range" );
      }
      return *at++;
   }
   /// Called when all fields of a value have been taken.
   void taken() const {}
   /// The next T, nothing of which is claimed yet.
   template <typename T>
   [[gnu::always_inline]] T next() {
      claim( leastSize<T> );
      return take<T>();
   }
   // By value: a cursor whose address is known elsewhere would have to live in memory.
   [[noreturn, gnu::cold]] VEL_API static void fail( LogCursor in, std::string_view problem );

 private:
   template <typename T>
   [[gnu::always_inline]] T takeNumber() {
      WireInteger<T> wire;
      std::memcpy( &wire, at, sizeof wire );
      wire = networkOrder( wire );
      if constexpr ( std::is_same_v<T, bool> ) {
         if ( wire > 1 ) [[unlikely]] {
            fail( *this, "neither 0 nor 1 for a bool" );
         }
      } else if constexpr ( ModelEnum<T> ) {
         if ( !velEnumModel( T{} ).byCode( wire ) ) [[unlikely]] {
            noCode( *this, velEnumModel( T{} ), wire );
         }
      }
      at += sizeof wire;
      return std::bit_cast<T>( wire );
   }
   template <typename T>
   T takeMap() {
      using Key = typename T::key_type;
      using Mapped = typename T::mapped_type;
      T map;
      for ( uint32_t count = takeNumber<uint32_t>(); count != 0; --count ) {
         LogCursor const atKey = *this;
         claim( leastSize<Key> + leastSize<Mapped> );
         Key key = take<Key>();
         Mapped mapped = take<Mapped>();
         if ( !map.emplace( std::move( key ), std::move( mapped ) ).second ) {
            fail( atKey, "a key that was given before" );
         }
      }
      return map;
   }
   [[noreturn, gnu::cold]] VEL_API static void truncated( LogCursor in, std::size_t needed );
   [[noreturn, gnu::cold]] VEL_API static void noCode( LogCursor in, EnumModel const & model,
                                                       uint32_t code );
};

/// Reads the next T of a log, which stands behind it when it is taken.
template <typename T>
struct LogReading : LogCursor {
   [[gnu::always_inline]] explicit LogReading( NboAttrLog & from )
      : LogCursor( from.cursor() ), log( from ) {
      claim( leastSize<T> );
   }
   [[gnu::always_inline]] void taken() const {
      log.positionIs( static_cast<std::size_t>( at - begin ) );
   }
   NboAttrLog & log;
};

} // namespace Internal

template <typename T>
void NboAttrLog::write( T const & v ) {
   if constexpr ( ModelValue<T> ) {
      v.velWrite( *this );
   } else {
      Internal::encode( append( Internal::encodedSize( v ) ), v );
   }
}

inline Internal::LogCursor NboAttrLog::cursor() const {
   return { bytes_.get(), bytes_.get() + position_, size_ - position_ };
}

template <typename T>
T NboAttrLog::read() {
   if constexpr ( ModelValue<T> ) {
      return T( *this );
   } else {
      Internal::LogReading<T> in( *this );
      T v = in.template take<T>();
      in.taken();
      return v;
   }
}

} // namespace Vel

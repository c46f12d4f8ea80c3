#include <Vel/Assert.h>
#include <Vel/Trace.h>
#include <Xcvr/XcvrCommonUtil.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace Xcvr {
namespace {

Vel::TraceHandle trace( "XcvrCommonUtil" );

/// The decimal number at the start of a text, up to the first that is no digit; 0 when there is
/// none. Beyond 32 bits it wraps.
uint32_t leadingNumber( std::string_view text ) {
   uint32_t number = 0;
   for ( char c : text ) {
      if ( c < '0' || c > '9' ) {
         break;
      }
      number = number * 10 + static_cast<uint32_t>( c - '0' );
   }
   return number;
}

std::string dumpHead( std::string_view label, uint16_t size ) {
   return "Cfp2 " + std::string( label ) + " read size=" + std::to_string( size ) + " data=0x";
}

/// One number of a dump, of which each line starts with its line end.
void appendHex( std::string & text, bool startsLine, int digits, unsigned number ) {
   char piece[16];
   std::snprintf( piece, sizeof piece, "%s%0*X ", startsLine ? "\n" : "", digits, number );
   text += piece;
}

} // namespace

std::tuple<Vel::String, uint32_t, uint32_t, uint32_t> intfNameKey( Vel::String const & name ) {
   VEL_TRACE_SCOPE( trace );
   std::string_view const text = name;
   std::size_t const firstDigitPos = text.find_first_of( "0123456789" );
   VEL_ASSERT( firstDigitPos != Vel::String::npos );
   uint32_t numbers[3] = { leadingNumber( text.substr( firstDigitPos ) ), 0, 0 };
   std::size_t moreSlashes = text.find( '/' );
   for ( int i = 1; i < 3 && moreSlashes != Vel::String::npos; ++i ) {
      numbers[i] = leadingNumber( text.substr( moreSlashes + 1 ) );
      moreSlashes = text.find( '/', moreSlashes + 1 );
   }
   VEL_ASSERT( moreSlashes == Vel::String::npos );
   return { name.substr( 0, firstDigitPos ), numbers[0], numbers[1], numbers[2] };
}

Vel::String dumpW8Data( char const * label, void const * data, uint16_t size ) {
   VEL_TRACE_SCOPE( trace );
   if ( !label ) {
      return "Cfp2 ";
   }
   std::string text = dumpHead( label, size );
   auto const * bytes = static_cast<uint8_t const *>( data );
   for ( unsigned i = 0; i < size; ++i ) {
      appendHex( text, i % 10 == 0, 2, bytes[i] );
   }
   return std::string_view( text );
}

Vel::String dumpW16Data( void const * data, uint16_t size ) {
   VEL_TRACE_SCOPE( trace );
   std::string text = dumpHead( "", size );
   auto const * bytes = static_cast<uint8_t const *>( data );
   for ( unsigned i = 0; i < size; i += 2 ) {
      uint16_t word;
      std::memcpy( &word, bytes + i, sizeof word );
      appendHex( text, i % 20 == 0, 4, word );
   }
   return std::string_view( text );
}

} // namespace Xcvr

#include "tests/support/ImageBuilder.h"

#include <bit>
#include <cmath>
#include <stdexcept>

namespace XcvrTest {
namespace {

using Xcvr::MemoryField;

[[noreturn]] void refuse( std::string_view name, char const * why ) {
   throw std::invalid_argument( std::string( name ) + ": " + why );
}

} // namespace

ModulePages::ModulePages( std::span<MemoryField const> fields, Labels labels, size_t pageSize )
   : fields_( fields ) {
   for ( std::string_view label : labels ) {
      pages_[label] = std::string( pageSize, '\0' );
   }
   for ( MemoryField const & field : fields ) {
      if ( field.kind == Xcvr::MemoryKind::text ) {
         textIs( field.name, "" );
      }
   }
}

MemoryField const & ModulePages::fieldNamed( std::string_view name ) const {
   size_t const index = Xcvr::memoryFieldIndex( fields_, name );
   if ( index == fields_.size() ) {
      refuse( name, "no such field" );
   }
   return fields_[index];
}

void ModulePages::valueIs( std::string_view name, double value ) {
   MemoryField const & field = fieldNamed( name );
   if ( field.kind == Xcvr::MemoryKind::f32be ) {
      return rawIs( name, std::bit_cast<uint32_t>( static_cast<float>( value ) ) );
   }
   bool const isSigned =
      field.kind == Xcvr::MemoryKind::s8 || field.kind == Xcvr::MemoryKind::s16be;
   double const codes = std::ldexp( 1, field.width * 8 );
   double const code = std::round( value / field.scale );
   if ( code < ( isSigned ? -codes / 2 : 0 ) || code >= ( isSigned ? codes / 2 : codes ) ) {
      refuse( name, "value out of range" );
   }
   rawIs( name, static_cast<uint64_t>( static_cast<int64_t>( code ) ) );
}

void ModulePages::rawIs( std::string_view name, uint64_t number ) {
   MemoryField const & field = fieldNamed( name );
   std::string & page = pageOf( field );
   for ( size_t at = field.end(); at-- > field.at; number >>= 8 ) {
      page[at] = static_cast<char>( number );
   }
}

void ModulePages::textIs( std::string_view name, std::string_view text ) {
   MemoryField const & field = fieldNamed( name );
   if ( text.size() > field.width ) {
      refuse( name, "text too long" );
   }
   std::string padded( text );
   padded.resize( field.width, ' ' );
   pageOf( field ).replace( field.at, field.width, padded );
}

void ModulePages::bitIs( std::string_view name, std::string_view bit ) {
   MemoryField const & field = fieldNamed( name );
   Xcvr::MemoryBitPlace const place = Xcvr::findMemoryBit( field, bit );
   if ( place.mask == 0 ) {
      refuse( bit, "no such bit" );
   }
   char & byte = pageOf( field )[place.at];
   byte = static_cast<char>( byte | place.mask );
}

void ModulePages::checksumBrokenIs( std::string_view field ) {
   brokenChecksum_ = fieldNamed( field ).name;
}

void ModulePages::sumUp( std::string & page, size_t first, std::string_view stored ) const {
   size_t const at = fieldNamed( stored ).at;
   unsigned sum = stored == brokenChecksum_ ? 1 : 0;
   for ( size_t i = first; i < at; ++i ) {
      sum += static_cast<uint8_t>( page[i] );
   }
   page[at] = static_cast<char>( sum );
}

} // namespace XcvrTest

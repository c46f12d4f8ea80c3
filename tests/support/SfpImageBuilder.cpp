#include "tests/support/SfpImageBuilder.h"

#include <bit>
#include <cmath>
#include <stdexcept>

namespace XcvrTest {
namespace {

using Xcvr::MemoryField;

constexpr size_t pageSize = 256;

[[noreturn]] void refuse( std::string_view name, char const * why ) {
   throw std::invalid_argument( std::string( name ) + ": " + why );
}

MemoryField const & fieldNamed( std::string_view name ) {
   auto const fields = Xcvr::sff8472Fields();
   size_t const index = Xcvr::memoryFieldIndex( fields, name );
   if ( index == fields.size() ) {
      refuse( name, "no such field" );
   }
   return fields[index];
}

/// Stores in `stored` what makes the sum of the bytes from `first` up to it right.
void sumUp( std::string & page, size_t first, std::string_view stored, std::string_view broken ) {
   size_t const at = fieldNamed( stored ).at;
   unsigned sum = stored == broken ? 1 : 0;
   for ( size_t i = first; i < at; ++i ) {
      sum += static_cast<uint8_t>( page[i] );
   }
   page[at] = static_cast<char>( sum );
}

} // namespace

SfpImageBuilder::SfpImageBuilder() : a0h_( pageSize, '\0' ), a2h_( pageSize, '\0' ) {
   raw( "identifier", 3 );
   for ( MemoryField const & field : Xcvr::sff8472Fields() ) {
      if ( field.kind == Xcvr::MemoryKind::text ) {
         text( field.name, "" );
      }
   }
}

std::string & SfpImageBuilder::pageOf( MemoryField const & field ) {
   return field.page == "a0h" ? a0h_ : a2h_;
}

SfpImageBuilder & SfpImageBuilder::value( std::string_view name, double value ) {
   MemoryField const & field = fieldNamed( name );
   if ( field.kind == Xcvr::MemoryKind::f32be ) {
      return raw( name, std::bit_cast<uint32_t>( static_cast<float>( value ) ) );
   }
   bool const isSigned =
      field.kind == Xcvr::MemoryKind::s8 || field.kind == Xcvr::MemoryKind::s16be;
   double const codes = std::ldexp( 1, field.width * 8 );
   double const code = std::round( value / field.scale );
   if ( code < ( isSigned ? -codes / 2 : 0 ) || code >= ( isSigned ? codes / 2 : codes ) ) {
      refuse( name, "value out of range" );
   }
   return raw( name, static_cast<uint64_t>( static_cast<int64_t>( code ) ) );
}

SfpImageBuilder & SfpImageBuilder::raw( std::string_view name, uint64_t number ) {
   MemoryField const & field = fieldNamed( name );
   std::string & page = pageOf( field );
   for ( size_t at = field.end(); at-- > field.at; number >>= 8 ) {
      page[at] = static_cast<char>( number );
   }
   return *this;
}

SfpImageBuilder & SfpImageBuilder::text( std::string_view name, std::string_view text ) {
   MemoryField const & field = fieldNamed( name );
   if ( text.size() > field.width ) {
      refuse( name, "text too long" );
   }
   std::string padded( text );
   padded.resize( field.width, ' ' );
   pageOf( field ).replace( field.at, field.width, padded );
   return *this;
}

SfpImageBuilder & SfpImageBuilder::bit( std::string_view name, std::string_view bit ) {
   MemoryField const & field = fieldNamed( name );
   Xcvr::MemoryBitPlace const place = Xcvr::findMemoryBit( field, bit );
   if ( place.mask == 0 ) {
      refuse( bit, "no such bit" );
   }
   char & byte = pageOf( field )[place.at];
   byte = static_cast<char>( byte | place.mask );
   return *this;
}

SfpImageBuilder & SfpImageBuilder::checksumBroken( std::string_view field ) {
   brokenChecksum_ = fieldNamed( field ).name;
   return *this;
}

SfpImageBuilder & SfpImageBuilder::a2hMissing() {
   hasA2h_ = false;
   return *this;
}

std::string SfpImageBuilder::a0h() const {
   std::string page = a0h_;
   sumUp( page, 0, "storedCcBase", brokenChecksum_ );
   sumUp( page, 64, "storedCcExt", brokenChecksum_ );
   return page;
}

std::string SfpImageBuilder::a2h() const {
   if ( !hasA2h_ ) {
      return {};
   }
   std::string page = a2h_;
   sumUp( page, 0, "storedCcDmi", brokenChecksum_ );
   return page;
}

Xcvr::XcvrSff8472IdEepromContents SfpImageBuilder::contents() const {
   return { std::string_view( a0h() ), std::string_view( a2h() ), 0.0 };
}

} // namespace XcvrTest

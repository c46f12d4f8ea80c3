#pragma once

#include <Xcvr/XcvrMemoryMap.h>
#include <Xcvr/XcvrSfpStatus.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace Xcvr {

/// The bytes of page A2h in effect, as `SfpNewStatus` says, as far as the field table goes; what
/// was not read is 0. In place, unless single bytes and a page must be put together.
class A2hBytes {
 public:
   [[gnu::always_inline]] A2hBytes( SfpNewStatus const & status,
                                    XcvrSff8472IdEepromContents const & contents ) {
      std::string_view const page = contents.eepromPageA2Data();
      bool const overridden = &contents != &status.actualIdEepromContents();
      Sff8472Registers::Page const * registers =
         overridden ? nullptr : status.registerDataMap().page( 0xA2 );
      if ( registers && page.empty() ) {
         bytes_ = reinterpret_cast<char const *>( registers->bytes.data() );
      } else if ( !registers && page.size() >= length ) {
         bytes_ = page.data();
      } else {
         copy( page, registers );
      }
   }
   A2hBytes( A2hBytes const & ) = delete;
   A2hBytes & operator=( A2hBytes const & ) = delete;

   /// Of constant length, so that reading it needs no checks.
   [[nodiscard]] PageView page() const { return std::string_view( bytes_, length ); }

 private:
   static constexpr size_t length = 152;
   static_assert( Sff8472Table::row( "tuningWavelength" ).end() <= length &&
                  length % sizeof( uint64_t ) == 0 );

   [[gnu::noinline]] void copy( std::string_view page, Sff8472Registers::Page const * registers ) {
      size_t const size = std::min( page.size(), length );
      std::memcpy( merged_, page.data(), size );
      std::memset( merged_ + size, 0, length - size );
      if ( registers ) {
         put( *registers );
      }
      bytes_ = merged_;
   }
   void put( Sff8472Registers::Page const & registers ) {
      uint64_t below, held, bytes; // eight bytes at a time
      for ( size_t at = 0; at < length; at += sizeof below ) {
         std::memcpy( &below, merged_ + at, sizeof below );
         std::memcpy( &held, registers.held.data() + at, sizeof held );
         std::memcpy( &bytes, registers.bytes.data() + at, sizeof bytes );
         below = ( below & ~held ) | bytes;
         std::memcpy( merged_ + at, &below, sizeof below );
      }
   }

   char const * bytes_;
   char merged_[length];
};

} // namespace Xcvr

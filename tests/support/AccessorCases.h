#pragma once

#include <Vel/String.h>
#include <Xcvr/XcvrMemoryMap.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Where contents read and what their checksums guard, checked with addresses from the standard
// rather than from the field table, which they check too.
namespace XcvrTest {

/// A page whose bytes tell their address; none has a meaning of its own by chance.
inline std::string numberedPage( size_t size ) {
   std::string page;
   for ( unsigned at = 0; at < size; ++at ) {
      page += static_cast<char>( at * 167 + 29 );
   }
   return page;
}

/// Checks accessors of a contents value of which `numbered( n )` has the first n bytes of a numbered
/// page, which begins at `pageStart`.
template <typename Contents>
struct AccessorCheck {
   std::function<Contents( size_t )> numbered;
   size_t pageStart = 0;

   /// A number, the first byte the most significant, times a factor.
   void number( size_t first, size_t width,
                std::function<uint64_t( Contents const & )> const & read,
                unsigned factor = 1 ) const {
      std::string const page = numberedPage( 256 );
      size_t const at = first - pageStart;
      uint64_t const expected =
         Xcvr::PageView( page ).unsignedBe( uint32_t( at ), uint32_t( width ) );
      EXPECT_EQ( read( numbered( 256 ) ), expected * factor ) << first;
      // One byte less, and the last byte of the field is not there.
      EXPECT_EQ( read( numbered( at + width - 1 ) ), 0u ) << first;
      EXPECT_EQ( read( Contents() ), 0u ) << first;
   }
   /// Single bytes that follow each other.
   void bytes( size_t first,
               std::vector<uint8_t ( Contents::* )() const> const & accessors ) const {
      for ( auto const read : accessors ) {
         number( first++, 1, read );
      }
   }
   void text( size_t first, size_t width, Vel::String ( Contents::*read )() const,
              std::string_view ofNoPage ) const {
      std::string const page = numberedPage( 256 );
      size_t const at = first - pageStart;
      EXPECT_EQ( ( numbered( 256 ).*read )(), page.substr( at, width ) ) << first;
      EXPECT_EQ( ( numbered( at + 1 ).*read )(), page.substr( at, 1 ) ) << first;
      EXPECT_EQ( ( numbered( at ).*read )(), "" ) << first;
      EXPECT_EQ( ( Contents().*read )(), ofNoPage ) << first;
   }
};

/// What is valid of a page is that only while none of the bytes from `first` to `last` changes.
inline void expectGuarded( Vel::String page, size_t first, size_t last,
                           std::function<bool( Vel::String const & )> const & isValid ) {
   EXPECT_TRUE( isValid( page ) );
   for ( size_t at = 0; at < page.size(); ++at ) {
      Vel::String changed = page;
      changed.byteIs( at, static_cast<uint8_t>( page[at] + 1 ) );
      EXPECT_EQ( isValid( changed ), at < first || at > last ) << at;
   }
}

} // namespace XcvrTest

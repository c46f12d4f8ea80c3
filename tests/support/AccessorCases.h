#pragma once

#include <Vel/String.h>
#include <Xcvr/XcvrMemoryMap.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Where a contents value reads, checked with addresses from the standard rather than from the field
// table, which they check too.
namespace XcvrTest {

/// A page whose bytes tell their address; none has a meaning of its own by chance.
inline std::string numberedPage( size_t size ) {
   std::string page;
   for ( unsigned at = 0; at < size; ++at ) {
      page += static_cast<char>( at * 167 + 29 );
   }
   return page;
}

/// An accessor, and the bytes that it reads, the first the most significant.
template <typename Contents>
struct NumberCase {
   std::function<uint64_t( Contents const & )> read;
   size_t at;
   size_t width = 1;
   unsigned factor = 1;
};

template <typename Contents>
struct TextCase {
   Vel::String ( Contents::*read )() const;
   size_t at, width;
};

/// `numbered( n )` has the first n bytes of a numbered page, which begins at `pageStart`.
template <typename Contents, typename Numbered>
void expectNumbers( std::span<NumberCase<Contents> const> cases, Numbered const & numbered,
                    size_t pageStart = 0 ) {
   std::string const page = numberedPage( 256 );
   for ( NumberCase<Contents> const & number : cases ) {
      size_t const at = number.at - pageStart;
      uint64_t const expected =
         Xcvr::PageView( page ).unsignedBe( uint32_t( at ), uint32_t( number.width ) );
      EXPECT_EQ( number.read( numbered( 256 ) ), expected * number.factor ) << number.at;
      // One byte less, and the last byte of the field is not there.
      EXPECT_EQ( number.read( numbered( at + number.width - 1 ) ), 0u ) << number.at;
      EXPECT_EQ( number.read( Contents() ), 0u ) << number.at;
   }
}

template <typename Contents, typename Numbered>
void expectTexts( std::span<TextCase<Contents> const> cases, Numbered const & numbered,
                  std::string_view ofNoPage, size_t pageStart = 0 ) {
   std::string const page = numberedPage( 256 );
   for ( TextCase<Contents> const & text : cases ) {
      SCOPED_TRACE( text.at );
      size_t const at = text.at - pageStart;
      EXPECT_EQ( ( numbered( 256 ).*text.read )(), page.substr( at, text.width ) );
      EXPECT_EQ( ( numbered( at + 1 ).*text.read )(), page.substr( at, 1 ) );
      EXPECT_EQ( ( numbered( at ).*text.read )(), "" );
      EXPECT_EQ( ( Contents().*text.read )(), ofNoPage );
   }
}

/// The rows of the field table that mean something in a module.
template <typename Contents>
std::vector<std::string_view> fieldsInUse( Contents const & contents,
                                           std::span<Xcvr::MemoryField const> fields ) {
   std::vector<std::string_view> names;
   for ( Xcvr::MemoryField const & field : fields ) {
      if ( contents.fieldInUse( field ) ) {
         names.push_back( field.name );
      }
   }
   return names;
}

} // namespace XcvrTest

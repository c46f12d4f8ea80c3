#pragma once

#include <Xcvr/XcvrMemoryMap.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <map>
#include <set>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>

namespace XcvrTest {

[[noreturn]] inline void refuse( std::string_view name, char const * why ) {
   throw std::invalid_argument( std::string( name ) + ": " + why );
}

/// What is stored for a value, in as many bits; one that does not fit is refused.
inline uint64_t codeOf( std::string_view name, double value, double scale, unsigned bits,
                        bool isSigned ) {
   double const codes = std::ldexp( 1, static_cast<int>( bits ) );
   double const code = std::round( value / scale );
   if ( code < ( isSigned ? -codes / 2 : 0 ) || code >= ( isSigned ? codes / 2 : codes ) ) {
      refuse( name, "value out of range" );
   }
   return static_cast<uint64_t>( static_cast<int64_t>( code ) );
}

/// What a register may hold: a whole number, or one that has a name.
template <typename Number>
concept Code = std::is_integral_v<Number> || std::is_enum_v<Number>;

/// A stored checksum: the sum of the bytes of its page from the first one up to it.
struct PageSum {
   std::string_view page;
   size_t first;
   std::string_view field;
};

/// Builds the memory of a module of one family from fields and bits named as in its field table; a name
/// that it lacks throws. Pages are whole and of zeros, but for blank texts; their checksums come out
/// right unless one is broken on purpose.
template <typename Builder>
class ImageBuilder {
 public:
   /// A number in the field's unit; further fields and their numbers may follow.
   template <typename... Further>
   Builder & value( std::string_view name, double number, Further const &... further ) {
      using enum Xcvr::MemoryKind;
      Xcvr::MemoryField const & field = fieldNamed( name );
      raw( name, field.kind == f32be ? std::bit_cast<uint32_t>( static_cast<float>( number ) )
                                     : codeOf( name, number, field.scale, field.width * 8u,
                                               field.kind == s8 || field.kind == s16be ) );
      if constexpr ( sizeof...( further ) > 0 ) {
         value( further... );
      }
      return builder();
   }
   /// A number as stored; likewise.
   template <Code Number, typename... Further>
   Builder & raw( std::string_view name, Number number, Further const &... further ) {
      Xcvr::MemoryField const & field = fieldNamed( name );
      auto rest = static_cast<uint64_t>( number );
      for ( size_t at = field.end(); at-- > field.at; rest >>= 8 ) {
         byte( field.page, at, static_cast<uint8_t>( rest ) );
      }
      if constexpr ( sizeof...( further ) > 0 ) {
         raw( further... );
      }
      return builder();
   }
   Builder & text( std::string_view name, std::string_view text ) {
      Xcvr::MemoryField const & field = fieldNamed( name );
      if ( text.size() > field.width ) {
         refuse( name, "text too long" );
      }
      std::string padded( text );
      padded.resize( field.width, ' ' );
      pages_.at( field.page ).replace( field.at, field.width, padded );
      return builder();
   }
   /// What the tests of slots know a module by.
   Builder & vendor( std::string_view name = "Vendor", std::string_view partNumber = "PN-1" ) {
      return text( "vendorName", name ).text( "vendorPn", partNumber ).text( "vendorSn", "SN-1" );
   }
   Builder & bit( std::string_view name, std::string_view bit ) {
      Xcvr::MemoryField const & field = fieldNamed( name );
      Xcvr::MemoryBitPlace const place = Xcvr::findMemoryBit( field, bit );
      if ( place.mask == 0 ) {
         refuse( bit, "no such bit" );
      }
      auto const before = static_cast<uint8_t>( pages_.at( field.page )[place.at] );
      return byte( field.page, place.at, before | place.mask );
   }
   /// One byte, wherever it lies.
   Builder & byte( std::string_view page, size_t at, unsigned value ) {
      pages_.at( page )[at] = static_cast<char>( value );
      return builder();
   }
   /// Stores a checksum that is one off; the field is one of the stored checksums.
   Builder & checksumBroken( std::string_view field ) {
      brokenChecksum_ = fieldNamed( field ).name;
      return builder();
   }
   /// The page of that label is not there, or there again.
   Builder & missing( std::string_view page ) {
      missing_.emplace( page );
      return builder();
   }
   Builder & present( std::string_view page ) {
      missing_.erase( std::string( page ) );
      return builder();
   }
   /// All bytes of a page.
   Builder & pageIs( std::string_view label, std::string_view bytes ) {
      pages_.at( label ) = bytes;
      return builder();
   }

   [[nodiscard]] std::span<std::string_view const> pageLabels() const { return labels_; }
   /// By the label of the page: "lower", "00h", …; empty for one that is missing.
   [[nodiscard]] std::string page( std::string_view label ) const {
      if ( missing_.contains( std::string( label ) ) ) {
         return {};
      }
      std::string page = pages_.at( label );
      for ( PageSum const & checksum : sums_ ) {
         if ( checksum.page == label ) {
            size_t const at = fieldNamed( checksum.field ).at;
            unsigned sum = checksum.field == brokenChecksum_ ? 1 : 0;
            for ( size_t i = checksum.first; i < at; ++i ) {
               sum += static_cast<uint8_t>( page[i] );
            }
            page[at] = static_cast<char>( sum );
         }
      }
      return page;
   }

 protected:
   ImageBuilder( std::span<Xcvr::MemoryField const> fields, std::span<PageSum const> sums,
                 std::span<std::string_view const> labels, size_t pageSize )
      : fields_( fields ), sums_( sums ), labels_( labels ) {
      for ( std::string_view label : labels ) {
         pages_[label] = std::string( pageSize, '\0' );
      }
      for ( Xcvr::MemoryField const & field : fields ) {
         if ( field.kind == Xcvr::MemoryKind::text ) {
            text( field.name, "" );
         }
      }
   }

 private:
   [[nodiscard]] Builder & builder() { return static_cast<Builder &>( *this ); }
   [[nodiscard]] Xcvr::MemoryField const & fieldNamed( std::string_view name ) const {
      size_t const index = Xcvr::memoryFieldIndex( fields_, name );
      if ( index == fields_.size() ) {
         refuse( name, "no such field" );
      }
      return fields_[index];
   }

   std::span<Xcvr::MemoryField const> fields_;
   std::span<PageSum const> sums_;
   std::span<std::string_view const> labels_;
   std::map<std::string_view, std::string> pages_;
   std::set<std::string> missing_;
   std::string brokenChecksum_;
};

} // namespace XcvrTest

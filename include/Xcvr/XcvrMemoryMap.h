#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace Xcvr {

/// How the bytes of a field are read. Multi-byte numbers are big-endian.
enum class MemoryKind : uint8_t {
   u8,
   s8,
   u16be,
   s16be,
   f32be, // IEEE 754 single
   text,  // characters, padded with blanks
   bits,  // an unsigned number of up to eight bytes whose single bits have names
   bytes, // a number or code without a unit, read as bytes
};

/// A named bit; bit 0 is the least significant bit of the last byte of its field.
struct MemoryBit {
   uint8_t bit;
   std::string_view name;
};

/// One field of a module's memory: a row of a module family's field table.
struct MemoryField {
   std::string_view name; // that of the accessor
   std::string_view page; // label of the page's section in a module image: "a0h", "lower", "11h"
   uint16_t at;           // address of the first byte on the page
   uint16_t width;        // in bytes
   MemoryKind kind;
   std::string_view unit = {}; // of number × scale; empty for codes, counts and texts
   double scale = 1;
   std::span<MemoryBit const> bits = {}; // highest bit first
   bool shared = false;                  // lies on bytes of other rows, on purpose

   [[nodiscard]] constexpr uint32_t end() const { return uint32_t{ at } + width; }
};

/// What another field must say for the rows of a run of bytes to hold: a bit of it is set or, in a
/// condition without a bit, it has a value, or one of a run of values. Otherwise the bytes mean
/// nothing or are another use of the memory. All conditions that cover a row must be met.
struct MemoryCondition {
   std::string_view page;
   uint16_t first;
   uint16_t last;
   std::string_view field;
   std::string_view bit;
   uint64_t value = 0;        // without a bit
   bool negated = false;      // the rows hold where the field says otherwise
   std::string_view row = {}; // only the row of this name, of several that share the run
   uint64_t lastValue = 0;    // of the run of values; one below `value` for that value alone

   [[nodiscard]] constexpr bool covers( MemoryField const & other ) const {
      return other.page == page && other.at >= first && other.at <= last &&
             ( row.empty() || row == other.name );
   }
};

/// Where one named bit lies.
struct MemoryBitPlace {
   uint16_t at;
   uint8_t mask;
};

/// A view of the bytes of one page, index = byte address. The only door to the bytes: what does not
/// lie wholly on the page reads as 0, and of a text there is what lies on it.
class PageView {
 public:
   constexpr PageView( std::string_view bytes ) : bytes_( bytes ) {}

   [[nodiscard]] constexpr bool empty() const { return bytes_.empty(); }
   [[nodiscard]] constexpr size_t size() const { return bytes_.size(); }
   [[nodiscard]] constexpr bool has( uint32_t at, uint32_t count ) const {
      return uint64_t{ at } + count <= bytes_.size();
   }
   /// The page without what lies behind its first bytes.
   [[nodiscard]] constexpr PageView first( size_t count ) const {
      return bytes_.substr( 0, count );
   }

   [[nodiscard]] constexpr uint8_t u8( uint32_t at ) const { return has( at, 1 ) ? byte( at ) : 0; }
   [[nodiscard]] constexpr int8_t s8( uint32_t at ) const {
      return static_cast<int8_t>( u8( at ) );
   }
   [[nodiscard]] constexpr uint16_t u16be( uint32_t at ) const {
      return has( at, 2 ) ? static_cast<uint16_t>( byte( at ) << 8 | byte( at + 1 ) ) : 0;
   }
   [[nodiscard]] constexpr int16_t s16be( uint32_t at ) const {
      return static_cast<int16_t>( u16be( at ) );
   }
   /// An unsigned number of up to eight bytes.
   [[nodiscard]] constexpr uint64_t unsignedBe( uint32_t at, uint32_t count ) const {
      uint64_t number = 0;
      for ( uint32_t i = 0; i < count && has( at, count ); ++i ) {
         number = number << 8 | byte( at + i );
      }
      return number;
   }
   [[nodiscard]] constexpr float f32be( uint32_t at ) const {
      return std::bit_cast<float>( static_cast<uint32_t>( unsignedBe( at, 4 ) ) );
   }
   [[nodiscard]] constexpr std::string_view text( uint32_t at, uint32_t count ) const {
      // A field that lies on the page wholly keeps its constant width, which copies faster.
      return has( at, count )     ? std::string_view( bytes_.data() + at, count )
             : at < bytes_.size() ? bytes_.substr( at )
                                  : std::string_view();
   }
   [[nodiscard]] constexpr bool bit( MemoryBitPlace place ) const {
      return ( u8( place.at ) & place.mask ) != 0;
   }

   /// The number in a field, in its unit; 0 for a text and for more than eight bytes.
   [[nodiscard]] constexpr double value( MemoryField const & field ) const {
      return number( field ) * field.scale;
   }

 private:
   [[nodiscard]] constexpr uint8_t byte( uint32_t at ) const {
      return static_cast<uint8_t>( bytes_[at] );
   }
   [[nodiscard]] constexpr double number( MemoryField const & field ) const {
      switch ( field.kind ) {
      case MemoryKind::s8:
         return s8( field.at );
      case MemoryKind::s16be:
         return s16be( field.at );
      case MemoryKind::f32be:
         return static_cast<double>( f32be( field.at ) );
      case MemoryKind::text:
         return 0;
      case MemoryKind::u8:
      case MemoryKind::u16be:
      case MemoryKind::bits:
      case MemoryKind::bytes:
         break;
      }
      return field.width > 8 ? 0 : static_cast<double>( unsignedBe( field.at, field.width ) );
   }

   std::string_view bytes_;
};

/// The index of the row of that name; the number of rows when there is none. (Not a pointer: with
/// some sanitizers compilers cannot tell a null one from others while they compile.)
[[nodiscard]] constexpr size_t memoryFieldIndex( std::span<MemoryField const> fields,
                                                 std::string_view name ) {
   size_t index = 0;
   while ( index < fields.size() && fields[index].name != name ) {
      ++index;
   }
   return index;
}

/// Where the bit of that name lies in its field's memory; a place of mask 0, which no page has set,
/// when the field has no such bit.
[[nodiscard]] constexpr MemoryBitPlace findMemoryBit( MemoryField const & field,
                                                      std::string_view name ) {
   for ( MemoryBit const & bit : field.bits ) {
      if ( bit.name == name ) {
         return { static_cast<uint16_t>( field.end() - 1 - bit.bit / 8u ),
                  static_cast<uint8_t>( 1 << bit.bit % 8 ) };
      }
   }
   return {};
}

// What a family's table is asked while compiling; a name that the table lacks does not compile.

/// The row of that name.
[[nodiscard]] consteval MemoryField const & memoryField( std::span<MemoryField const> fields,
                                                         std::string_view name ) {
   size_t const index = memoryFieldIndex( fields, name );
   return index < fields.size() ? fields[index] : throw "no such field";
}

/// The place of the bit of that name.
[[nodiscard]] consteval MemoryBitPlace memoryBit( MemoryField const & field,
                                                  std::string_view name ) {
   MemoryBitPlace const place = findMemoryBit( field, name );
   return place.mask ? place : throw "no such bit";
}

/// The mask of the bit of that name in the number in its field, the first byte the most significant.
[[nodiscard]] consteval uint32_t memoryBitMask( MemoryField const & field, std::string_view name ) {
   MemoryBitPlace const place = memoryBit( field, name );
   return uint32_t{ place.mask } << ( field.end() - 1 - place.at ) * 8;
}

/// Whether a condition on a field of this page is met.
[[nodiscard]] constexpr bool memoryConditionMet( MemoryCondition const & condition,
                                                 MemoryField const & field, PageView page ) {
   if ( !condition.bit.empty() ) {
      return page.bit( findMemoryBit( field, condition.bit ) ) != condition.negated;
   }
   uint64_t const number = page.unsignedBe( field.at, field.width );
   return ( number == condition.value ||
            ( number > condition.value && number <= condition.lastValue ) ) != condition.negated;
}

/// Whether every condition that covers a row is met; `pageOf` gives the page that holds a field.
template <typename PageOf>
[[nodiscard]] bool memoryFieldInUse( MemoryField const & field, std::span<MemoryField const> fields,
                                     std::span<MemoryCondition const> conditions,
                                     PageOf const & pageOf ) {
   for ( MemoryCondition const & condition : conditions ) {
      if ( !condition.covers( field ) ) {
         continue; // nearly all of them, so the field asked is looked up behind this
      }
      MemoryField const & asked = fields[memoryFieldIndex( fields, condition.field )];
      if ( !memoryConditionMet( condition, asked, pageOf( asked ) ) ) {
         return false;
      }
   }
   return true;
}

} // namespace Xcvr

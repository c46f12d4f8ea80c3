#pragma once

#include <Xcvr/XcvrMemoryMap.h>

#include <algorithm>
#include <span>
#include <string_view>

// What a field table must keep to. Each family states it of its own table in a static_assert; a
// table that breaks a rule does not compile.
namespace Xcvr {

constexpr bool widthFitsKind( MemoryField const & field ) {
   switch ( field.kind ) {
   case MemoryKind::u8:
   case MemoryKind::s8:
      return field.width == 1;
   case MemoryKind::u16be:
   case MemoryKind::s16be:
      return field.width == 2;
   case MemoryKind::f32be:
      return field.width == 4;
   case MemoryKind::bits:
      return field.width >= 1 && field.width <= 8 && !field.bits.empty();
   case MemoryKind::text:
   case MemoryKind::bytes:
      break;
   }
   return field.width >= 1;
}

constexpr bool bitsDescendWithin( MemoryField const & field ) {
   unsigned limit = field.width * 8u;
   for ( MemoryBit const & bit : field.bits ) {
      if ( bit.bit >= limit ) {
         return false;
      }
      limit = bit.bit;
   }
   return field.bits.empty() || field.kind == MemoryKind::bits;
}

constexpr bool overlap( MemoryField const & a, MemoryField const & b ) {
   return a.page == b.page && a.at < b.end() && b.at < a.end();
}

/// Whether a row lies on bytes of another one. Compilers limit how many steps they take while they
/// compile: so only rows of the same page, which stand together, are asked.
constexpr bool sharesBytes( MemoryField const * rows, size_t count, size_t i ) {
   for ( size_t j = i; j-- > 0 && rows[j].page == rows[i].page; ) {
      if ( overlap( rows[j], rows[i] ) ) {
         return true;
      }
   }
   return i + 1 < count && overlap( rows[i], rows[i + 1] );
}

/// Whether an earlier row has the name of this one.
constexpr bool nameIsTaken( MemoryField const * rows, size_t i ) {
   std::string_view const name = rows[i].name;
   for ( size_t j = 0; j < i; ++j ) {
      if ( rows[j].name.size() == name.size() && rows[j].name == name ) {
         return true;
      }
   }
   return false;
}

/// What is wrong with the table; empty when nothing is.
constexpr std::string_view memoryMapFault( std::span<MemoryField const> fields,
                                           uint32_t pageSize ) {
   MemoryField const * rows = fields.data();
   size_t const count = fields.size();
   for ( size_t i = 0; i < count; ++i ) {
      MemoryField const & field = rows[i];
      if ( !widthFitsKind( field ) ) {
         return "the width of a row does not fit its kind";
      }
      if ( field.end() > pageSize ) {
         return "a row runs off its page";
      }
      if ( !bitsDescendWithin( field ) ) {
         return "the bits of a row are out of order or outside it";
      }
      if ( i > 0 && rows[i - 1].page == field.page && rows[i - 1].at > field.at ) {
         return "rows are out of order";
      }
      if ( nameIsTaken( rows, i ) ) {
         return "two rows have one name";
      }
      for ( size_t j = i + 1; j < count && overlap( field, rows[j] ); ++j ) {
         if ( !field.shared && !rows[j].shared ) {
            return "rows overlap without being marked as shared";
         }
      }
      if ( field.shared && !sharesBytes( rows, count, i ) ) {
         return "a row marked as shared shares nothing";
      }
   }
   return {};
}

/// What is wrong with the conditions of a table; empty when nothing is.
constexpr std::string_view memoryConditionsFault( std::span<MemoryCondition const> conditions,
                                                  std::span<MemoryField const> fields ) {
   for ( MemoryCondition const & condition : conditions ) {
      size_t const index = memoryFieldIndex( fields, condition.field );
      if ( index == fields.size() ||
           ( !condition.bit.empty() && findMemoryBit( fields[index], condition.bit ).mask == 0 ) ) {
         return "a condition names no bit of the table";
      }
      if ( std::none_of( fields.begin(), fields.end(),
                         [&]( MemoryField const & row ) { return condition.covers( row ); } ) ) {
         return "a condition covers no row";
      }
   }
   return {};
}

} // namespace Xcvr

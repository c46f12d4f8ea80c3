#include <Xcvr/HalCfp2MsaMis.h>

#include <algorithm>
#include <array>
#include <iterator>

namespace Xcvr {

namespace {

using namespace CfpTable;

constexpr bool liesInTable( CfpRegister const & row ) {
   uint16_t const first = firstAddresses[static_cast<size_t>( row.table )];
   uint32_t const registerBits = cfpRegisterWidth( row.table );
   uint32_t const count = row.lanes * ( ( row.field.width + registerBits - 1 ) / registerBits );
   return row.field.address >= first &&
          row.field.address + count <= first + uint32_t{ tableRegisters };
}

constexpr bool widthFitsKind( CfpRegister const & row ) {
   uint32_t const bits = row.field.width + uint32_t{ row.field.offset };
   switch ( row.kind ) {
   case byte:
      return bits <= 8 || row.name == "networkLaneBitRateMax";
   case word:
   case signedWord:
      return bits <= 16 && ( cfpRegisterWidth( row.table ) == 16 || row.field.width == 16 );
   case text:
   case bytes:
      break;
   }
   return bits % 8 == 0 && cfpRegisterWidth( row.table ) == 8;
}

/// What is wrong with the register table; empty when nothing is.
constexpr std::string_view registerTableFault() {
   for ( size_t i = 0; i < std::size( registers ); ++i ) {
      CfpRegister const & row = registers[i];
      if ( !liesInTable( row ) ) {
         return "a row runs off its table";
      }
      if ( !widthFitsKind( row ) ) {
         return "the width of a row does not fit its kind";
      }
      if ( i > 0 && ( registers[i - 1].table == row.table
                         ? registers[i - 1].field.address > row.field.address
                         : registers[i - 1].table > row.table ) ) {
         return "rows are out of order";
      }
      unsigned modules = row.modules;
      for ( size_t j = 0; j < i; ++j ) {
         if ( registers[j].name == row.name ) {
            if ( registers[j].modules & modules ) {
               return "two rows of one name are of the same module";
            }
            modules |= registers[j].modules;
         }
      }
   }
   return {};
}
static_assert( registerTableFault().empty() );

} // namespace

std::span<CfpRegister const> cfpRegisters() {
   return registers;
}

uint16_t cfpFirstAddress( CfpMsaMisTableId table ) {
   return table < maxCfpTables ? firstAddresses[static_cast<size_t>( table )] : uint16_t( 0 );
}

namespace {

using Label = std::array<char, 5>; // without a NUL

/// Of the first addresses, as four hexadecimal digits.
constexpr auto labels = [] {
   std::array<Label, std::size( firstAddresses )> result{};
   for ( size_t i = 0; i < std::size( result ); ++i ) {
      for ( size_t digit = 0; digit < 4; ++digit ) {
         result[i][digit] = "0123456789ABCDEF"[firstAddresses[i] >> ( 12 - 4 * digit ) & 15];
      }
      result[i][4] = 'h';
   }
   return result;
}();

} // namespace

std::string_view cfpTableLabel( CfpMsaMisTableId table ) {
   if ( table >= maxCfpTables ) {
      return {};
   }
   Label const & label = labels[static_cast<size_t>( table )];
   return { label.data(), label.size() };
}

CfpMsaMisTableId cfpTableAt( uint16_t firstAddress ) {
   auto const found = std::ranges::find( firstAddresses, firstAddress );
   return found != std::end( firstAddresses )
             ? static_cast<CfpMsaMisTableId>( found - std::begin( firstAddresses ) )
             : tableInvalid;
}

} // namespace Xcvr

#include "tests/support/CfpImageBuilder.h"

#include "tests/support/ImageBuilder.h"

#include <algorithm>
#include <numeric>

namespace XcvrTest {
namespace {

using namespace Xcvr;

uint32_t maskOf( FieldDescriptor field ) {
   return field.width >= 32 ? ~0u : ( 1u << field.width ) - 1;
}

} // namespace

CfpImageBuilder::CfpImageBuilder( CfpMsaMisIdentifier identifier )
   : module_( cfpModulesOf( identifier ) ) {
   for ( CfpMsaMisTableId id : { table8000, table8080, table8100, table8180, table8420 } ) {
      static_cast<void>( table( id ) );
   }
   for ( CfpRegister const & row : cfpRegisters() ) {
      if ( row.kind == CfpRegisterKind::text ) {
         text( row.name, "" );
      }
   }
   raw( "identifier", static_cast<uint32_t>( identifier ) );
}

CfpRegister const & CfpImageBuilder::registerNamed( std::string_view name ) const {
   auto const found = std::ranges::find_if( cfpRegisters(), [&]( CfpRegister const & row ) {
      return row.name == name && ( row.modules & module_ );
   } );
   if ( found == cfpRegisters().end() ) {
      refuse( name, "no such register in this module" );
   }
   return *found;
}

CfpImageBuilder::Registers & CfpImageBuilder::table( CfpMsaMisTableId id ) {
   Registers & registers = tables_[id];
   registers.resize( CfpTable::tableRegisters );
   return registers;
}

uint16_t & CfpImageBuilder::at( CfpRegister const & row, unsigned further ) {
   return table( row.table ).at( row.field.address - cfpFirstAddress( row.table ) + further );
}

CfpImageBuilder & CfpImageBuilder::raw( std::string_view name, uint32_t number, uint8_t lane ) {
   CfpRegister const & row = registerNamed( name );
   uint32_t const mask = maskOf( row.field );
   if ( number & ~mask || lane >= row.lanes ) {
      refuse( name, "number or lane too large" );
   }
   // A wide one takes several registers, the first the highest.
   unsigned const width = cfpRegisterWidth( row.table );
   for ( unsigned i = std::max( 1u, row.field.width / width ); i-- > 0; number >>= width ) {
      uint16_t & word = at( row, lane + i );
      word = static_cast<uint16_t>( ( word & ~( mask << row.field.offset ) ) |
                                    ( number << row.field.offset & ( ( 1u << width ) - 1 ) ) );
   }
   return *this;
}

CfpImageBuilder & CfpImageBuilder::value( std::string_view name, double value, uint8_t lane ) {
   CfpRegister const & row = registerNamed( name );
   if ( row.unit.empty() ) {
      refuse( name, "no unit" );
   }
   uint64_t const code =
      codeOf( name, value, row.scale, row.field.width, row.kind == CfpRegisterKind::signedWord );
   return raw( name, static_cast<uint32_t>( code ) & maskOf( row.field ), lane );
}

CfpImageBuilder & CfpImageBuilder::text( std::string_view name, std::string_view text ) {
   CfpRegister const & row = registerNamed( name );
   unsigned const width = row.field.width / 8u;
   if ( text.size() > width ) {
      refuse( name, "text too long" );
   }
   for ( unsigned i = 0; i < width; ++i ) {
      at( row, i ) = static_cast<uint8_t>( i < text.size() ? text[i] : ' ' );
   }
   return *this;
}

CfpImageBuilder & CfpImageBuilder::bit( std::string_view name, std::string_view bit ) {
   CfpRegister const & row = registerNamed( name );
   auto const found = std::ranges::find( row.bits, bit, &MemoryBit::name );
   if ( found == row.bits.end() ) {
      refuse( bit, "no such bit" );
   }
   unsigned const width = cfpRegisterWidth( row.table );
   unsigned const lowest = row.field.width > width ? row.field.width / width - 1u : 0; // the last
   uint16_t & word = at( row, lowest - found->bit / width );
   word = static_cast<uint16_t>( word | 1u << found->bit % width );
   return *this;
}

CfpImageBuilder & CfpImageBuilder::at( CfpMsaMisTableId id, uint16_t address, uint16_t number ) {
   table( id ).at( static_cast<size_t>( address ) - cfpFirstAddress( id ) ) = number;
   return *this;
}

CfpImageBuilder::Registers CfpImageBuilder::summedUp( CfpMsaMisTableId id ) const {
   auto const found = tables_.find( id );
   if ( found == tables_.end() ) {
      return {};
   }
   Registers registers = found->second;
   auto const sum = []( auto first, auto last ) {
      return static_cast<uint16_t>( std::accumulate( first, last, 0 ) & 0xff );
   };
   if ( id == table8180 ) { // holds the checksum of the table in front of it as well
      auto const previous = tables_.find( table8100 );
      if ( previous != tables_.end() ) {
         registers[0] = sum( previous->second.begin(), previous->second.end() );
      }
      registers.back() = sum( registers.begin() + 1, registers.end() - 1 );
   } else if ( id == table8000 || id == table8080 ) {
      registers.back() = sum( registers.begin(), registers.end() - 1 );
   }
   return registers;
}

std::string CfpImageBuilder::image( CfpMsaMisTableId id ) const {
   std::string bytes;
   for ( uint16_t word : summedUp( id ) ) {
      if ( cfpRegisterWidth( id ) == 16 ) {
         bytes += static_cast<char>( word >> 8 );
      }
      bytes += static_cast<char>( word );
   }
   return bytes;
}

Vel::String CfpImageBuilder::bytes( CfpMsaMisTableId id ) const {
   Registers const words = summedUp( id );
   return cfpRegisterWidth( id ) == 16
             ? Vel::String( reinterpret_cast<char const *>( words.data() ), 2 * words.size() )
             : Vel::String( std::string_view( image( id ) ) );
}

void CfpImageBuilder::writeTo( CfpMsaMisIdEepromContents & contents ) const {
   for ( auto const & [id, registers] : tables_ ) {
      contents.memoryIs( id, cfpFirstAddress( id ), cfpRegisterWidth( id ) )
         ->contentsIs( bytes( id ) );
   }
}

Vel::Ptr<CfpMsaMisIdEepromContents> CfpImageBuilder::contents() const {
   Vel::Ptr<CfpMsaMisIdEepromContents> const contents = cfpMsaMisIdEepromContentsFactory( "cfp" );
   writeTo( *contents );
   return contents;
}

} // namespace XcvrTest

// The register tables of CFP2, CFPx and CFP2-DCO modules.
#include "core/Checksum.h"
#include "core/DomCodes.h"

#include <Vel/DefineEntity.h>
#include <Vel/Trace.h>
#include <Xcvr/XcvrCfp2Contents.h>

#include <algorithm>
#include <iterator>

namespace Xcvr {

VEL_ENTITY_DEFINE( CfpMsaMisMemoryTable )
VEL_ENTITY_DEFINE( CfpMsaMisIdEepromContents, cfpMsaMisIdEepromContentsFactory )
VEL_ENTITY_DEFINE( Cfp2DcoEepromContents )

namespace {

using CfpTable::access;
using CfpTable::Place;

Vel::TraceHandle trace( "XcvrCfp2" );

} // namespace

CfpMsaMisMemoryTable::CfpMsaMisMemoryTable( CfpMsaMisTableId tableId, uint16_t firstAddress,
                                            uint8_t registerWidth )
   : Vel::Entity( stringValue( tableId ) ), tableId_( tableId ), firstAddress_( firstAddress ),
     registerWidth_( registerWidth ) {}

Vel::Ptr<CfpMsaMisMemoryTable> cfpMsaMisMemoryTableFactory( CfpMsaMisTableId tableId,
                                                            uint16_t firstAddress,
                                                            uint8_t registerWidth ) {
   return Vel::Ptr<CfpMsaMisMemoryTable>(
      new CfpMsaMisMemoryTable( tableId, firstAddress, registerWidth ) );
}

Vel::Ptr<CfpMsaMisMemoryTable> CfpMsaMisIdEepromContents::memoryIs( CfpMsaMisTableId tableId,
                                                                    uint16_t firstAddress,
                                                                    uint8_t registerWidth ) {
   if ( tableId >= maxCfpTables ) {
      VEL_TRACE( trace, 8, "no such table" );
      return nullptr;
   }
   if ( CfpMsaMisMemoryTable const * old = table( tableId ) ) {
      VEL_TRACE( trace, 8, "Reinstantiating the entity with fullName " + old->fullName() );
   }
   Vel::Ptr<CfpMsaMisMemoryTable> const made =
      cfpMsaMisMemoryTableFactory( tableId, firstAddress, registerWidth );
   velInstanceIs( memory_, tableId, made, "memory",
                  KeyedHandlers<NotifieeConst, CfpMsaMisTableId>{
                     memoryAttr, &NotifieeConst::onMemory, &NotifieeConst::onMemory } );
   return made;
}

Vel::Ptr<CfpMsaMisMemoryTable> CfpMsaMisIdEepromContents::memoryIs( CfpMsaMisTableId tableId ) {
   Vel::Ptr<CfpMsaMisMemoryTable> const there = memory( tableId );
   return there ? there
                : memoryIs( tableId, cfpFirstAddress( tableId ), cfpRegisterWidth( tableId ) );
}

bool CfpMsaMisIdEepromContents::holds( Access const & access, uint8_t lane ) const {
   Place const place = access.placeIn( cfpModulesOf( identifier() ) );
   CfpMsaMisMemoryTable const * found = table( place.table );
   FieldDescriptor field = place.field;
   field.address = static_cast<uint16_t>( field.address + lane );
   return place.modules != noCfpModules && found && found->holds( field, place.kind );
}

std::string_view CfpMsaMisIdEepromContents::view( Access const & access ) const {
   Place const & place = access.places[0];
   CfpMsaMisMemoryTable const * found = table( place.table );
   return found ? found->text( place.field ) : std::string_view();
}

Vel::String CfpMsaMisIdEepromContents::vendorRev() const {
   VEL_TRACE_SCOPE( trace );
   char const revision[] = { static_cast<char>( u8( access( "vendorRevFirst" ) ) ),
                             static_cast<char>( u8( access( "vendorRevSecond" ) ) ) };
   if ( revision[0] == '\0' ) {
      // A module that says nothing is of the first revision.
      return revision[1] == '\0' ? "01" : "";
   }
   return { revision, revision[1] == '\0' ? 1u : 2u };
}

namespace {

float tenths( uint16_t raw ) {
   return static_cast<float>( static_cast<int16_t>( raw ) ) / 10;
}

} // namespace

float CfpMsaMisIdEepromContents::txSkew( uint8_t hostChannel ) const {
   VEL_TRACE_SCOPE( trace );
   constexpr Access registers[] = { access( "txSkew0" ), access( "txSkew1" ), access( "txSkew2" ),
                                    access( "txSkew3" ) };
   return hostChannel < std::size( registers ) ? tenths( u16( registers[hostChannel] ) ) : 0;
}

float CfpMsaMisIdEepromContents::rxSkew( uint8_t hostChannel ) const {
   VEL_TRACE_SCOPE( trace );
   switch ( hostChannel ) {
   case 1:
      return tenths( u16( access( "rxSkew1" ) ) );
   case 3:
      return tenths( u16( access( "rxSkew3" ) ) );
   default:
      VEL_TRACE( trace, 8, "no such channel" );
      return 0;
   }
}

bool CfpMsaMisIdEepromContents::isLinearOf( std::string_view serialNumberStart,
                                            std::string_view maker ) const {
   if ( txRfDriverType() != 1 ) {
      return false;
   }
   if ( view( access( "vendorSn" ) ).starts_with( serialNumberStart ) ) {
      return true;
   }
   // The name as 7-bit characters in lower case, wherever the maker stands in it.
   std::string_view const name = view( access( "vendorName" ) );
   auto const same = []( char inName, char wanted ) {
      int const c = inName & 0x7f;
      return ( c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c ) == wanted;
   };
   return std::search( name.begin(), name.end(), maker.begin(), maker.end(), same ) != name.end();
}

bool CfpMsaMisIdEepromContents::isOclaroLinear() const {
   VEL_TRACE_SCOPE( trace );
   return isLinearOf( "AP", "oclaro" );
}

bool CfpMsaMisIdEepromContents::isAcaciaLinear() const {
   VEL_TRACE_SCOPE( trace );
   return isLinearOf( "TC", "acacia" );
}

uint16_t CfpMsaMisIdEepromContents::rxLosStatus() const {
   VEL_TRACE_SCOPE( trace );
   // One flag of a module, but a mask of lanes of the others: intended.
   if ( isIn( cfpxAndDcoModules ) ) {
      return ( moduleGeneralStatus() & 0x20 ) != 0;
   }
   unsigned mask = 0;
   for ( uint8_t lane = 0; lane < lanes; ++lane ) {
      bool const los = u16( access( "networkLaneFaultStatus" ), lane ) & 0x10;
      mask |= unsigned{ los } << lane;
   }
   return static_cast<uint16_t>( mask );
}

uint16_t CfpMsaMisIdEepromContents::txFaultStatus() const {
   VEL_TRACE_SCOPE( trace );
   if ( isIn( cfpxAndDcoModules ) ) {
      return ( moduleGeneralStatus() & 0x2c0 ) != 0;
   }
   unsigned mask = 0;
   for ( uint8_t lane = 0; lane < lanes; ++lane ) {
      bool const fault = ( u16( access( "networkLaneFaultStatus" ), lane ) & 0xc0 ) ||
                         ( u16( access( "hostLaneFaultStatus" ), lane ) & 1 );
      mask |= unsigned{ fault } << lane;
   }
   return static_cast<uint16_t>( mask );
}

double CfpMsaMisIdEepromContents::decodePower( uint16_t raw ) {
   return DomCodes::power( raw );
}

// Checksums

namespace {

/// The registers that a stored checksum guards, both ends included.
struct ChecksumRange {
   CfpMsaMisTableId table;
   uint16_t first, last;
   Place stored;
};

// The third row differs from the others: the checksum guards the table to its last register, and lies
// in the next table. Intended; modules are made so.
constexpr ChecksumRange checksumRanges[] = {
   { table8000, 0x8000, 0x807E, access( "checksum8000" ).places[0] },
   { table8080, 0x8080, 0x80FE, access( "checksum8080" ).places[0] },
   { table8100, 0x8100, 0x817F, access( "checksum8100" ).places[0] },
   { table8180, 0x8181, 0x81FE, access( "checksum8180" ).places[0] },
};

/// Null for a table without a checksum.
ChecksumRange const * checksumRange( CfpMsaMisTableId table ) {
   auto const found = std::ranges::find( checksumRanges, table, &ChecksumRange::table );
   return found != std::end( checksumRanges ) ? found : nullptr;
}

} // namespace

uint8_t CfpMsaMisIdEepromContents::checksumCalculated( CfpMsaMisTableId tableId ) const {
   VEL_TRACE_SCOPE( trace );
   ChecksumRange const * range = checksumRange( tableId );
   CfpMsaMisMemoryTable const * summed = table( tableId );
   if ( !range || !summed ) {
      return 0;
   }
   return static_cast<uint8_t>( signedByteSum(
      PageView( summed->contents().view() )
         .text( summed->distance( range->first ), uint32_t{ range->last } - range->first + 1 ) ) );
}

uint8_t CfpMsaMisIdEepromContents::checksum( CfpMsaMisTableId tableId ) const {
   VEL_TRACE_SCOPE( trace );
   ChecksumRange const * range = checksumRange( tableId );
   return range ? getU8FromTable( range->stored.field, table( range->stored.table ) )
                : uint8_t( 0 );
}

bool CfpMsaMisIdEepromContents::checksumValid( CfpMsaMisTableId tableId ) const {
   VEL_TRACE_SCOPE( trace );
   return checksumRange( tableId ) && table( tableId ) &&
          checksumCalculated( tableId ) == checksum( tableId );
}

// The line of a CFP2-DCO

Cfp2DcoEepromContents::Cfp2DcoEepromContents( Vel::Ptr<CfpMsaMisIdEepromContents const> contents )
   : Vel::Entity( "cfp2DcoEepromContents" ), contents_( std::move( contents ) ) {}

Vel::Ptr<Cfp2DcoEepromContents>
cfp2DcoEepromContentsFactory( Vel::Ptr<CfpMsaMisIdEepromContents const> contents ) {
   return Vel::Ptr<Cfp2DcoEepromContents>( new Cfp2DcoEepromContents( std::move( contents ) ) );
}

} // namespace Xcvr

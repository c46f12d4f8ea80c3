#include <Xcvr/XcvrQsfpPlus.h>

#include "core/Checksum.h"

#include <Vel/Define.h>
#include <Vel/Trace.h>

namespace Xcvr {

VEL_VALUE_DEFINE( Sff8436IdEepromContents )

namespace {

using Sff8436Table::row;

Vel::TraceHandle trace( "XcvrQsfpPlus" );

/// The low byte of the sum of the bytes from a field up to the stored checksum.
uint8_t sum( PageView page, MemoryField const & first, MemoryField const & stored ) {
   return static_cast<uint8_t>(
      signedByteSum( page.text( first.at, stored.at - uint32_t{ first.at } ) ) );
}

} // namespace

void Sff8436IdEepromContents::traceUnreadable( MemoryField const & field ) {
   if ( trace.passes( 8 ) ) {
      // The names in the field table are literals, so this one ends in a NUL.
      trace.write( 8, __LINE__, field.name.data(), "the page does not hold the field" );
   }
}

uint64_t Sff8436IdEepromContents::compliance() const {
   VEL_TRACE_SCOPE( trace );
   constexpr MemoryField field = row( "compliance" );
   PageView const page = eepromPage00UpperData().view();
   if ( !page.has( field.at, field.width ) ) {
      traceUnreadable( field );
      return 0;
   }
   uint64_t packed = 0;
   for ( uint32_t at = field.at; at < field.end(); ++at ) {
      // Sign-extended on purpose: see the declaration.
      packed = packed << 8 | static_cast<uint64_t>( int64_t{ page.s8( at ) } );
   }
   return packed;
}

uint32_t Sff8436IdEepromContents::vendorOui() const {
   return static_cast<uint32_t>( number( row( "vendorOui" ) ) );
}

uint32_t Sff8436IdEepromContents::cableAttn() const {
   VEL_TRACE_SCOPE( trace );
   constexpr MemoryField first = row( "attenuation2p5GHz" );
   constexpr MemoryField all{ "cableAttn", first.page, first.at, 4, MemoryKind::bytes };
   return static_cast<uint32_t>( number( all ) );
}

uint32_t Sff8436IdEepromContents::options() const {
   return static_cast<uint32_t>( number( row( "options" ) ) );
}

bool Sff8436IdEepromContents::cdrTxRxControlImplemented() const {
   VEL_TRACE_SCOPE( trace );
   constexpr uint32_t both =
      mask( "options", "Tx CDR control" ) | mask( "options", "Rx CDR control" );
   return ( options() & both ) == both;
}

// Power

namespace {

/// The most that a module of a class takes, by the class, W.
constexpr double maxPowerOfClass[] = { 0, 1.5, 2.0, 2.5, 3.5, 4.0, 4.5, 5.0 };

constexpr uint8_t lastRevisionOfSff8436 = 2;

} // namespace

PowerClass Sff8436IdEepromContents::powerClass() const {
   VEL_TRACE_SCOPE( trace );
   uint8_t const revision = revisionCompliance();
   bool const hasHighClasses = revision == 0 || revision > lastRevisionOfSff8436;
   uint8_t const byte = identifierExtended();
   unsigned const low = byte >> 6, high = hasHighClasses ? byte & 3u : 0u;
   if ( eepromPage00UpperData().empty() || ( high != 0 && low != 3 ) ||
        ( hasHighClasses && ( byte & mask( "identifierExtended", "power class 8" ) ) ) ) {
      return xcvrPowerClassUnknown;
   }
   return static_cast<PowerClass>( 1 + low + high );
}

double Sff8436IdEepromContents::maxPower() const {
   VEL_TRACE_SCOPE( trace );
   constexpr MemoryField field = row( "maxPower" );
   uint8_t const own = u8( field );
   return own != 0 ? own * field.scale : maxPowerOfClass[static_cast<unsigned>( powerClass() )];
}

// The other pages

uint8_t Sff8436IdEepromContents::revisionCompliance() const {
   VEL_TRACE_SCOPE( trace );
   return sff8636Revision() != 0 ? sff8636Revision() : u8( row( "revisionCompliance" ) );
}

bool Sff8436IdEepromContents::hasPage( Sff8436PageId page ) const {
   VEL_TRACE_SCOPE( trace );
   switch ( page ) {
   case eepromPage00Lower:
   case eepromPage00Upper:
      return true;
   case eepromPage02Upper:
      return !flatMemory() && ( options() & mask( "options", "page 02h" ) );
   case eepromPage03Upper:
      return !flatMemory();
   case eepromPage20hUpper:
   case eepromPage21hUpper:
      return !flatMemory() && ( options() & mask( "options", "pages 20h and 21h" ) );
   case maxQsfpPages:
   case sff8436PageInvalid:
      break;
   }
   return false;
}

PageView Sff8436IdEepromContents::page( Sff8436PageId page ) const {
   VEL_TRACE_SCOPE( trace );
   if ( !hasPage( page ) ) {
      return std::string_view();
   }
   switch ( page ) {
   case eepromPage00Lower:
      return eepromPage00LowerData().view();
   case eepromPage00Upper:
      return eepromPage00UpperData().view();
   case eepromPage02Upper:
      return eepromPage02UpperData().view();
   case eepromPage03Upper:
      return eepromPage03UpperData().view();
   case eepromPage20hUpper:
      return eepromPage20hUpperData().view();
   case eepromPage21hUpper:
      return eepromPage21hUpperData().view();
   case maxQsfpPages:
   case sff8436PageInvalid:
      break;
   }
   return std::string_view();
}

Vel::String Sff8436IdEepromContents::userText() const {
   VEL_TRACE_SCOPE( trace );
   constexpr MemoryField field = row( "userText" );
   return fieldInUse( field ) ? eepromPage02UpperData() : Vel::String();
}

Vel::String Sff8436IdEepromContents::cleiCode() const {
   VEL_TRACE_SCOPE( trace );
   constexpr MemoryField field = row( "cleiCode" );
   return fieldInUse( field ) ? text( field ) : Vel::String();
}

// Checksums

uint8_t Sff8436IdEepromContents::baseChecksum( Sff8436PageId page ) const {
   VEL_TRACE_SCOPE( trace );
   return page == eepromPage00Upper ? u8( row( "baseChecksum" ) ) : uint8_t( 0 );
}

uint8_t Sff8436IdEepromContents::baseChecksumCalculated( Sff8436PageId page ) const {
   VEL_TRACE_SCOPE( trace );
   return page == eepromPage00Upper
             ? sum( eepromPage00UpperData().view(), row( "identifier" ), row( "baseChecksum" ) )
             : uint8_t( 0 );
}

uint8_t Sff8436IdEepromContents::extendedChecksum( Sff8436PageId page ) const {
   VEL_TRACE_SCOPE( trace );
   return page == eepromPage00Upper ? u8( row( "extendedChecksum" ) ) : uint8_t( 0 );
}

uint8_t Sff8436IdEepromContents::extendedChecksumCalculated( Sff8436PageId page ) const {
   VEL_TRACE_SCOPE( trace );
   return page == eepromPage00Upper ? sum( eepromPage00UpperData().view(),
                                           row( "complianceExtended" ), row( "extendedChecksum" ) )
                                    : uint8_t( 0 );
}

bool Sff8436IdEepromContents::checksumsValid( Sff8436PageId page ) const {
   VEL_TRACE_SCOPE( trace );
   return page != eepromPage00Upper ||
          ( eepromPage00UpperData().size() >= row( "extendedChecksum" ).end() &&
            baseChecksum( page ) == baseChecksumCalculated( page ) &&
            extendedChecksum( page ) == extendedChecksumCalculated( page ) );
}

bool Sff8436IdEepromContents::fieldInUse( MemoryField const & field ) const {
   VEL_TRACE_SCOPE( trace );
   return memoryFieldInUse( field, Sff8436Table::fields, Sff8436Table::conditions,
                            [this]( MemoryField const & asked ) { return pageOf( asked ); } );
}

} // namespace Xcvr

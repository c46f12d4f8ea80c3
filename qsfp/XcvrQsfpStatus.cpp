#include <Xcvr/XcvrQsfpStatus.h>

#include "core/AttenuationTable.h"
#include "core/DiagOverride.h"
#include "core/DomNeutral.h"

#include <Vel/Define.h>
#include <Vel/DefineEntity.h>
#include <Vel/Trace.h>

#include <algorithm>
#include <iterator>

namespace Xcvr {

VEL_ENTITY_DEFINE( QsfpDiagConfig, qsfpDiagConfigFactory )
VEL_ENTITY_DEFINE( QsfpConfig, qsfpConfigFactory )
VEL_ENTITY_DEFINE( QsfpCellConfig, qsfpCellConfigFactory )
VEL_ENTITY_DEFINE( QsfpNewStatus, qsfpNewStatusFactory )

namespace {

using Sff8436Table::bit;

Vel::TraceHandle trace( "XcvrQsfpPlus" );

} // namespace

// The contents

Sff8436IdEepromContents const & QsfpNewStatus::sff8436IdEepromContents() const {
   VEL_TRACE_SCOPE( trace );
   return contentsOf( *this );
}

void QsfpNewStatus::idEepromContentsIs( uint8_t page, Vel::String const & bytes ) {
   VEL_TRACE_SCOPE( trace );
   // In the order of Sff8436PageId.
   using Setter = void ( Sff8436IdEepromContents::* )( Vel::String const & );
   constexpr Setter setters[] = { &Sff8436IdEepromContents::eepromPage00LowerDataIs,
                                  &Sff8436IdEepromContents::eepromPage00UpperDataIs,
                                  &Sff8436IdEepromContents::eepromPage02UpperDataIs,
                                  &Sff8436IdEepromContents::eepromPage03UpperDataIs,
                                  &Sff8436IdEepromContents::eepromPage20hUpperDataIs,
                                  &Sff8436IdEepromContents::eepromPage21hUpperDataIs };
   static_assert( std::size( setters ) == static_cast<size_t>( maxQsfpPages ) );
   if ( page >= std::size( setters ) ) {
      VEL_TRACE( trace, 8, "no such page" );
      return;
   }
   Sff8436IdEepromContents contents = actualIdEepromContents();
   ( contents.*setters[page] )( bytes );
   actualIdEepromContentsIs( contents );
}

void QsfpNewStatus::updateLastValidTime( Vel::Seconds time ) {
   VEL_TRACE_SCOPE( trace );
   // Not those of an override: a diagnostic setting never destroys what was read.
   Sff8436IdEepromContents contents = actualIdEepromContents();
   contents.lastValidDataIs( time );
   actualIdEepromContentsIs( contents );
}

void QsfpNewStatus::clearIdEepromContents() {
   VEL_TRACE_SCOPE( trace );
   actualIdEepromContentsIs( Sff8436IdEepromContents() );
}

EepromDescriptor QsfpNewStatus::idEepromInfo() const {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   constexpr auto pages = static_cast<uint8_t>( maxQsfpPages );
   EepromDescriptor result( 0, pages, {} );
   for ( uint8_t page = 0; page < pages; ++page ) {
      if ( contents.hasPage( static_cast<Sff8436PageId>( page ) ) ) {
         result.eepromPagesIs( static_cast<uint8_t>( result.eepromPages() + 1 ) );
         result.pageSizeBytesIs( page, Sff8436Table::pageSize );
      }
   }
   return result;
}

// Identity

// Flattened: the five texts are copied in place.
[[gnu::flatten]] VendorInfo QsfpNewStatus::vendorInfo() const {
   VEL_TRACE_SCOPE( trace );
   return contentsOf( *this ).vendorInfo();
}

namespace {

MediaType detectedTypeOf( QsfpNewStatus const & status ) {
   Sff8436IdEepromContents const & contents = contentsOf( status );
   MediaType const detected = contents.mediaType();
   if ( detected != xcvrUnknown || !status.xgc() || !status.xgc()->ethComplianceBit7IsPsm4() ) {
      return detected;
   }
   // Other rules say unknown as well: of what is no QSFP, whose bytes mean something else.
   bool const isUndecided = contents.mediaTypeDecision().rule + 1 == sff8436MediaTypeRules().size();
   constexpr uint8_t extended = bit( "compliance", "extended compliance" ).mask;
   bool const hasBitWithoutCode =
      ( contents.complianceEth10And40G() & extended ) != 0 && contents.complianceExtended() == 0;
   return isUndecided && hasBitWithoutCode ? xcvr40GBasePsm4 : detected;
}

} // namespace

MediaType QsfpNewStatus::detectedMediaType() const {
   VEL_TRACE_SCOPE( trace );
   return detectedTypeOf( *this );
}

MediaType QsfpNewStatus::mediaType() const {
   VEL_TRACE_SCOPE( trace );
   return overrideMediaType() != xcvrUnknown ? overrideMediaType() : detectedTypeOf( *this );
}

bool QsfpNewStatus::isSupportedMediaType( MediaType type ) const {
   VEL_TRACE_SCOPE( trace );
   return type != xcvrUnknown && type != xcvr100GUnknown &&
          std::ranges::any_of( sff8436MediaTypeRules(), [type]( MediaTypeRule const & rule ) {
             return rule.mediaType == type;
          } );
}

Capabilities QsfpNewStatus::capabilities() const {
   VEL_TRACE_SCOPE( trace );
   Capabilities result;
   result.maxChannelsIs( lanes );
   return result;
}

uint8_t QsfpNewStatus::bitrate() const {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   return contents.higherBitrate()
             ? static_cast<uint8_t>( std::min( contents.bitrateExtended() * 250 / 100, 255 ) )
             : contents.bitrateNominal();
}

uint32_t QsfpNewStatus::laserWavelength() const {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   return contents.deviceTechnology() < Sff8436DeviceTechnology::copperUnequalized
             ? contents.laserWavelength()
             : 0;
}

LaserWavelengthPrecision QsfpNewStatus::laserWavelengthPrecision() const {
   VEL_TRACE_SCOPE( trace );
   return laserWavelength() == 0 ? laserWavelengthPrecisionUnknown : laserWavelengthPrecisionPm;
}

PowerClass QsfpNewStatus::powerClass() const {
   VEL_TRACE_SCOPE( trace );
   return contentsOf( *this ).powerClass();
}

Units::Decibels QsfpNewStatus::electricalPathAttenuation() const {
   VEL_TRACE_SCOPE( trace );
   MediaType const type = mediaType();
   bool const is40G = type == xcvr40GBaseCr4;
   if ( !is40G && type != xcvr100GBaseCr4 && type != xcvr100GBaseCr4S &&
        type != xcvr100GBaseCr4N ) {
      return Units::Decibels( 0.0 );
   }
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   if ( auto const known = attenuationOfModel( attnTable(), contents ) ) {
      return *known;
   }
   if ( contents.deviceTechnology() < Sff8436DeviceTechnology::copperUnequalized ) {
      return Units::Decibels( unreadable ); // these bytes are its wavelength
   }
   // At half the rate of a lane, where the signal of two levels has its highest frequency.
   uint8_t const own = is40G ? contents.attenuation5GHz() : contents.attenuation12p9GHz();
   return Units::Decibels( own != 0 ? own : unreadable );
}

} // namespace Xcvr

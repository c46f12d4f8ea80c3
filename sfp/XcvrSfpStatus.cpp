#include <Xcvr/XcvrSfpStatus.h>

#include "core/AttenuationTable.h"
#include "core/DiagOverride.h"

#include <Vel/Define.h>
#include <Vel/DefineEntity.h>
#include <Vel/Trace.h>

namespace Xcvr {

VEL_ENUM_DEFINE( Xcvr1000BaseTProgramState )
VEL_VALUE_DEFINE( SfpSlotCapabilities )
VEL_ENTITY_DEFINE( SfpDiagConfig, sfpDiagConfigFactory )
VEL_ENTITY_DEFINE( SfpConfig, sfpConfigFactory )
VEL_ENTITY_DEFINE( SfpCellConfig, sfpCellConfigFactory )
VEL_ENTITY_DEFINE( SfpNewStatus, sfpNewStatusFactory )

namespace {

Vel::TraceHandle trace( "XcvrSfpPlus" );

} // namespace

// The contents

XcvrSff8472IdEepromContents const & SfpNewStatus::sff8472IdEepromContents() const {
   VEL_TRACE_SCOPE( trace );
   return contentsOf( *this );
}

void SfpNewStatus::updateLastValidTime( Vel::Seconds time ) {
   VEL_TRACE_SCOPE( trace );
   // Not those of an override: a diagnostic setting never destroys what was read.
   XcvrSff8472IdEepromContents contents = actualIdEepromContents();
   contents.lastValidDataIs( time );
   actualIdEepromContentsIs( contents );
}

void SfpNewStatus::idEepromContentsIs( uint8_t page, Vel::String const & bytes ) {
   VEL_TRACE_SCOPE( trace );
   XcvrSff8472IdEepromContents contents = actualIdEepromContents();
   switch ( static_cast<Sff8472PageId>( page ) ) {
   case pageA0h:
      contents.bufIs( bytes );
      break;
   case pageA2h:
      contents.eepromPageA2DataIs( bytes );
      break;
   default:
      return XcvrNewStatus::idEepromContentsIs( page, bytes );
   }
   actualIdEepromContentsIs( contents );
}

void SfpNewStatus::clearIdEepromContents() {
   VEL_TRACE_SCOPE( trace );
   actualIdEepromContentsIs( XcvrSff8472IdEepromContents() );
}

EepromDescriptor SfpNewStatus::idEepromInfo() const {
   VEL_TRACE_SCOPE( trace );
   constexpr uint16_t size = Sff8472Table::pageSize;
   return { 2, 2, { { uint8_t( 0 ), size }, { uint8_t( 1 ), size } } };
}

// Identity

// Flattened: the five texts are copied in place.
[[gnu::flatten]] VendorInfo SfpNewStatus::vendorInfo() const {
   VEL_TRACE_SCOPE( trace );
   return contentsOf( *this ).vendorInfo();
}

MediaType SfpNewStatus::detectedMediaType() const {
   VEL_TRACE_SCOPE( trace );
   return contentsOf( *this ).mediaType();
}

MediaType SfpNewStatus::mediaType() const {
   VEL_TRACE_SCOPE( trace );
   return overrideMediaType() != xcvrUnknown ? overrideMediaType() : detectedMediaType();
}

Capabilities SfpNewStatus::capabilities() const {
   VEL_TRACE_SCOPE( trace );
   Capabilities result;
   result.maxChannelsIs( 1 );
   result.tunableWavelengthIs( mediaType() == xcvr10GBaseDwdmZt );
   return result;
}

uint8_t SfpNewStatus::bitrate() const {
   VEL_TRACE_SCOPE( trace );
   return contentsOf( *this ).bitrateNominal();
}

uint32_t SfpNewStatus::laserWavelength() const {
   VEL_TRACE_SCOPE( trace );
   // An active optical cable keeps its attenuation where a module has its wavelength.
   if ( mediaType() == xcvr10GBaseAr ) {
      return 850000;
   }
   XcvrSff8472IdEepromContents const & contents = contentsOf( *this );
   return contents.laserWavelengthInteger() * 1000u + contents.laserWavelengthFractional() * 10u;
}

LaserWavelengthPrecision SfpNewStatus::laserWavelengthPrecision() const {
   VEL_TRACE_SCOPE( trace );
   return mediaType() == xcvr10GBaseAr ? laserWavelengthPrecisionNm
                                       : contentsOf( *this ).laserWavelengthPrecision();
}

Units::Decibels SfpNewStatus::electricalPathAttenuation() const {
   VEL_TRACE_SCOPE( trace );
   if ( mediaType() != xcvr10GBaseCr ) {
      return Units::Decibels( 0.0 );
   }
   XcvrSff8472IdEepromContents const & contents = contentsOf( *this );
   if ( auto const known = attenuationOfModel( attnTable(), contents ) ) {
      return *known;
   }
   // Long cables are of thicker wire.
   int const metres = contents.lengthCopper();
   return Units::Decibels( metres * ( metres > 4 ? 1.7 : 3.2 ) );
}

bool SfpNewStatus::is1GConfigurable() const {
   VEL_TRACE_SCOPE( trace );
   return contentsOf( *this ).is1GConfigurable();
}

bool SfpNewStatus::assertRateSelect0() const {
   VEL_TRACE_SCOPE( trace );
   ElectricalInterface const interface = electricalInterface();
   return interface == xcvr10GLimiting || interface == xcvr10GLinear;
}

bool SfpNewStatus::assertRateSelect1() const {
   VEL_TRACE_SCOPE( trace );
   return assertRateSelect0();
}

} // namespace Xcvr

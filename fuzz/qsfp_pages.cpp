// The memory of a QSFP as it comes from a module, which may say anything: an input is the lower page and
// the upper pages 00h, 02h, 03h, 20h and 21h, 128 bytes each, as far as it reaches. Whatever they hold,
// every operation answers within its bounds.
#include "fuzz/Require.h"

#include <Vel/AttrLog.h>
#include <Xcvr/XcvrQsfpPlus.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

namespace {

using namespace Xcvr;
using Contents = Sff8436IdEepromContents;

constexpr size_t pageSize = Sff8436Table::pageSize;
constexpr std::string_view labels[] = { "lower", "00h", "02h", "03h", "20h", "21h" };
using Pages = std::array<std::string_view, std::size( labels )>;

void checkTexts( Contents const & contents, std::string_view page ) {
   require( contents.vendorName().size() == widthOnPage( page, 20, 16 ) );
   require( contents.vendorPn().size() == widthOnPage( page, 40, 16 ) );
   require( contents.vendorRev().size() == widthOnPage( page, 56, 2 ) );
   require( contents.vendorSn().size() == widthOnPage( page, 68, 16 ) );
   require( contents.dateCode().size() == widthOnPage( page, 84, 8 ) );
   require( contents.cleiCode().size() <= 10 && contents.userText().size() <= pageSize );
}

void checkNumbers( Contents const & contents ) {
   require( contents.vendorOui() < 1u << 24 && contents.options() < 1u << 24 );
   require( contents.compliance() >> 56 == contents.complianceEth10And40G() ||
            contents.eepromPage00UpperData().size() < 11 || contents.compliance() >> 56 == 0xff );
   require( contents.maxPower() >= 0 && contents.maxPower() <= 25.5 );
   require( static_cast<unsigned>( contents.powerClass() ) <= 7 );
   require( !stringValue( contents.deviceTechnology() ).empty() );
}

void checkMediaType( Contents const & contents ) {
   requireMediaTypeOfARule( contents, sff8436MediaTypeRules() );
   require( contents.eepromPage00UpperData().empty() ==
            ( contents.mediaTypeDecision().rule == 0 ) );
}

void checkChecksums( Contents contents ) {
   Vel::String page = contents.eepromPage00UpperData();
   page.byteIs( 63, contents.baseChecksumCalculated( eepromPage00Upper ) );
   page.byteIs( 95, contents.extendedChecksumCalculated( eepromPage00Upper ) );
   contents.eepromPage00UpperDataIs( page );
   require( contents.checksumsValid( eepromPage00Upper ) == ( page.size() > 95 ) );
}

void checkFields( Contents const & contents, Pages const & pages ) {
   for ( MemoryField const & field : sff8436Fields() ) {
      size_t const label = static_cast<size_t>( std::ranges::find( labels, field.page ) - labels );
      PageView const page = pages[label];
      require( page.text( field.at, field.width ).size() ==
               widthOnPage( pages[label], field.at, field.width ) );
      require( page.has( field.at, field.width ) || page.value( field ) == 0 );
      static_cast<void>( contents.fieldInUse( field ) );
   }
}

/// A power is a number of dBm or minus infinity.
void requirePower( double dBm ) {
   require( dBm <= 8.2 );
}

void checkMonitors( QsfpNewStatus const & status ) {
   for ( unsigned lane : { 0u, 1u, 2u, 3u, 4u, 5u, 31u, 32u, 255u } ) {
      LaneId const id( static_cast<uint8_t>( lane ) );
      DomInfo const info = status.domInfo( id );
      requirePower( info.txPower() );
      requirePower( info.rxPower() );
      require( info.temperature() < 128 && !std::isnan( info.temperature() ) );
      bool const neutral = lane >= QsfpNewStatus::lanes;
      require( !neutral ||
               ( status.laneFlags( id ) == QsfpLaneFlags() &&
                 status.laneControls( id ) == QsfpLaneControls() && !status.domInfoValid( id ) ) );
      require( status.rxOutputAmplitude( id ).val() < 16 &&
               status.rxOutputPreEmphasis( id ).val() < 16 &&
               status.txInputEqualization( id ).val() < 16 );
   }
   requirePower( status.domAggPower().aggRxPower() - 6.1 ); // four lanes
   DomThreshold const threshold = status.domThreshold();
   requirePower( threshold.rxPowerHighAlarm() );
   requirePower( threshold.txPowerLowWarn() );
   static_cast<void>( status.moduleFlags() );
   static_cast<void>( status.moduleControls() );
}

void checkEnhancedMonitors( QsfpNewStatus & status ) {
   status.updateEnhancedDomMapping();
   for ( uint32_t index = 0; index < 36; ++index ) {
      bool const valid = status.enhancedDomValuesValid( index );
      require( valid == status.enhancedDomMappingHas( index ) );
      require( valid == std::isfinite( status.enhancedDomValue( index ) ) );
      EnhancedDomThreshold const limits = status.enhancedDomThreshold( index );
      require( status.enhancedDomThresholdValid( index ) == std::isfinite( limits.lowWarn() ) );
   }
   static_cast<void>( status.enhancedDomCapabilities() );
   static_cast<void>( status.enhancedDomSensorCategory() );
}

void checkStatus( Contents const & contents ) {
   static Vel::Ptr<QsfpNewStatus> const status = qsfpNewStatusFactory( "Ethernet1" );
   status->actualIdEepromContentsIs( contents );
   status->presenceIs( xcvrPresent );
   status->idEepromValidIs( true );
   status->lastDomUpdateTimeIs( 1 );
   status->lastEnhancedDomUpdateTimeIs( 1 );
   status->lastEnhancedDomThresholdsUpdateTimeIs( 1 );
   checkMonitors( *status );
   checkEnhancedMonitors( *status );
   status->updateLaneStatus();
   require( status->laneStatusMap().size() == QsfpNewStatus::lanes );
   require( status->idEepromInfo().eepromPages() >= 2 );
   require( status->laserWavelength() <= 65535 * 50 );
   require( status->electricalPathAttenuation().value() <= 255 );
}

void checkValueForms( Contents const & contents ) {
   require( Contents( stringValue( contents ) ) == contents );
   Vel::NboAttrLog log;
   contents.velWrite( log );
   require( Contents( log ) == contents );
}

void check( Pages const & pages ) {
   Contents const contents( pages[0], pages[1], pages[2], pages[3], pages[4], pages[5], 0.0,
                            uint8_t( 0 ) );
   checkTexts( contents, pages[1] );
   checkNumbers( contents );
   checkMediaType( contents );
   checkChecksums( contents );
   checkFields( contents, pages );
   checkStatus( contents );
   checkValueForms( contents );
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( uint8_t const * data, size_t size ) {
   std::string_view const image( reinterpret_cast<char const *>( data ), size );
   Pages pages;
   for ( size_t i = 0; i < pages.size(); ++i ) {
      pages[i] = image.substr( std::min( size, i * pageSize ), pageSize );
   }
   check( pages );
   // The same with pages that end early, where the last byte says.
   size_t const end = size > 0 ? data[size - 1] : 0;
   for ( std::string_view & page : pages ) {
      page = page.substr( 0, end );
   }
   check( pages );
   return 0;
}

#include <Xcvr/XcvrSfpPlus.h>

#include "core/Checksum.h"

#include <Vel/Define.h>
#include <Vel/Trace.h>
#include <Xcvr/XcvrDomDecoders.h>

namespace Xcvr {

VEL_VALUE_DEFINE( XcvrSff8472IdEepromContents )

namespace {

using Sff8472Table::row;

Vel::TraceHandle trace( "XcvrSfpPlus" );

/// A run of bytes that a stored checksum guards, directly in front of it.
struct ChecksumRange {
   MemoryField const & first;
   MemoryField const & stored;

   [[nodiscard]] int sum( PageView page ) const {
      return signedByteSum( page.text( first.at, stored.at - uint32_t{ first.at } ) );
   }
   [[nodiscard]] bool valid( PageView page ) const {
      return page.has( stored.at, 1 ) &&
             static_cast<uint8_t>( sum( page ) ) == page.u8( stored.at );
   }
};

constexpr ChecksumRange ccBase{ row( "identifier" ), row( "storedCcBase" ) };
constexpr ChecksumRange ccExt{ row( "options" ), row( "storedCcExt" ) };
constexpr ChecksumRange ccDmi{ row( "domTempHighAlarm" ), row( "storedCcDmi" ) };

/// The page with another text in a field, as long as before: what lies beyond its end is dropped.
Vel::String withText( Vel::String page, MemoryField const & field, std::string_view text ) {
   for ( size_t i = 0; i < field.width; ++i ) {
      page.byteIs( field.at + i, static_cast<uint8_t>( i < text.size() ? text[i] : ' ' ) );
   }
   return page;
}

Vel::String withByte( Vel::String page, MemoryField const & field, uint8_t byte ) {
   page.byteIs( field.at, byte );
   return page;
}

} // namespace

void XcvrSff8472IdEepromContents::traceUnreadable( MemoryField const & field ) {
   if ( trace.passes( 8 ) ) {
      // The names in the field table are literals, so this one ends in a NUL.
      trace.write( 8, __LINE__, field.name.data(), "the page does not hold the field" );
   }
}

VendorInfo XcvrSff8472IdEepromContents::shortVendorInfo() const {
   return { vendorName(), vendorPn(), vendorSn(), vendorRev(), dateCode() };
}

Sff8472TransceiverCompliance XcvrSff8472IdEepromContents::compliance() const {
   return Sff8472TransceiverCompliance( number( row( "compliance" ) ) );
}

uint32_t XcvrSff8472IdEepromContents::vendorOui() const {
   return static_cast<uint32_t>( number( row( "vendorOui" ) ) );
}

double XcvrSff8472IdEepromContents::quorelAttnValue() const {
   VEL_TRACE_SCOPE( trace );
   constexpr MemoryField minuend = row( "quorelAttnMinuend" );
   constexpr MemoryField subtrahend = row( "quorelAttnSubtrahend" );
   PageView const page = pageOf( subtrahend );
   if ( !page.has( subtrahend.at, subtrahend.width ) ) {
      VEL_TRACE( trace, 8, "the page does not hold the field" );
      return 0.0;
   }
   int const first = page.s8( minuend.at );
   return first == 0 ? 0.0 : ( first - page.s8( subtrahend.at ) ) * minuend.scale;
}

void XcvrSff8472IdEepromContents::vendorNameIs( std::string_view name ) {
   VEL_TRACE_SCOPE( trace );
   bufIs( withText( buf(), row( "vendorName" ), name ) );
}

void XcvrSff8472IdEepromContents::vendorPnIs( std::string_view partNumber ) {
   VEL_TRACE_SCOPE( trace );
   bufIs( withText( buf(), row( "vendorPn" ), partNumber ) );
}

void XcvrSff8472IdEepromContents::vendorRevIs( std::string_view revision ) {
   VEL_TRACE_SCOPE( trace );
   bufIs( withText( buf(), row( "vendorRev" ), revision ) );
}

void XcvrSff8472IdEepromContents::vendorSnIs( std::string_view serialNumber ) {
   VEL_TRACE_SCOPE( trace );
   bufIs( withText( buf(), row( "vendorSn" ), serialNumber ) );
}

void XcvrSff8472IdEepromContents::dateCodeIs( std::string_view dateCode ) {
   VEL_TRACE_SCOPE( trace );
   bufIs( withText( buf(), row( "dateCode" ), dateCode ) );
}

void XcvrSff8472IdEepromContents::storedCcBaseIs( uint8_t sum ) {
   VEL_TRACE_SCOPE( trace );
   bufIs( withByte( buf(), row( "storedCcBase" ), sum ) );
}

void XcvrSff8472IdEepromContents::storedCcExtIs( uint8_t sum ) {
   VEL_TRACE_SCOPE( trace );
   bufIs( withByte( buf(), row( "storedCcExt" ), sum ) );
}

void XcvrSff8472IdEepromContents::storedCcDmiIs( uint8_t sum ) {
   VEL_TRACE_SCOPE( trace );
   eepromPageA2DataIs( withByte( eepromPageA2Data(), row( "storedCcDmi" ), sum ) );
}

int XcvrSff8472IdEepromContents::computedCcBase() const {
   VEL_TRACE_SCOPE( trace );
   return ccBase.sum( buf().view() );
}

bool XcvrSff8472IdEepromContents::ccBaseValid() const {
   VEL_TRACE_SCOPE( trace );
   return ccBase.valid( buf().view() );
}

int XcvrSff8472IdEepromContents::computedCcExt() const {
   VEL_TRACE_SCOPE( trace );
   return ccExt.sum( buf().view() );
}

bool XcvrSff8472IdEepromContents::ccExtValid() const {
   VEL_TRACE_SCOPE( trace );
   return ccExt.valid( buf().view() );
}

int XcvrSff8472IdEepromContents::computedCcDmi() const {
   VEL_TRACE_SCOPE( trace );
   return ccDmi.sum( eepromPageA2Data().view() );
}

bool XcvrSff8472IdEepromContents::ccDmiValid() const {
   VEL_TRACE_SCOPE( trace );
   return ccDmi.valid( eepromPageA2Data().view() );
}

bool XcvrSff8472IdEepromContents::checksumsValid( Sff8472PageId page ) const {
   VEL_TRACE_SCOPE( trace );
   return page == pageA0h ? ccBaseValid() && ccExtValid() : page == pageA2h && ccDmiValid();
}

bool XcvrSff8472IdEepromContents::fieldInUse( MemoryField const & field ) const {
   VEL_TRACE_SCOPE( trace );
   return memoryFieldInUse( field, Sff8472Table::fields, Sff8472Table::conditions,
                            [this]( MemoryField const & asked ) { return pageOf( asked ); } );
}

void editDomThresholdRegisterData( Vel::String & pageA2h, uint8_t at, uint16_t value ) {
   VEL_TRACE_SCOPE( trace );
   pageA2h.byteIs( at, static_cast<uint8_t>( value >> 8 ) );
   pageA2h.byteIs( at + 1u, static_cast<uint8_t>( value ) );
}

void updateSfpDomThresholdWithQuorixData(
   Vel::String & pageA2h, Units::Decibels txPowerHighWarn, Units::Decibels txPowerLowWarn,
   Units::Decibels txPowerHighAlarm, Units::Decibels txPowerLowAlarm,
   Units::Decibels rxPowerHighWarn, Units::Decibels rxPowerLowWarn,
   Units::Decibels rxPowerHighAlarm, Units::Decibels rxPowerLowAlarm ) {
   VEL_TRACE_SCOPE( trace );
   auto const write = [&pageA2h]( MemoryField const & threshold, Units::Decibels dBm ) {
      editDomThresholdRegisterData( pageA2h, static_cast<uint8_t>( threshold.at ),
                                    decibelTo16BitDomValue( dBm.value() ) );
   };
   write( row( "domTxPowerHighWarn" ), txPowerHighWarn );
   write( row( "domTxPowerLowWarn" ), txPowerLowWarn );
   write( row( "domTxPowerHighAlarm" ), txPowerHighAlarm );
   write( row( "domTxPowerLowAlarm" ), txPowerLowAlarm );
   write( row( "domRxPowerHighWarn" ), rxPowerHighWarn );
   write( row( "domRxPowerLowWarn" ), rxPowerLowWarn );
   write( row( "domRxPowerHighAlarm" ), rxPowerHighAlarm );
   write( row( "domRxPowerLowAlarm" ), rxPowerLowAlarm );
}

} // namespace Xcvr

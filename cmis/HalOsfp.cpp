#include "core/Checksum.h"
#include "core/DomCodes.h"
#include "core/DomNeutral.h"
#include "core/WallClock.h"

#include <Vel/Define.h>
#include <Vel/Trace.h>
#include <Xcvr/XcvrOsfpParser.h>

#include <algorithm>
#include <bit>
#include <cstring>

namespace Xcvr {

VEL_ENUM_DEFINE( OsfpIdentifier )
VEL_ENUM_DEFINE( OsfpSmbusSpeedReg )
VEL_ENUM_DEFINE( OsfpModuleTypeEncoding )
VEL_ENUM_DEFINE( OsfpModuleState )
VEL_ENUM_DEFINE( OsfpDataPathState )
VEL_ENUM_DEFINE( OsfpBank )
VEL_ENUM_DEFINE( OsfpPage )
VEL_VALUE_DEFINE( OsfpBankAndPage )
VEL_VALUE_DEFINE( OsfpRegAddr )
VEL_VALUE_DEFINE( OsfpApplicationOffset )
VEL_VALUE_DEFINE( OsfpDomRegAddr )
VEL_VALUE_DEFINE( OsfpMediaLaneAssignmentAddress )
VEL_VALUE_DEFINE( OsfpApplicationAddress )
VEL_VALUE_DEFINE( OsfpControlSetAddress )
VEL_VALUE_DEFINE( OsfpLaneBitmaskCtrlReg8 )
VEL_VALUE_DEFINE( OsfpLaneBitmaskCtrlReg32 )
VEL_VALUE_DEFINE( OsfpImplMonitorsAdvertisement )

// What VEL_VALUE_DEFINE would define, with the number as the string form.
OsfpLane::OsfpLane( Vel::String const & stringForm ) {
   Vel::Internal::TextCursor in( stringForm );
   Vel::Internal::parse( in, value_ );
   if ( value_ > velBound || !in.rest().empty() ) {
      in.fail( "a number of 0 to 7" );
   }
}
OsfpLane::OsfpLane( Vel::NboAttrLog & log ) {
   log.readInto( *this );
}
void OsfpLane::velWrite( Vel::NboAttrLog & log ) const {
   Vel::Internal::encode( log.append( Vel::Internal::encodedSize( *this ) ), *this );
}
Vel::String OsfpLane::velStringForm() const {
   return Vel::stringForm( value_ );
}
static Vel::TypeRegistration const osfpLaneRegistered( Vel::Internal::valueModel<OsfpLane> );

namespace {

using CmisTable::address;
using CmisTable::mask;
using CmisTable::row;
using Decoded = OsfpDecodedEepromContents;

Vel::TraceHandle trace( "HalOsfp" );

} // namespace

OsfpEepromParser::OsfpEepromParser( Vel::Ptr<OsfpRawEepromContents const> rawEeprom,
                                    Vel::Ptr<OsfpDecodedEepromContents> parsedEeprom )
   : rawEeprom_( std::move( rawEeprom ) ), parsedEeprom_( std::move( parsedEeprom ) ),
     writeShadow_( new OsfpWriteEepromShadow ) {}

Vel::Ptr<OsfpEepromParser>
osfpEepromParserFactory( Vel::Ptr<OsfpRawEepromContents const> const & rawEeprom,
                         Vel::Ptr<OsfpDecodedEepromContents> const & parsedEeprom ) {
   return Vel::Ptr<OsfpEepromParser>( new OsfpEepromParser( rawEeprom, parsedEeprom ) );
}

// Registers

uint8_t OsfpEepromParser::registerOffset( OsfpRegAddr const & reg ) const {
   VEL_TRACE_SCOPE( trace );
   VEL_ASSERT_TEXT( reg.page() != OsfpPage::upperPageInvalid,
                    "reg.page() != OsfpPage::upperPageInvalid_" );
   return static_cast<uint8_t>(
      reg.page() == OsfpPage::lowerPage00 ? reg.addr() : reg.addr() - CmisTable::pageSize );
}

uint8_t OsfpEepromParser::reg8( OsfpRegAddr const & reg ) const {
   VEL_TRACE_SCOPE( trace );
   VEL_ASSERT( reg.size() == 1 );
   return static_cast<uint8_t>(
      rawEeprom_->memory( OsfpBankAndPage( reg.bank(), reg.page() ) )[registerOffset( reg )] );
}

uint16_t OsfpEepromParser::reg16( OsfpRegAddr const & reg ) const {
   VEL_TRACE_SCOPE( trace );
   VEL_ASSERT( reg.size() == 2 );
   Vel::String const bytes = this->reg( reg );
   return static_cast<uint16_t>( static_cast<uint8_t>( bytes[0] ) << 8 |
                                 static_cast<uint8_t>( bytes[1] ) );
}

uint32_t OsfpEepromParser::reg32( OsfpRegAddr const & reg, bool isBigEndian ) const {
   VEL_TRACE_SCOPE( trace );
   VEL_ASSERT( reg.size() == 4 );
   Vel::String const bytes = this->reg( reg );
   uint32_t result = 0;
   for ( size_t i = 0; i < 4; ++i ) {
      result = result << 8 | static_cast<uint8_t>( bytes[isBigEndian ? i : 3 - i] );
   }
   return result;
}

Vel::String OsfpEepromParser::reg( OsfpRegAddr const & reg ) const {
   VEL_TRACE_SCOPE( trace );
   return rawEeprom_->memory( OsfpBankAndPage( reg.bank(), reg.page() ) )
      .substr( registerOffset( reg ), reg.size() );
}

// Pages

namespace {

/// A page while it is being parsed; an address is taken as the standard numbers it or as the field
/// table does. The bytes in it are whole, with zeros behind the end of a short
/// one; and whatever the observers of what is parsed do, the page and the parser stay until the end.
class Page {
 public:
   Page( OsfpEepromParser const & parser, OsfpBank bank, OsfpPage page )
      : hold_( parser ), string_( parser.rawEeprom()->memory( OsfpBankAndPage( bank, page ) ) ),
        bytes_( string_.data() ) {
      if ( string_.size() < CmisTable::pageSize ) {
         fill();
      }
   }
   Page( Page const & ) = delete;
   Page & operator=( Page const & ) = delete;

   [[nodiscard]] uint8_t u8( unsigned at ) const {
      return static_cast<uint8_t>( bytes_[at % CmisTable::pageSize] );
   }
   [[nodiscard]] uint8_t u8( MemoryField const & field ) const { return u8( field.at ); }
   [[nodiscard]] uint16_t u16( unsigned at ) const {
      return static_cast<uint16_t>( u8( at ) << 8 | u8( at + 1 ) );
   }
   [[nodiscard]] uint16_t u16( MemoryField const & field ) const { return u16( field.at ); }
   [[nodiscard]] uint32_t u32( unsigned at ) const {
      return uint32_t{ u16( at ) } << 16 | u16( at + 2 );
   }
   /// The bytes of a field; fewer when the page ends early.
   [[nodiscard]] std::string_view bytes( MemoryField const & field ) const {
      return PageView( string_ ).text( field.at, field.width );
   }

 private:
   [[gnu::noinline]] void fill() {
      std::memset( filled_, 0, sizeof filled_ );
      std::memcpy( filled_, string_.data(), string_.size() );
      bytes_ = filled_;
   }

   Vel::Hold hold_;
   Vel::String string_;
   char const * bytes_;
   char filled_[CmisTable::pageSize];
};

/// A bit of each lane, lane 0 the lowest, into a collection of flags: where it says otherwise.
template <auto held, auto set>
[[gnu::always_inline]] inline void laneFlagsIs( Decoded & to, unsigned lanes ) {
   constexpr uint32_t allLanes = 0xff;
   for ( uint32_t left = ( to.*held )().differing( lanes, allLanes ); left != 0;
         left &= left - 1 ) {
      int const lane = std::countr_zero( left );
      ( to.*set )( ChannelId( lane ), lanes >> lane & 1 );
   }
}

/// Four bits of each lane, lane 0 in the low ones of the first byte.
template <auto set>
[[gnu::always_inline]] inline void laneCodesIs( Decoded & to, Page const & page,
                                                MemoryField const & field ) {
   OsfpLaneBitmaskCtrlReg32 const codes( __builtin_bswap32( page.u32( field.at ) ) );
   for ( uint8_t lane = 0; lane < osfpLanes; ++lane ) {
      ( to.*set )( ChannelId( lane ), codes.laneVal( OsfpLane( lane ) ) );
   }
}

/// An application as it is now with the descriptor that was read. The media lanes are read from another
/// page: as long as the descriptor is the same, they are too.
OsfpApplication withDescriptor( OsfpApplication const & now, uint32_t descriptor ) {
   return now.value() == descriptor ? now : OsfpApplication( descriptor, 0 );
}

/// The applications of a list, under keys from `firstKey` on. The list ends early at a descriptor that
/// says so; those behind it are not read, and what was there under their keys is another module's.
void applicationsIs( Decoded & to, Page const & page, OsfpApplicationAddress const & list,
                     uint8_t firstKey ) {
   uint8_t i = 0;
   for ( ; i < list.numApplications(); ++i ) {
      uint32_t const descriptor = page.u32( list.value( i ).addr() );
      if ( OsfpApplication( descriptor, 0 ).hostInterface() == OsfpApplication::endOfList ) {
         break;
      }
      auto const key = static_cast<uint8_t>( firstKey + i );
      to.applicationIs( key, withDescriptor( to.application( key ), descriptor ) );
   }
   for ( ; i < list.numApplications(); ++i ) {
      to.applicationDel( static_cast<uint8_t>( firstKey + i ) );
   }
}

} // namespace

void OsfpEepromParser::parseLowerPage() {
   VEL_TRACE_SCOPE( trace );
   Page const page( *this, OsfpBank::bankNa, OsfpPage::lowerPage00 );
   Decoded & to = *parsedEeprom_;
   uint8_t const memory = page.u8( row( "memoryAndSpeed" ) );
   to.identifierIs( static_cast<OsfpIdentifier>( page.u8( row( "identifier" ) ) ) );
   to.flatMemIs( memory & mask( "memoryAndSpeed", "flat memory" ) );
   to.maxSmbusSpeedSupportedIs( static_cast<OsfpSmbusSpeedReg>( memory >> 2 & 3 ) );
   parseModuleFlags();
   to.moduleTypeIs( static_cast<OsfpModuleTypeEncoding>( page.u8( row( "moduleType" ) ) ) );
   to.moduleGlobalAndSquelchControlsIs( page.u8( row( "moduleGlobalAndSquelchControls" ) ) );
   // The first application is kept twice: as what the module is, whatever its code says, and, unless
   // its code ends the list, under its select code.
   OsfpApplicationAddress const list( OsfpPage::lowerPage00, address( row( "application1" ) ), 8 );
   to.moduleTypeIdentifierIs(
      withDescriptor( to.moduleTypeIdentifier(), page.u32( list.value( 0 ).addr() ) ) );
   applicationsIs( to, page, list, 1 );
   to.detectedMediaTypeIs( to.moduleTypeIdentifier().mediaType( to.moduleType() ) );
}

void OsfpEepromParser::parseModuleFlags() {
   VEL_TRACE_SCOPE( trace );
   Page const page( *this, OsfpBank::bankNa, OsfpPage::lowerPage00 );
   Decoded & to = *parsedEeprom_;
   uint8_t const flags = page.u8( row( "moduleFlags" ) );
   to.tempHiAlarmIs( flags & mask( "moduleFlags", "temperature high alarm" ) );
   to.tempLoAlarmIs( flags & mask( "moduleFlags", "temperature low alarm" ) );
   to.tempHiWarnIs( flags & mask( "moduleFlags", "temperature high warning" ) );
   to.tempLoWarnIs( flags & mask( "moduleFlags", "temperature low warning" ) );
   to.voltageHiAlarmIs( flags & mask( "moduleFlags", "voltage high alarm" ) );
   to.voltageLoAlarmIs( flags & mask( "moduleFlags", "voltage low alarm" ) );
   to.voltageHiWarnIs( flags & mask( "moduleFlags", "voltage high warning" ) );
   to.voltageLoWarnIs( flags & mask( "moduleFlags", "voltage low warning" ) );
}

void OsfpEepromParser::parseUpperPage00() {
   VEL_TRACE_SCOPE( trace );
   Page const page( *this, OsfpBank::bankNa, OsfpPage::upperPage00 );
   Decoded & to = *parsedEeprom_;
   to.identifierExtendedIs( page.u8( row( "identifierExtended" ) ) );
   to.vendorNameIs( page.bytes( row( "vendorName" ) ) );
   to.vendorOuiIs( page.bytes( row( "vendorOui" ) ) );
   to.vendorPnIs( page.bytes( row( "vendorPn" ) ) );
   to.vendorRevIs( page.bytes( row( "vendorRev" ) ) );
   to.vendorSnIs( page.bytes( row( "vendorSn" ) ) );
   to.dateCodeIs( page.bytes( row( "dateCode" ) ) );
   to.modulePowerIs( page.u16( row( "modulePower" ) ) );
   to.cableLengthIs( page.u8( row( "cableLength" ) ) );
   to.connectorIs( page.u8( row( "connector" ) ) );
   computePageChecksum( OsfpRegAddr( OsfpBank::bankNa, OsfpPage::upperPage00,
                                     address( row( "checksumUpperPage00" ) ), 1 ),
                        0 );
}

void OsfpEepromParser::parseUpperPage01() {
   VEL_TRACE_SCOPE( trace );
   Page const page( *this, OsfpBank::bankNa, OsfpPage::upperPage01 );
   Decoded & to = *parsedEeprom_;
   uint8_t const amplitudeAndEq = page.u8( row( "rxAmplitudeAndMaxTxEq" ) );
   to.implRxOutputAmplitudeCodeIs( amplitudeAndEq >> 4 );
   to.maxTxInputEqualizationIs( amplitudeAndEq & 0xf );
   uint8_t const emphasis = page.u8( row( "maxRxEmphasis" ) );
   to.maxRxOutputPostEmphasisIs( emphasis >> 4 );
   to.maxRxOutputPreEmphasisIs( emphasis & 0xf );
   to.implSignalIntegrityControlIs( page.u16( row( "implSignalIntegrityControl" ) ) );
   to.implControlsAdvertisementIs( page.u16( row( "implControlsAdvertisement" ) ) );
   to.implFlagsAdvertisementIs( page.u16( row( "implFlagsAdvertisement" ) ) );
   to.implMonitorsAdvertisementIs(
      OsfpImplMonitorsAdvertisement( page.u16( row( "implMonitorsAdvertisement" ) ) ) );

   OsfpApplicationAddress const list( OsfpPage::upperPage01, address( row( "application9" ) ), 7 );
   constexpr uint8_t firstKey = 9, lastKey = 15;
   applicationsIs( to, page, list, firstKey );

   // The application with select code k takes the byte at 176 + k, though the standard gives it the
   // one at 176 + k - 1, where only the module type, which is application 1, is read from. Intended:
   // all that handles media lanes is settled on it. Leave both as they are.
   OsfpMediaLaneAssignmentAddress const assignments( OsfpBank::bankNa, OsfpPage::upperPage01,
                                                     address( row( "mediaLaneAssignment" ) ), 1 );
   auto const assigned = [&]( OsfpApplication application, uint8_t index ) {
      application.mediaLaneAssignmentIs( page.u8( assignments.value( index ).addr() ) );
      return application;
   };
   to.moduleTypeIdentifierIs( assigned( to.moduleTypeIdentifier(), 0 ) );
   for ( uint8_t key = 1; key <= lastKey; ++key ) {
      if ( to.applicationHas( key ) ) {
         to.applicationIs( key, assigned( to.application( key ), key ) );
      }
   }
   computePageChecksum( OsfpRegAddr( OsfpBank::bankNa, OsfpPage::upperPage01,
                                     address( row( "checksumUpperPage01" ) ), 1 ),
                        2 );
}

namespace {

double celsius( Page const & page, unsigned at ) {
   return DomCodes::temperature( page.u16( at ) );
}
double volts( Page const & page, unsigned at ) {
   return DomCodes::supplyVoltage( page.u16( at ) );
}
double milliamperes( Page const & page, unsigned at, uint8_t multiplier ) {
   return DomCodes::txBias( page.u16( at ) ) * multiplier;
}
double dBm( Page const & page, unsigned at ) {
   return DomCodes::power( page.u16( at ) );
}

} // namespace

void OsfpEepromParser::parseUpperPage02() {
   VEL_TRACE_SCOPE( trace );
   Page const page( *this, OsfpBank::bankNa, OsfpPage::upperPage02 );
   Decoded & to = *parsedEeprom_;
   uint8_t const multiplier = to.implMonitorsAdvertisement().txBiasMultiplerValue();
   // The rows of the voltage warnings lie on the temperature warnings, as the field table says.
   to.domThresholdIs( { celsius( page, row( "tempHighAlarm" ).at ),
                        celsius( page, row( "tempLowAlarm" ).at ),
                        celsius( page, row( "tempHighWarn" ).at ),
                        celsius( page, row( "tempLowWarn" ).at ),
                        volts( page, row( "voltageHighAlarm" ).at ),
                        volts( page, row( "voltageLowAlarm" ).at ),
                        volts( page, row( "voltageHighWarn" ).at ),
                        volts( page, row( "voltageLowWarn" ).at ),
                        milliamperes( page, row( "txBiasHighAlarm" ).at, multiplier ),
                        milliamperes( page, row( "txBiasLowAlarm" ).at, multiplier ),
                        milliamperes( page, row( "txBiasHighWarn" ).at, multiplier ),
                        milliamperes( page, row( "txBiasLowWarn" ).at, multiplier ),
                        dBm( page, row( "txPowerHighAlarm" ).at ),
                        dBm( page, row( "txPowerLowAlarm" ).at ),
                        dBm( page, row( "txPowerHighWarn" ).at ),
                        dBm( page, row( "txPowerLowWarn" ).at ),
                        dBm( page, row( "rxPowerHighAlarm" ).at ),
                        dBm( page, row( "rxPowerLowAlarm" ).at ),
                        dBm( page, row( "rxPowerHighWarn" ).at ),
                        dBm( page, row( "rxPowerLowWarn" ).at ),
                        unreadable,
                        unreadable,
                        unreadable,
                        unreadable } );
   computePageChecksum( OsfpRegAddr( OsfpBank::bankNa, OsfpPage::upperPage02,
                                     address( row( "checksumUpperPage02" ) ), 1 ),
                        0 );
}

void OsfpEepromParser::computePageChecksum( OsfpRegAddr const & checksumReg, uint8_t startOffset ) {
   VEL_TRACE_SCOPE( trace );
   OsfpPage const page = checksumReg.page();
   uint8_t const stored = reg8( checksumReg );
   Vel::String const string = rawEeprom_->memory( OsfpBankAndPage( checksumReg.bank(), page ) );
   unsigned const end = registerOffset( checksumReg );
   std::string_view const summed = startOffset < end
                                      ? PageView( string ).text( startOffset, end - startOffset )
                                      : std::string_view();
   auto const sum = static_cast<uint8_t>( signedByteSum( summed ) );
   Vel::Hold const hold( *this );
   parsedEeprom_->checksumIs( page, stored );
   parsedEeprom_->checksumCalculatedIs( page, sum );
   parsedEeprom_->checksumValidIs( page, stored == sum );
}

void OsfpEepromParser::parseDom() {
   VEL_TRACE_SCOPE( trace );
   Page const lower( *this, OsfpBank::bankNa, OsfpPage::lowerPage00 );
   Page const page( *this, OsfpBank::bank0, OsfpPage::upperPage11 );
   Decoded & to = *parsedEeprom_;
   Vel::Seconds const now = wallClock();
   double const temperature = celsius( lower, row( "temperature" ).at );
   double const voltage = volts( lower, row( "voltage" ).at );
   uint8_t const multiplier = to.implMonitorsAdvertisement().txBiasMultiplerValue();
   auto const laneRegisters = []( MemoryField const & lane0 ) {
      return OsfpDomRegAddr( OsfpBank::bank0, OsfpPage::upperPage11, address( lane0 ), 2 );
   };
   OsfpDomRegAddr const txBias = laneRegisters( row( "txBias0" ) );
   OsfpDomRegAddr const txPower = laneRegisters( row( "txPower0" ) );
   OsfpDomRegAddr const rxPower = laneRegisters( row( "rxPower0" ) );
   for ( uint8_t lane = 0; lane < osfpLanes; ++lane ) {
      to.domInfoIs( LaneId( lane ), { now, domCalibrationInternal, temperature, voltage,
                                      milliamperes( page, txBias.value( lane ).addr(), multiplier ),
                                      dBm( page, txPower.value( lane ).addr() ),
                                      dBm( page, rxPower.value( lane ).addr() ), unreadable } );
   }
}

void OsfpEepromParser::parseLaneFlags( bool force ) {
   VEL_TRACE_SCOPE( trace );
   Page const page( *this, OsfpBank::bank0, OsfpPage::upperPage11 );
   Decoded & to = *parsedEeprom_;
   uint16_t const advertised = to.implFlagsAdvertisement();
   if ( advertised != 0 || force ) {
      auto const flags = [&]( MemoryField const & field, uint32_t support ) -> unsigned {
         return force || advertised & support ? page.u8( field ) : 0u;
      };
      laneFlagsIs<&Decoded::txFaultMap, &Decoded::txFaultIs>(
         to, flags( row( "txFault" ), mask( "implFlagsAdvertisement", "Tx fault" ) ) );
      laneFlagsIs<&Decoded::txLosMap, &Decoded::txLosIs>(
         to, flags( row( "txLos" ), mask( "implFlagsAdvertisement", "Tx LOS" ) ) );
      laneFlagsIs<&Decoded::txCdrLolMap, &Decoded::txCdrLolIs>(
         to, flags( row( "txCdrLol" ), mask( "implFlagsAdvertisement", "Tx CDR LOL" ) ) );
      laneFlagsIs<&Decoded::txAdaptiveInputEqFaultMap, &Decoded::txAdaptiveInputEqFaultIs>(
         to, flags( row( "txAdaptiveInputEqFault" ),
                    mask( "implFlagsAdvertisement", "Tx adaptive input EQ fault" ) ) );
      laneFlagsIs<&Decoded::rxLosMap, &Decoded::rxLosIs>(
         to, flags( row( "rxLos" ), mask( "implFlagsAdvertisement", "Rx LOS" ) ) );
      laneFlagsIs<&Decoded::rxCdrLolMap, &Decoded::rxCdrLolIs>(
         to, flags( row( "rxCdrLol" ), mask( "implFlagsAdvertisement", "Rx CDR LOL" ) ) );
   }
   // clang-format off
   laneFlagsIs<&Decoded::txPowerHiAlarmMap, &Decoded::txPowerHiAlarmIs>( to, page.u8( row( "txPowerHiAlarm" ) ) );
   laneFlagsIs<&Decoded::txPowerLoAlarmMap, &Decoded::txPowerLoAlarmIs>( to, page.u8( row( "txPowerLoAlarm" ) ) );
   laneFlagsIs<&Decoded::txPowerHiWarnMap, &Decoded::txPowerHiWarnIs>( to, page.u8( row( "txPowerHiWarn" ) ) );
   laneFlagsIs<&Decoded::txPowerLoWarnMap, &Decoded::txPowerLoWarnIs>( to, page.u8( row( "txPowerLoWarn" ) ) );
   laneFlagsIs<&Decoded::txBiasHiAlarmMap, &Decoded::txBiasHiAlarmIs>( to, page.u8( row( "txBiasHiAlarm" ) ) );
   laneFlagsIs<&Decoded::txBiasLoAlarmMap, &Decoded::txBiasLoAlarmIs>( to, page.u8( row( "txBiasLoAlarm" ) ) );
   laneFlagsIs<&Decoded::txBiasHiWarnMap, &Decoded::txBiasHiWarnIs>( to, page.u8( row( "txBiasHiWarn" ) ) );
   laneFlagsIs<&Decoded::txBiasLoWarnMap, &Decoded::txBiasLoWarnIs>( to, page.u8( row( "txBiasLoWarn" ) ) );
   laneFlagsIs<&Decoded::rxPowerHiAlarmMap, &Decoded::rxPowerHiAlarmIs>( to, page.u8( row( "rxPowerHiAlarm" ) ) );
   laneFlagsIs<&Decoded::rxPowerLoAlarmMap, &Decoded::rxPowerLoAlarmIs>( to, page.u8( row( "rxPowerLoAlarm" ) ) );
   laneFlagsIs<&Decoded::rxPowerHiWarnMap, &Decoded::rxPowerHiWarnIs>( to, page.u8( row( "rxPowerHiWarn" ) ) );
   laneFlagsIs<&Decoded::rxPowerLoWarnMap, &Decoded::rxPowerLoWarnIs>( to, page.u8( row( "rxPowerLoWarn" ) ) );
   // clang-format on
}

void OsfpEepromParser::parseLaneTuning() {
   VEL_TRACE_SCOPE( trace );
   Page const page( *this, OsfpBank::bank0, OsfpPage::upperPage11 );
   Decoded & to = *parsedEeprom_;
   laneFlagsIs<&Decoded::txInputAdaptiveEqEnableMap, &Decoded::txInputAdaptiveEqEnableIs>(
      to, page.u8( row( "txInputAdaptiveEqEnable" ) ) );
   laneCodesIs<&Decoded::txInputEqualizationIs>( to, page, row( "txInputEqualization" ) );
   laneCodesIs<&Decoded::rxOutputPreEmphasisIs>( to, page, row( "rxOutputPreEmphasis" ) );
   laneCodesIs<&Decoded::rxOutputPostEmphasisIs>( to, page, row( "rxOutputPostEmphasis" ) );
   laneCodesIs<&Decoded::rxOutputAmplitudeIs>( to, page, row( "rxOutputAmplitude" ) );
}

void OsfpEepromParser::parseUpperPage10() {
   VEL_TRACE_SCOPE( trace );
   Page const page( *this, OsfpBank::bank0, OsfpPage::upperPage10 );
   writeShadow_->laneTxDisableIs( page.u8( row( "laneTxDisable" ) ) );
}

void OsfpEepromParser::parseUpperPage11() {
   VEL_TRACE_SCOPE( trace );
   Page const page( *this, OsfpBank::bank0, OsfpPage::upperPage11 );
   constexpr MemoryField field = row( "activeControlSet" );
   OsfpRegAddr const area( OsfpBank::bank0, OsfpPage::upperPage11, address( field ), field.width );
   std::string_view const data = page.bytes( field );
   VEL_ASSERT( data.size() == area.size() );
   if ( writeShadow_->activeControlSet() != data ) {
      writeShadow_->activeControlSetIs( data );
   }
}

} // namespace Xcvr

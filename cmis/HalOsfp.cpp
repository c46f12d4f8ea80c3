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
OsfpLane::OsfpLane( Vel::NboAttrLog & log )
   : OsfpLane( Vel::Taken(), Vel::Internal::LogReading<OsfpLane>( log ) ) {}
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

/// The bytes of a page as they were read, valid until the next write to the raw contents.
std::string_view pageOf( OsfpRawEepromContents const & raw, OsfpBank bank, OsfpPage page ) {
   auto const found = raw.memoryMap().find( OsfpBankAndPage( bank, page ) );
   return found != raw.memoryMap().end() ? found->second.view() : std::string_view();
}

/// A page while it is being parsed; an address is taken as the standard numbers it or as the field
/// table does. The bytes are whole, with zeros behind the end of a short page, and they are a copy: the
/// observers of what is parsed may change the page, and drop the parser too, which stays until the end.
class Page {
 public:
   Page( OsfpEepromParser const & parser, OsfpBank bank, OsfpPage page ) : hold_( parser ) {
      std::string_view const bytes = pageOf( *parser.rawEeprom(), bank, page );
      constexpr size_t whole = CmisTable::pageSize;
      size_ = std::min( bytes.size(), whole );
      if ( size_ == whole ) [[likely]] {
         std::memcpy( bytes_, bytes.data(), whole );
      } else {
         std::copy_n( bytes.begin(), size_, bytes_ );
         std::memset( bytes_ + size_, 0, whole - size_ );
      }
      std::memset( bytes_ + whole, 0, sizeof bytes_ - whole );
   }
   /// A page that is not there.
   explicit Page( OsfpEepromParser const & parser ) : hold_( parser ), size_( 0 ), bytes_{} {}
   Page( Page const & ) = delete;
   Page & operator=( Page const & ) = delete;

   [[nodiscard]] uint8_t u8( unsigned at ) const { return *from( at ); }
   [[nodiscard]] uint8_t u8( MemoryField const & field ) const { return u8( field.at ); }
   [[nodiscard]] uint16_t u16( unsigned at ) const {
      uint8_t const * bytes = from( at );
      return static_cast<uint16_t>( bytes[0] << 8 | bytes[1] );
   }
   [[nodiscard]] uint16_t u16( MemoryField const & field ) const { return u16( field.at ); }
   [[nodiscard]] uint32_t u32( unsigned at ) const {
      uint8_t const * bytes = from( at );
      return uint32_t{ bytes[0] } << 24 | uint32_t{ bytes[1] } << 16 | uint32_t{ bytes[2] } << 8 |
             bytes[3];
   }
   /// The bytes of a field; fewer when the page ends early. Inlined always, so that the copy of a whole
   /// one is of constant width.
   [[nodiscard, gnu::always_inline]] Vel::String bytes( MemoryField const & field ) const {
      return field.end() <= size_
                ? Vel::String( chars() + field.at, field.width )
                : Vel::String(
                     PageView( std::string_view( chars(), size_ ) ).text( field.at, field.width ) );
   }
   /// The sum of the bytes from one up to another.
   [[nodiscard]] uint8_t sum( size_t first, size_t end ) const {
      return static_cast<uint8_t>( signedByteSum( { chars() + first, end - first } ) );
   }

 private:
   [[nodiscard]] uint8_t const * from( unsigned at ) const {
      return bytes_ + at % CmisTable::pageSize;
   }
   [[nodiscard]] char const * chars() const { return reinterpret_cast<char const *>( bytes_ ); }

   Vel::Hold hold_;
   size_t size_; // of the page, 128 at most
   // With room for a number that begins on the last byte.
   uint8_t bytes_[CmisTable::pageSize + 4];
};

constexpr uint32_t allLanes = 0xff;

/// Four bits of each lane as an image, lane 0 in the lowest, which are those of the first byte.
uint32_t laneCodes( Page const & page, MemoryField const & field ) {
   return __builtin_bswap32( page.u32( field.at ) );
}

/// An application with a descriptor, as it was before. The media lanes are read from another page: as
/// long as the descriptor is the same, they are too.
OsfpApplication withDescriptor( OsfpApplication const & before, uint32_t descriptor ) {
   return before.value() == descriptor ? before : OsfpApplication( descriptor, 0 );
}

/// What the module has, as page 01h says.
void advertisementIs( Decoded & to, Page const & page ) {
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
}

/// The keys of the applications of page 01h.
constexpr uint8_t firstKeyOf01h = 9, lastKeyOf01h = 15;

/// The media lanes of all applications: `lanes` gives those of the one with a select code, and by 0
/// those of what says the module's type.
template <typename Lanes>
void mediaLanesIs( Decoded & to, Lanes const & lanes ) {
   auto const assigned = [&]( OsfpApplication application, uint8_t index ) {
      application.mediaLaneAssignmentIs( lanes( index ) );
      return application;
   };
   to.moduleTypeIdentifierIs( assigned( to.moduleTypeIdentifier(), 0 ) );
   for ( uint8_t key = 1; key <= lastKeyOf01h; ++key ) {
      if ( OsfpApplication const * application = to.applicationMap().find( key ) ) {
         to.applicationIs( key, assigned( *application, key ) );
      }
   }
}

/// Takes away what page 01h of a former module said, in a module that has none.
void upperPage01Del( Decoded & to, Page const & nothing ) {
   advertisementIs( to, nothing );
   for ( uint8_t key = firstKeyOf01h; key <= lastKeyOf01h; ++key ) {
      to.applicationDel( key );
   }
   mediaLanesIs( to, []( uint8_t ) { return uint8_t{ 0 }; } );
   to.checksumDel( OsfpPage::upperPage01 );
   to.checksumCalculatedDel( OsfpPage::upperPage01 );
   to.checksumValidDel( OsfpPage::upperPage01 );
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
      OsfpApplication const * before = to.applicationMap().find( key );
      if ( !before || before->value() != descriptor ) {
         to.applicationIs( key, OsfpApplication( descriptor, 0 ) );
      }
   }
   for ( ; i < list.numApplications(); ++i ) {
      to.applicationDel( static_cast<uint8_t>( firstKey + i ) );
   }
}

/// The checksum of a page, and the sum of the bytes that it guards.
[[gnu::always_inline]] inline void checksumIs( Decoded & to, OsfpPage page, uint8_t stored,
                                               uint8_t sum ) {
   to.checksumIs( page, stored );
   to.checksumCalculatedIs( page, sum );
   to.checksumValidIs( page, stored == sum );
}
[[gnu::always_inline]] inline void checksumIs( Decoded & to, OsfpPage number, Page const & page,
                                               MemoryField const & stored, size_t first ) {
   checksumIs( to, number, page.u8( stored ), page.sum( first, stored.at ) );
}

/// The module's flags.
void moduleFlagsIs( Decoded & to, uint8_t flags ) {
   to.tempHiAlarmIs( flags & mask( "moduleFlags", "temperature high alarm" ) );
   to.tempLoAlarmIs( flags & mask( "moduleFlags", "temperature low alarm" ) );
   to.tempHiWarnIs( flags & mask( "moduleFlags", "temperature high warning" ) );
   to.tempLoWarnIs( flags & mask( "moduleFlags", "temperature low warning" ) );
   to.voltageHiAlarmIs( flags & mask( "moduleFlags", "voltage high alarm" ) );
   to.voltageLoAlarmIs( flags & mask( "moduleFlags", "voltage low alarm" ) );
   to.voltageHiWarnIs( flags & mask( "moduleFlags", "voltage high warning" ) );
   to.voltageLoWarnIs( flags & mask( "moduleFlags", "voltage low warning" ) );
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
   moduleFlagsIs( to, page.u8( row( "moduleFlags" ) ) );
   to.moduleTypeIs( static_cast<OsfpModuleTypeEncoding>( page.u8( row( "moduleType" ) ) ) );
   to.moduleGlobalAndSquelchControlsIs( page.u8( row( "moduleGlobalAndSquelchControls" ) ) );
   // The first application is kept twice: as what the module is, whatever its code says, and, unless
   // its code ends the list, under its select code.
   OsfpApplicationAddress const list( OsfpPage::lowerPage00, address( row( "application1" ) ), 8 );
   to.moduleTypeIdentifierIs(
      withDescriptor( to.moduleTypeIdentifier(), page.u32( list.value( 0 ).addr() ) ) );
   applicationsIs( to, page, list, 1 );
   if ( to.flatMem() ) {
      upperPage01Del( to, Page( *this ) );
   }
   to.detectedMediaTypeIs( to.moduleTypeIdentifier().mediaType( to.moduleType() ) );
}

void OsfpEepromParser::parseModuleFlags() {
   VEL_TRACE_SCOPE( trace );
   Page const page( *this, OsfpBank::bankNa, OsfpPage::lowerPage00 );
   moduleFlagsIs( *parsedEeprom_, page.u8( row( "moduleFlags" ) ) );
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
   checksumIs( to, OsfpPage::upperPage00, page, row( "checksumUpperPage00" ), 0 );
}

void OsfpEepromParser::parseUpperPage01() {
   VEL_TRACE_SCOPE( trace );
   Page const page( *this, OsfpBank::bankNa, OsfpPage::upperPage01 );
   Decoded & to = *parsedEeprom_;
   advertisementIs( to, page );
   OsfpApplicationAddress const list( OsfpPage::upperPage01, address( row( "application9" ) ), 7 );
   applicationsIs( to, page, list, firstKeyOf01h );

   // The application with select code k takes the byte at 176 + k, though the standard gives it the
   // one at 176 + k - 1, where only the module type, which is application 1, is read from. Intended:
   // all that handles media lanes is settled on it. Leave both as they are.
   OsfpMediaLaneAssignmentAddress const assignments( OsfpBank::bankNa, OsfpPage::upperPage01,
                                                     address( row( "mediaLaneAssignment" ) ), 1 );
   mediaLanesIs( to,
                 [&]( uint8_t index ) { return page.u8( assignments.value( index ).addr() ); } );
   checksumIs( to, OsfpPage::upperPage01, page, row( "checksumUpperPage01" ), 2 );
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
   checksumIs( to, OsfpPage::upperPage02, page, row( "checksumUpperPage02" ), 0 );
}

void OsfpEepromParser::computePageChecksum( OsfpRegAddr const & checksumReg, uint8_t startOffset ) {
   VEL_TRACE_SCOPE( trace );
   uint8_t const stored = reg8( checksumReg );
   Vel::String const page =
      rawEeprom_->memory( OsfpBankAndPage( checksumReg.bank(), checksumReg.page() ) );
   unsigned const end = registerOffset( checksumReg );
   std::string_view const guarded = startOffset < end
                                       ? PageView( page ).text( startOffset, end - startOffset )
                                       : std::string_view();
   Vel::Hold const hold( *this );
   checksumIs( *parsedEeprom_, checksumReg.page(), stored,
               static_cast<uint8_t>( signedByteSum( guarded ) ) );
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
      to.txFaultImageIs( flags( row( "txFault" ), mask( "implFlagsAdvertisement", "Tx fault" ) ),
                         allLanes );
      to.txLosImageIs( flags( row( "txLos" ), mask( "implFlagsAdvertisement", "Tx LOS" ) ),
                       allLanes );
      to.txCdrLolImageIs(
         flags( row( "txCdrLol" ), mask( "implFlagsAdvertisement", "Tx CDR LOL" ) ), allLanes );
      to.txAdaptiveInputEqFaultImageIs(
         flags( row( "txAdaptiveInputEqFault" ),
                mask( "implFlagsAdvertisement", "Tx adaptive input EQ fault" ) ),
         allLanes );
      to.rxLosImageIs( flags( row( "rxLos" ), mask( "implFlagsAdvertisement", "Rx LOS" ) ),
                       allLanes );
      to.rxCdrLolImageIs(
         flags( row( "rxCdrLol" ), mask( "implFlagsAdvertisement", "Rx CDR LOL" ) ), allLanes );
   }
   // clang-format off
   to.txPowerHiAlarmImageIs( page.u8( row( "txPowerHiAlarm" ) ), allLanes );
   to.txPowerLoAlarmImageIs( page.u8( row( "txPowerLoAlarm" ) ), allLanes );
   to.txPowerHiWarnImageIs( page.u8( row( "txPowerHiWarn" ) ), allLanes );
   to.txPowerLoWarnImageIs( page.u8( row( "txPowerLoWarn" ) ), allLanes );
   to.txBiasHiAlarmImageIs( page.u8( row( "txBiasHiAlarm" ) ), allLanes );
   to.txBiasLoAlarmImageIs( page.u8( row( "txBiasLoAlarm" ) ), allLanes );
   to.txBiasHiWarnImageIs( page.u8( row( "txBiasHiWarn" ) ), allLanes );
   to.txBiasLoWarnImageIs( page.u8( row( "txBiasLoWarn" ) ), allLanes );
   to.rxPowerHiAlarmImageIs( page.u8( row( "rxPowerHiAlarm" ) ), allLanes );
   to.rxPowerLoAlarmImageIs( page.u8( row( "rxPowerLoAlarm" ) ), allLanes );
   to.rxPowerHiWarnImageIs( page.u8( row( "rxPowerHiWarn" ) ), allLanes );
   to.rxPowerLoWarnImageIs( page.u8( row( "rxPowerLoWarn" ) ), allLanes );
   // clang-format on
}

void OsfpEepromParser::parseLaneTuning() {
   VEL_TRACE_SCOPE( trace );
   Page const page( *this, OsfpBank::bank0, OsfpPage::upperPage11 );
   Decoded & to = *parsedEeprom_;
   to.txInputAdaptiveEqEnableImageIs( page.u8( row( "txInputAdaptiveEqEnable" ) ), allLanes );
   to.txInputEqualizationImageIs( laneCodes( page, row( "txInputEqualization" ) ), allLanes );
   to.rxOutputPreEmphasisImageIs( laneCodes( page, row( "rxOutputPreEmphasis" ) ), allLanes );
   to.rxOutputPostEmphasisImageIs( laneCodes( page, row( "rxOutputPostEmphasis" ) ), allLanes );
   to.rxOutputAmplitudeImageIs( laneCodes( page, row( "rxOutputAmplitude" ) ), allLanes );
}

void OsfpEepromParser::parseUpperPage10() {
   VEL_TRACE_SCOPE( trace );
   PageView const page = pageOf( *rawEeprom_, OsfpBank::bank0, OsfpPage::upperPage10 );
   writeShadow_->laneTxDisableIs( page.u8( row( "laneTxDisable" ).at ) );
}

void OsfpEepromParser::parseUpperPage11() {
   VEL_TRACE_SCOPE( trace );
   PageView const page = pageOf( *rawEeprom_, OsfpBank::bank0, OsfpPage::upperPage11 );
   constexpr MemoryField field = row( "activeControlSet" );
   OsfpRegAddr const area( OsfpBank::bank0, OsfpPage::upperPage11, address( field ), field.width );
   std::string_view const data = page.text( field.at, field.width );
   VEL_ASSERT( data.size() == area.size() );
   if ( writeShadow_->activeControlSet() != data ) {
      writeShadow_->activeControlSetIs( data );
   }
}

} // namespace Xcvr

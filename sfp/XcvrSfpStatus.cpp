#include <Xcvr/XcvrSfpStatus.h>

#include "core/AttenuationTable.h"
#include "core/DiagOverride.h"
#include "core/DomCodes.h"
#include "core/DomNeutral.h"
#include "core/ThresholdOverride.h"

#include <Vel/Define.h>
#include <Vel/DefineEntity.h>
#include <Vel/Trace.h>
#include <Xcvr/XcvrDomDecoders.h>
#include <Xcvr/XcvrOptics.h>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace Xcvr {

VEL_ENUM_DEFINE( Xcvr1000BaseTProgramState )
VEL_VALUE_DEFINE( XcvrSff8472DomRegisterData )
VEL_VALUE_DEFINE( SfpSlotCapabilities )
VEL_VALUE_DEFINE( SfpStatusBits )
VEL_VALUE_DEFINE( SfpDomFlags )
VEL_ENTITY_DEFINE( SfpDiagConfig, sfpDiagConfigFactory )
VEL_ENTITY_DEFINE( SfpConfig, sfpConfigFactory )
VEL_ENTITY_DEFINE( SfpCellConfig, sfpCellConfigFactory )
VEL_ENTITY_DEFINE( SfpNewStatus, sfpNewStatusFactory )

namespace {

using Sff8472Table::bit;
using Sff8472Table::row;

Vel::TraceHandle trace( "XcvrSfpPlus" );

} // namespace

// Registers

bool Sff8472Registers::erase( key_type key ) {
   if ( !contains( key ) ) {
      return false;
   }
   Page & home = pageIs( deviceOf( key ) );
   --home.count;
   home.bytes[byteOf( key )] = 0;
   home.held[byteOf( key )] = 0;
   return true;
}

size_t Sff8472Registers::size() const {
   size_t result = 0;
   for ( Page const & page : pages_ ) {
      result += page.count;
   }
   return result;
}

Sff8472Registers::Page & Sff8472Registers::newPage( uint8_t device ) {
   auto const place = std::ranges::upper_bound( pages_, device, {}, &Page::device );
   return *pages_.insert( place, Page{ .device = device } );
}

Sff8472Registers::Entry Sff8472Registers::Iterator::operator*() const {
   Page const & page = registers_.pages_[at_ / pageSize];
   auto const key = static_cast<key_type>( page.device * pageSize + at_ % pageSize );
   return { key, mapped_type( key, page.bytes[at_ % pageSize] ) };
}

void Sff8472Registers::Iterator::skip() {
   size_t const end = registers_.pages_.size() * pageSize;
   while ( at_ < end && !registers_.pages_[at_ / pageSize].held[at_ % pageSize] ) {
      ++at_;
   }
}

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

uint32_t SfpNewStatus::bitrate() const {
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

// Page A2h

namespace {

constexpr uint8_t deviceA2h = 0xA2;

/// The bytes of page A2h in effect, as `SfpNewStatus` says, as far as the field table goes; what was
/// not read is 0. In place, unless single bytes and a page must be put together.
class A2hBytes {
 public:
   [[gnu::always_inline]] A2hBytes( SfpNewStatus const & status,
                                    XcvrSff8472IdEepromContents const & contents ) {
      std::string_view const page = contents.eepromPageA2Data();
      bool const overridden = &contents != &status.actualIdEepromContents();
      Sff8472Registers::Page const * registers =
         overridden ? nullptr : status.registerDataMap().page( deviceA2h );
      if ( registers && page.empty() ) {
         bytes_ = reinterpret_cast<char const *>( registers->bytes.data() );
      } else if ( !registers && page.size() >= length ) {
         bytes_ = page.data();
      } else {
         copy( page, registers );
      }
   }
   A2hBytes( A2hBytes const & ) = delete;
   A2hBytes & operator=( A2hBytes const & ) = delete;

   /// Of constant length, so that reading it needs no checks.
   [[nodiscard]] PageView page() const { return std::string_view( bytes_, length ); }

 private:
   static constexpr size_t length = 152;
   static_assert( row( "tuningWavelength" ).end() <= length && length % sizeof( uint64_t ) == 0 );

   [[gnu::noinline]] void copy( std::string_view page, Sff8472Registers::Page const * registers ) {
      size_t const size = std::min( page.size(), length );
      std::memcpy( merged_, page.data(), size );
      std::memset( merged_ + size, 0, length - size );
      if ( registers ) {
         put( *registers );
      }
      bytes_ = merged_;
   }
   void put( Sff8472Registers::Page const & registers ) {
      uint64_t below, held, bytes; // eight bytes at a time
      for ( size_t at = 0; at < length; at += sizeof below ) {
         std::memcpy( &below, merged_ + at, sizeof below );
         std::memcpy( &held, registers.held.data() + at, sizeof held );
         std::memcpy( &bytes, registers.bytes.data() + at, sizeof bytes );
         below = ( below & ~held ) | bytes;
         std::memcpy( merged_ + at, &below, sizeof below );
      }
   }

   char const * bytes_;
   char merged_[length];
};

/// Decodes the monitors and thresholds of a module that is calibrated in some way.
class MonitorDecoder {
 public:
   MonitorDecoder( PageView page, DomCalibration calibrationOfModule )
      : page_( page ), external_( calibrationOfModule == domCalibrationExternal ) {
      if ( external_ ) {
         temperature_ = calibration( row( "domTemperatureSlope" ), row( "domTemperatureOffset" ) );
         voltage_ = calibration( row( "domSupplyVoltageSlope" ), row( "domSupplyVoltageOffset" ) );
         txBias_ = calibration( row( "domBiasCurrentSlope" ), row( "domBiasCurrentOffset" ) );
         txPower_ = calibration( row( "domTxPowerSlope" ), row( "domTxPowerOffset" ) );
      }
   }

   [[nodiscard]] double temperature( MemoryField const & field ) const {
      return DomCodes::temperature( temperature_( page_.s16be( field.at ) ) );
   }
   [[nodiscard]] double voltage( MemoryField const & field ) const {
      return DomCodes::supplyVoltage( voltage_( page_.u16be( field.at ) ) );
   }
   [[nodiscard]] double txBias( MemoryField const & field ) const {
      return DomCodes::txBias( txBias_( page_.u16be( field.at ) ) );
   }
   [[nodiscard]] double txPower( MemoryField const & field ) const {
      return DomCodes::power( txPower_( page_.u16be( field.at ) ) );
   }
   [[nodiscard]] double rxPower( MemoryField const & field ) const {
      double const raw = page_.u16be( field.at );
      return DomCodes::power( external_
                                 ? DomCodes::rxPolynomial( raw, coefficient( row( "domRxPower0" ) ),
                                                           coefficient( row( "domRxPower1" ) ),
                                                           coefficient( row( "domRxPower2" ) ),
                                                           coefficient( row( "domRxPower3" ) ),
                                                           coefficient( row( "domRxPower4" ) ) )
                                 : raw );
   }
   /// The coefficients of external calibration do not apply to a threshold: with all of them 0 it is
   /// minus infinity. Intended; leave it: readers skip a limit that cannot be read.
   [[nodiscard]] double rxPowerThreshold( MemoryField const & field ) const {
      return external_ ? unreadable : DomCodes::power( page_.u16be( field.at ) );
   }

 private:
   [[nodiscard]] DomCodes::Calibration calibration( MemoryField const & slope,
                                                    MemoryField const & offset ) const {
      return { DomCodes::slope( page_.u16be( slope.at ) ),
               static_cast<double>( page_.s16be( offset.at ) ) };
   }
   [[nodiscard]] double coefficient( MemoryField const & field ) const {
      return static_cast<double>( page_.f32be( field.at ) );
   }

   PageView page_;
   bool external_;
   DomCodes::Calibration temperature_, voltage_, txBias_, txPower_;
};

DomCalibration calibrationOf( XcvrSff8472IdEepromContents const & contents ) {
   constexpr uint8_t internal = bit( "diagsMonitoringType", "internally calibrated" ).mask;
   constexpr uint8_t external = bit( "diagsMonitoringType", "externally calibrated" ).mask;
   uint8_t const type = contents.diagsMonitoringType();
   // A module that claims both is read as internally calibrated.
   return type & internal   ? domCalibrationInternal
          : type & external ? domCalibrationExternal
                            : domCalibrationUnknown;
}

} // namespace

bool SfpNewStatus::domInfoValid( LaneId ) const {
   VEL_TRACE_SCOPE( trace );
   return presence() == xcvrPresent && contentsOf( *this ).domSupported() &&
          lastDomUpdateTime() > lastPresenceChange();
}

DomInfo SfpNewStatus::domInfo( LaneId lane ) const {
   VEL_TRACE_SCOPE( trace );
   if ( !domInfoValid( lane ) ) {
      return unreadableDomInfo( 0 );
   }
   XcvrSff8472IdEepromContents const & contents = contentsOf( *this );
   DomCalibration const calibration = calibrationOf( contents );
   if ( calibration == domCalibrationUnknown ) {
      return unreadableDomInfo( lastDomUpdateTime() );
   }
   A2hBytes const a2h( *this, contents );
   MonitorDecoder const decode( a2h.page(), calibration );
   return { lastDomUpdateTime(),
            calibration,
            decode.temperature( row( "domTemperature" ) ),
            decode.voltage( row( "domSupplyVoltage" ) ),
            decode.txBias( row( "domBiasCurrent" ) ),
            decode.txPower( row( "domTxPower" ) ),
            decode.rxPower( row( "domRxPower" ) ),
            unreadable };
}

bool SfpNewStatus::domThresholdValid() const {
   VEL_TRACE_SCOPE( trace );
   // The thresholds are constants of the module, which the agent reads with the identification
   // memory: idEepromValid says that this was done. What the agent can provide in general
   // (xcvrMgrCapabilities) says nothing about the module in the slot.
   return presence() == xcvrPresent && contentsOf( *this ).domSupported() &&
          lastDomThresholdsUpdateTime() > 0 && idEepromValid();
}

DomThreshold SfpNewStatus::domThreshold() const {
   VEL_TRACE_SCOPE( trace );
   XcvrSff8472IdEepromContents const & contents = contentsOf( *this );
   DomCalibration const calibration = calibrationOf( contents );
   if ( calibration == domCalibrationUnknown ) {
      return unreadableDomThreshold();
   }
   A2hBytes const a2h( *this, contents );
   MonitorDecoder const decode( a2h.page(), calibration );
   return { decode.temperature( row( "domTempHighAlarm" ) ),
            decode.temperature( row( "domTempLowAlarm" ) ),
            decode.temperature( row( "domTempHighWarn" ) ),
            decode.temperature( row( "domTempLowWarn" ) ),
            decode.voltage( row( "domVoltHighAlarm" ) ),
            decode.voltage( row( "domVoltLowAlarm" ) ),
            decode.voltage( row( "domVoltHighWarn" ) ),
            decode.voltage( row( "domVoltLowWarn" ) ),
            decode.txBias( row( "domBiasHighAlarm" ) ),
            decode.txBias( row( "domBiasLowAlarm" ) ),
            decode.txBias( row( "domBiasHighWarn" ) ),
            decode.txBias( row( "domBiasLowWarn" ) ),
            decode.txPower( row( "domTxPowerHighAlarm" ) ),
            decode.txPower( row( "domTxPowerLowAlarm" ) ),
            decode.txPower( row( "domTxPowerHighWarn" ) ),
            decode.txPower( row( "domTxPowerLowWarn" ) ),
            decode.rxPowerThreshold( row( "domRxPowerHighAlarm" ) ),
            decode.rxPowerThreshold( row( "domRxPowerLowAlarm" ) ),
            decode.rxPowerThreshold( row( "domRxPowerHighWarn" ) ),
            decode.rxPowerThreshold( row( "domRxPowerLowWarn" ) ),
            unreadable,
            unreadable,
            unreadable,
            unreadable };
}

DomCapabilities SfpNewStatus::domCapabilities() const {
   VEL_TRACE_SCOPE( trace );
   bool const monitored = optical();
   return { monitored, monitored, monitored, monitored, monitored, false, false, false };
}

SfpStatusBits SfpNewStatus::statusBits() const {
   VEL_TRACE_SCOPE( trace );
   if ( !domInfoValid( LaneId() ) ) {
      return {};
   }
   XcvrSff8472IdEepromContents const & contents = contentsOf( *this );
   A2hBytes const a2h( *this, contents );
   PageView const page = a2h.page();
   // A module drives the bits that it does not implement as it likes.
   uint8_t const options = contents.enhancedOptions();
   auto const state = [page, options]( MemoryBitPlace implemented, MemoryBitPlace place ) {
      return options & implemented.mask && page.bit( place );
   };
   constexpr MemoryBitPlace txDisable = bit( "enhancedOptions", "soft Tx disable" );
   constexpr MemoryBitPlace rateSelect = bit( "enhancedOptions", "soft rate select" );
   return { state( txDisable, bit( "domStatusBits", "Tx disable state" ) ),
            state( txDisable, bit( "domStatusBits", "soft Tx disable" ) ),
            state( rateSelect, bit( "domStatusBits", "RS1 state" ) ),
            state( rateSelect, bit( "domStatusBits", "RS0 state" ) ),
            state( rateSelect, bit( "domStatusBits", "soft RS0 select" ) ),
            state( bit( "enhancedOptions", "soft Tx fault" ), bit( "domStatusBits", "Tx fault" ) ),
            state( bit( "enhancedOptions", "soft Rx LOS" ), bit( "domStatusBits", "Rx LOS" ) ),
            page.bit( bit( "domStatusBits", "data not ready" ) ) };
}

namespace {

consteval MemoryBitPlace alarm( std::string_view name ) {
   return bit( "alarmFlags", name );
}
consteval MemoryBitPlace warning( std::string_view name ) {
   return bit( "warningFlags", name );
}

} // namespace

SfpDomFlags SfpNewStatus::domFlags() const {
   VEL_TRACE_SCOPE( trace );
   XcvrSff8472IdEepromContents const & contents = contentsOf( *this );
   constexpr uint8_t implemented = bit( "enhancedOptions", "alarm and warning flags" ).mask;
   if ( !domInfoValid( LaneId() ) || !( contents.enhancedOptions() & implemented ) ) {
      return {};
   }
   A2hBytes const a2h( *this, contents );
   PageView const page = a2h.page();
   return { page.bit( alarm( "temperature high" ) ),   page.bit( alarm( "temperature low" ) ),
            page.bit( warning( "temperature high" ) ), page.bit( warning( "temperature low" ) ),
            page.bit( alarm( "voltage high" ) ),       page.bit( alarm( "voltage low" ) ),
            page.bit( warning( "voltage high" ) ),     page.bit( warning( "voltage low" ) ),
            page.bit( alarm( "Tx bias high" ) ),       page.bit( alarm( "Tx bias low" ) ),
            page.bit( warning( "Tx bias high" ) ),     page.bit( warning( "Tx bias low" ) ),
            page.bit( alarm( "Tx power high" ) ),      page.bit( alarm( "Tx power low" ) ),
            page.bit( warning( "Tx power high" ) ),    page.bit( warning( "Tx power low" ) ),
            page.bit( alarm( "Rx power high" ) ),      page.bit( alarm( "Rx power low" ) ),
            page.bit( warning( "Rx power high" ) ),    page.bit( warning( "Rx power low" ) ) };
}

// The operator's thresholds

Vel::Ptr<DomThresholdOverride const> SfpNewStatus::domThresholdOverride() const {
   VEL_TRACE_SCOPE( trace );
   return closestThresholdOverride( xgc(), vendorInfo() );
}

DomThreshold SfpNewStatus::domThresholdInForce() const {
   VEL_TRACE_SCOPE( trace );
   // Whether overrides apply at all (Xgc::domThresholdOverrideEnabled) is the agent's decision, which
   // domThresholdOverridden carries.
   Vel::Ptr<DomThresholdOverride const> const row =
      domThresholdOverridden() ? domThresholdOverride() : nullptr;
   return row ? withOverride( domThreshold(), *row ) : domThreshold();
}

// Tuning

namespace {

/// The number of a frequency on a grid that starts at `base`; 0 when it is none of the grid's.
uint32_t channelOn( uint32_t base, uint32_t grid, uint32_t frequency ) {
   return grid != 0 && frequency >= base && ( frequency - base ) % grid == 0
             ? decodeItuChannel( base, grid, frequency )
             : 0;
}

/// The tuning registers, in MHz, exactly: the capabilities are cut to whole GHz.
struct TuningRegisters {
   explicit TuningRegisters( PageView page )
      : first( page.u16be( row( "tuningFirstFrequencyTHz" ).at ) * 1000000u +
               page.u16be( row( "tuningFirstFrequencyGHz" ).at ) * 100u ),
        spacing( page.u16be( row( "tuningGridSpacingGHz" ).at ) * 100u ),
        channel( page.u16be( row( "tuningChannel" ).at ) ) {}

   /// Where the module is tuned to; 0 for nowhere.
   [[nodiscard]] uint32_t frequency() const {
      return channel != 0 && spacing != 0 ? decodeItuFrequency( first, channel, spacing ) : 0;
   }
   /// The module's number of a frequency, counted from its first; 0 when it has none.
   [[nodiscard]] uint32_t channelOf( uint32_t wanted ) const {
      return channelOn( first, spacing, wanted );
   }

   uint32_t first;
   uint32_t spacing;
   uint32_t channel;
};

TuningRegisters tuningRegisters( SfpNewStatus const & status ) {
   A2hBytes const a2h( status, contentsOf( status ) );
   return TuningRegisters( a2h.page() );
}

/// The frequency that a resolved tuning asks for; 0 before any. A failed resolution asks for its
/// channel, though it may still carry the frequency that was configured.
uint32_t wantedFrequency( ItuTuningConfig const & tuning ) {
   if ( tuning.grid() == 0 ) {
      return 0;
   }
   return tuning.laserEnabled() && tuning.frequency() != 0
             ? tuning.frequency()
             : decodeItuFrequency( TuningConstants::baseFrequencyCBand, tuning.channel(),
                                   tuning.grid() );
}

/// The spacings that a module with one of them in MHz supports: its own and the coarser ones, but
/// never 33 GHz; none of any other. The registers' spacing comes cut to whole GHz, so the last two
/// rows are never met: intended, modules of finer grids are driven as if they had none.
GridSpacingCapabilities gridSpacings( uint32_t mhz ) {
   switch ( mhz ) {
   case 100000:
      return { true, false, false, false, false, false };
   case 50000:
      return { true, true, false, false, false, false };
   case 25000:
      return { true, true, false, true, false, false };
   case 12500:
      return { true, true, false, true, true, false };
   case 6250:
      return { true, true, false, true, true, true };
   default:
      return {};
   }
}

} // namespace

uint32_t SfpNewStatus::hwChannel() const {
   VEL_TRACE_SCOPE( trace );
   return tuningRegisters( *this ).channel;
}

TuningCapabilities SfpNewStatus::tuningCapabilities() const {
   VEL_TRACE_SCOPE( trace );
   A2hBytes const a2h( *this, contentsOf( *this ) );
   PageView const page = a2h.page();
   auto const frequency = [page]( MemoryField const & thz ) {
      return ghzFreqToMhz( decodeTuningFrequency( page.u8( thz.at ), page.u8( thz.at + 1u ),
                                                  page.u8( thz.at + 2u ),
                                                  page.u8( thz.at + 3u ) ) );
   };
   constexpr uint32_t spacing = row( "tuningGridSpacingGHz" ).at;
   return { TuningConstants::baseFrequencyCBand, frequency( row( "tuningFirstFrequencyTHz" ) ),
            frequency( row( "tuningLastFrequencyTHz" ) ),
            gridSpacings( ghzFreqToMhz(
               decodeTuningGridSpacing( page.u8( spacing ), page.u8( spacing + 1 ) ) ) ),
            0 };
}

void SfpNewStatus::updateHwTuningConfig() {
   VEL_TRACE_SCOPE( trace );
   TuningRegisters const registers = tuningRegisters( *this );
   uint32_t const channel = registers.channelOf( wantedFrequency( ituTuningConfig() ) );
   // No fine tuning: an SFP has no range for it.
   hwTuningConfigIs( channel != 0 ? HwTuningConfig( channel, registers.spacing, 0 )
                                  : HwTuningConfig() );
}

bool SfpNewStatus::isFreqTuningPending() {
   VEL_TRACE_SCOPE( trace );
   if ( !capabilities().tunableWavelength() ) {
      return false;
   }
   Vel::Ptr<TuningConfig const> const config =
      xgc() ? xgc()->tuningConfig( name() ) : Vel::Ptr<TuningConfig>();
   updateItuTuningConfig( config );
   updateHwTuningConfig();

   ItuTuningConfig const & tuning = ituTuningConfig();
   uint32_t const wanted = wantedFrequency( tuning );
   TuningRegisters const registers = tuningRegisters( *this );
   uint32_t const operational = registers.frequency();
   // The operational channel is counted as the configured one is: from the base of the C band, on
   // the resolved grid. A frequency beside that grid has none.
   uint32_t const channel =
      channelOn( TuningConstants::baseFrequencyCBand, tuning.grid(), operational );
   resolvedTuningStatusIs( ResolvedTuningStatus(
      config ? config->channel() : 0, config ? config->grid() : 0, config ? config->frequency() : 0,
      wanted, computeWavelength( wanted ), channel, channel != 0 ? tuning.grid() : 0, operational,
      computeWavelength( operational ), tuningCapabilities().gridSpacingCapabilities() ) );
   return registers.channel != hwTuningConfig().hwChannel() || operational != wanted;
}

} // namespace Xcvr

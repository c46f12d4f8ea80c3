// What an SFP slot says of the diagnostics in page A2h.
#include "core/DiagOverride.h"
#include "core/DomReadings.h"
#include "core/DomRegisters.h"
#include "core/ThresholdOverride.h"
#include "sfp/A2hBytes.h"

#include <Vel/Define.h>
#include <Vel/Trace.h>

namespace Xcvr {

VEL_VALUE_DEFINE( SfpStatusBits )
VEL_VALUE_DEFINE( SfpDomFlags )

namespace {

using Sff8472Table::bit;
using Sff8472Table::row;

Vel::TraceHandle trace( "XcvrSfpPlus" );

/// Decodes the registers of an externally calibrated module.
class ExternalDecoder {
 public:
   explicit ExternalDecoder( PageView page )
      : page_( page ),
        temperature_( calibration( row( "domTemperatureSlope" ), row( "domTemperatureOffset" ) ) ),
        voltage_( calibration( row( "domSupplyVoltageSlope" ), row( "domSupplyVoltageOffset" ) ) ),
        txBias_( calibration( row( "domBiasCurrentSlope" ), row( "domBiasCurrentOffset" ) ) ),
        txPower_( calibration( row( "domTxPowerSlope" ), row( "domTxPowerOffset" ) ) ) {}

   [[nodiscard]] double temperature( uint32_t at ) const {
      return DomCodes::temperature( temperature_( page_.s16be( at ) ) );
   }
   [[nodiscard]] double voltage( uint32_t at ) const {
      return DomCodes::supplyVoltage( voltage_( page_.u16be( at ) ) );
   }
   [[nodiscard]] double txBias( uint32_t at ) const {
      return DomCodes::txBias( txBias_( page_.u16be( at ) ) );
   }
   [[nodiscard]] double txPower( uint32_t at ) const {
      return DomCodes::power( txPower_( page_.u16be( at ) ) );
   }
   [[nodiscard]] double rxPower( uint32_t at ) const {
      return DomCodes::power( DomCodes::rxPolynomial(
         page_.u16be( at ), coefficient( row( "domRxPower0" ) ),
         coefficient( row( "domRxPower1" ) ), coefficient( row( "domRxPower2" ) ),
         coefficient( row( "domRxPower3" ) ), coefficient( row( "domRxPower4" ) ) ) );
   }
   /// The coefficients of external calibration do not apply to a threshold: with all of them 0 it
   /// is minus infinity. Intended; leave it: readers skip a limit that cannot be read.
   [[nodiscard]] double rxPowerThreshold( uint32_t ) const { return unreadable; }

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

template <typename Decoder>
DomInfo monitors( Decoder const & decode, Vel::Seconds updateTime, DomCalibration calibration ) {
   return { updateTime,
            calibration,
            decode.temperature( row( "domTemperature" ).at ),
            decode.voltage( row( "domSupplyVoltage" ).at ),
            decode.txBias( row( "domBiasCurrent" ).at ),
            decode.txPower( row( "domTxPower" ).at ),
            decode.rxPower( row( "domRxPower" ).at ),
            unreadable };
}

constexpr ThresholdRegisters thresholds{
   row( "domTempHighAlarm" ).at, row( "domVoltHighAlarm" ).at, row( "domBiasHighAlarm" ).at,
   row( "domTxPowerHighAlarm" ).at, row( "domRxPowerHighAlarm" ).at };

consteval MemoryBitPlace alarm( std::string_view name ) {
   return bit( "alarmFlags", name );
}
consteval MemoryBitPlace warning( std::string_view name ) {
   return bit( "warningFlags", name );
}

inline bool monitorsValid( SfpNewStatus const & status,
                           XcvrSff8472IdEepromContents const & contents ) {
   return contents.domSupported() && monitorsRead( status, status.lastDomUpdateTime() );
}

} // namespace

bool SfpNewStatus::domInfoValid( LaneId ) const {
   VEL_TRACE_SCOPE( trace );
   return monitorsValid( *this, contentsOf( *this ) );
}

DomInfo SfpNewStatus::domInfo( LaneId ) const {
   VEL_TRACE_SCOPE( trace );
   XcvrSff8472IdEepromContents const & contents = contentsOf( *this );
   if ( !monitorsValid( *this, contents ) ) {
      return unreadableDomInfo( 0 );
   }
   DomCalibration const calibration = calibrationOf( contents );
   if ( calibration == domCalibrationUnknown ) {
      return unreadableDomInfo( lastDomUpdateTime() );
   }
   A2hBytes const a2h( *this, contents );
   return calibration == domCalibrationInternal
             ? monitors( DomRegisters( a2h.page() ), lastDomUpdateTime(), calibration )
             : monitors( ExternalDecoder( a2h.page() ), lastDomUpdateTime(), calibration );
}

bool SfpNewStatus::domThresholdValid() const {
   VEL_TRACE_SCOPE( trace );
   return contentsOf( *this ).domSupported() &&
          thresholdsRead( *this, lastDomThresholdsUpdateTime() );
}

DomThreshold SfpNewStatus::domThreshold() const {
   VEL_TRACE_SCOPE( trace );
   XcvrSff8472IdEepromContents const & contents = contentsOf( *this );
   DomCalibration const calibration = calibrationOf( contents );
   if ( calibration == domCalibrationUnknown ) {
      return unreadableDomThreshold();
   }
   A2hBytes const a2h( *this, contents );
   return calibration == domCalibrationInternal
             ? domThresholds( DomRegisters( a2h.page() ), thresholds )
             : domThresholds( ExternalDecoder( a2h.page() ), thresholds );
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

Vel::Ptr<DomThresholdOverride const> SfpNewStatus::domThresholdOverride() const {
   VEL_TRACE_SCOPE( trace );
   return closestThresholdOverride( xgc(), vendorInfo() );
}

DomThreshold SfpNewStatus::domThresholdInForce() const {
   VEL_TRACE_SCOPE( trace );
   return thresholdInForce( *this );
}

} // namespace Xcvr

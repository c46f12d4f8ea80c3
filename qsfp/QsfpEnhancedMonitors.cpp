// What a QSFP slot says of the enhanced monitors in pages 20h and 21h.
#include "core/DiagOverride.h"
#include "core/DomCodes.h"
#include "core/DomNeutral.h"
#include "core/DomReadings.h"

#include <Vel/Trace.h>
#include <Xcvr/XcvrQsfpStatus.h>

#include <array>
#include <optional>

namespace Xcvr {
namespace {

using Sff8436Table::row;

Vel::TraceHandle trace( "XcvrQsfpPlus" );

constexpr uint32_t monitorCount = 8;
constexpr uint32_t parameterCount = 24;

/// One of the parameters of page 20h, each of which says itself what it is.
class Parameter {
 public:
   Parameter( PageView page20h, uint32_t number )
      : page20h_( page20h ), number_( number ),
        config_( page20h.u16be( row( "parameter1Config" ).at + number * 2 ) ) {}

   /// Its type counts the enhanced monitors from 1. Further types are other statistics of them.
   [[nodiscard]] bool isMonitor() const { return type() >= 1 && type() <= monitorCount; }
   [[nodiscard]] uint32_t monitor() const { return type() - 1; }
   [[nodiscard]] bool isOfLane() const { return config_ & 0x400; }
   /// By `enhancedDomIndex`.
   [[nodiscard]] uint32_t index() const {
      return enhancedDomIndex( static_cast<EnhancedDomMonitor>( monitor() ),
                               isOfLane() ? static_cast<uint8_t>( config_ >> 8 & 3 )
                                          : uint8_t( 0 ) );
   }
   [[nodiscard]] uint32_t valueAt() const { return row( "parameter1Value" ).at + number_ * 2; }
   [[nodiscard]] uint16_t value() const { return page20h_.u16be( valueAt() ); }
   /// Where its thresholds are on page 21h.
   [[nodiscard]] uint32_t thresholdsAt() const {
      return thresholdSet.at + ( config_ >> 12 ) * uint32_t{ thresholdSet.width };
   }
   /// Whether page 21h holds all of them.
   [[nodiscard]] bool hasThresholds( PageView page21h ) const {
      return page21h.has( thresholdsAt(), thresholdSet.width );
   }

 private:
   static constexpr MemoryField thresholdSet = row( "thresholdSet0" );

   [[nodiscard]] uint32_t type() const { return config_ & 0xffu; }

   PageView page20h_;
   uint32_t number_;
   uint16_t config_;
};

/// The first parameter of an index. A monitor of the slot has the index of its lane 0: where there
/// are both, that of the lane counts, as in `categories`.
std::optional<Parameter> monitorOf( Sff8436IdEepromContents const & contents, uint32_t index ) {
   PageView const page20h = contents.page( eepromPage20hUpper );
   std::optional<Parameter> found;
   for ( uint32_t number = 0; number < parameterCount && !page20h.empty(); ++number ) {
      Parameter const parameter( page20h, number );
      if ( parameter.isMonitor() && parameter.index() == index ) {
         if ( parameter.isOfLane() ) {
            return parameter;
         }
         if ( !found ) {
            found = parameter;
         }
      }
   }
   return found;
}

/// A number in the unit of a monitor, of its value or of its thresholds.
double monitorValue( uint32_t index, uint16_t code ) {
   auto const number = static_cast<int16_t>( code );
   switch ( static_cast<EnhancedDomMonitor>( index % monitorCount ) ) {
   case EnhancedDomMonitor::snr:
   case EnhancedDomMonitor::residualIsi:
   case EnhancedDomMonitor::pam4Transitions:
      return code / 256.;
   case EnhancedDomMonitor::preFecBer:
   case EnhancedDomMonitor::uncorrectedBer:
      return DomCodes::f16( code );
   case EnhancedDomMonitor::tecCurrent:
      return number * 0.1;
   case EnhancedDomMonitor::laserFreqErr:
      return number * 10.;
   case EnhancedDomMonitor::laserTempErr:
      return number / 256.;
   }
   return unreadable;
}

/// By the monitors' order, for the values that have a field a monitor.
std::array<SensorCategory, monitorCount> categories( Sff8436IdEepromContents const & contents ) {
   std::array<SensorCategory, monitorCount> result{};
   PageView const page20h = contents.page( eepromPage20hUpper );
   for ( uint32_t number = 0; number < parameterCount; ++number ) {
      Parameter const parameter( page20h, number );
      if ( parameter.isMonitor() ) {
         SensorCategory & category = result[parameter.monitor()];
         // A monitor that is there both ways is one of the lanes.
         category = parameter.isOfLane() || category == SensorCategory::laneSensor
                       ? SensorCategory::laneSensor
                       : SensorCategory::slotSensor;
      }
   }
   return result;
}

} // namespace

bool QsfpNewStatus::enhancedDomValuesValid( uint32_t index ) const {
   VEL_TRACE_SCOPE( trace );
   return monitorsRead( *this, lastEnhancedDomUpdateTime() ) &&
          monitorOf( contentsOf( *this ), index );
}

double QsfpNewStatus::enhancedDomValue( uint32_t index ) const {
   VEL_TRACE_SCOPE( trace );
   auto const monitor = monitorOf( contentsOf( *this ), index );
   return monitor && enhancedDomValuesValid( index ) ? monitorValue( index, monitor->value() )
                                                     : unreadable;
}

bool QsfpNewStatus::enhancedDomThresholdValid( uint32_t index ) const {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   if ( !thresholdsRead( *this, lastEnhancedDomThresholdsUpdateTime() ) ) {
      return false;
   }
   auto const monitor = monitorOf( contents, index );
   return monitor && monitor->hasThresholds( contents.page( eepromPage21hUpper ) );
}

EnhancedDomThreshold QsfpNewStatus::enhancedDomThreshold( uint32_t index ) const {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   PageView const page = contents.page( eepromPage21hUpper );
   auto const monitor = monitorOf( contents, index );
   if ( !monitor || !monitor->hasThresholds( page ) ) {
      return { unreadable, unreadable, unreadable, unreadable };
   }
   auto const limit = [&]( uint32_t word ) {
      return monitorValue( index, page.u16be( monitor->thresholdsAt() + word * 2 ) );
   };
   return { limit( 0 ), limit( 1 ), limit( 2 ), limit( 3 ) };
}

EnhancedDomSensorCategory QsfpNewStatus::enhancedDomSensorCategory() const {
   VEL_TRACE_SCOPE( trace );
   auto const c = categories( contentsOf( *this ) );
   return { c[0], c[1], c[2], c[3], c[4], c[5], c[6], c[7] };
}

EnhancedDomCapabilities QsfpNewStatus::enhancedDomCapabilities() const {
   VEL_TRACE_SCOPE( trace );
   auto const c = categories( contentsOf( *this ) );
   auto const has = [&c]( size_t monitor ) { return c[monitor] != SensorCategory::undefined; };
   return { has( 0 ), has( 1 ), has( 2 ), has( 3 ), has( 4 ), has( 5 ), has( 6 ), has( 7 ) };
}

void QsfpNewStatus::updateEnhancedDomMapping() {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   for ( uint32_t index = 0; index < monitorCount * lanes; ++index ) {
      if ( auto const monitor = monitorOf( contents, index ) ) {
         enhancedDomMappingIs( index, static_cast<uint16_t>( 0x2000 + Sff8436Table::upperPageStart +
                                                             monitor->valueAt() ) );
      } else {
         enhancedDomMappingDel( index );
      }
   }
}

} // namespace Xcvr

#include "tools/xcvr/Monitors.h"

#include <Xcvr/XcvrCfp2Status.h>
#include <Xcvr/XcvrOptics.h>

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <iterator>
#include <limits>
#include <utility>

namespace XcvrTool {

namespace {

using Xcvr::DomCapabilities;
using Xcvr::DomInfo;
using Xcvr::DomThreshold;
using Xcvr::XcvrNewStatus;

constexpr double unreadable = -std::numeric_limits<double>::infinity();

constexpr Monitor monitors[] = {
   { "Temperature", "°C", 2, false, &DomInfo::temperature, &DomCapabilities::temperature,
     []( DomThreshold const & t ) {
        return Limits{ t.tempLowAlarm(), t.tempLowWarn(), t.tempHighWarn(), t.tempHighAlarm() };
     } },
   { "Supply voltage", "V", 4, false, &DomInfo::voltage, &DomCapabilities::voltage,
     []( DomThreshold const & t ) {
        return Limits{ t.voltageLowAlarm(), t.voltageLowWarn(), t.voltageHighWarn(),
                       t.voltageHighAlarm() };
     } },
   { "Tx bias", "mA", 3, true, &DomInfo::txBias, &DomCapabilities::txBias,
     []( DomThreshold const & t ) {
        return Limits{ t.txBiasLowAlarm(), t.txBiasLowWarn(), t.txBiasHighWarn(),
                       t.txBiasHighAlarm() };
     } },
   { "Tx power", "dBm", 2, true, &DomInfo::txPower, &DomCapabilities::txPower,
     []( DomThreshold const & t ) {
        return Limits{ t.txPowerLowAlarm(), t.txPowerLowWarn(), t.txPowerHighWarn(),
                       t.txPowerHighAlarm() };
     } },
   { "Rx power", "dBm", 2, true, &DomInfo::rxPower, &DomCapabilities::rxPower,
     []( DomThreshold const & t ) {
        return Limits{ t.rxPowerLowAlarm(), t.rxPowerLowWarn(), t.rxPowerHighWarn(),
                       t.rxPowerHighAlarm() };
     } },
   { "Total Rx power", "dBm", 2, true, &DomInfo::totalRxPower, &DomCapabilities::totalRxPower,
     []( DomThreshold const & t ) {
        return Limits{ t.totalRxPowerLowAlarm(), t.totalRxPowerLowWarn(), t.totalRxPowerHighWarn(),
                       t.totalRxPowerHighAlarm() };
     } },
};

/// In the order of EnhancedDomMonitor.
constexpr Monitor enhancedMonitors[] = {
   { "SNR", "dB", 2 },
   { "Residual ISI", "ps/nm", 2 },
   { "PAM4 transitions", "dB", 2 },
   { "Pre-FEC BER", "", scientific },
   { "Uncorrected BER", "", scientific },
   { "TEC current", "mA", 1 },
   { "Laser freq. error", "MHz", 0 },
   { "Laser temp. error", "°C", 2 },
};

/// Of all lanes together.
struct Aggregate {
   Monitor monitor;
   double ( Xcvr::DomAggPower::*value )() const;
};

constexpr Aggregate aggregates[] = {
   { { "Sum of Tx power", "dBm", 2, false, nullptr, &DomCapabilities::aggTxPower },
     &Xcvr::DomAggPower::aggTxPower },
   { { "Sum of Rx power", "dBm", 2, false, nullptr, &DomCapabilities::aggRxPower },
     &Xcvr::DomAggPower::aggRxPower },
};

/// A CFP monitors its network lanes, and an image may lack some tables of its monitors; null for
/// modules of the other families.
Xcvr::Cfp2NewStatus const * cfpStatus( XcvrNewStatus const & status ) {
   return dynamic_cast<Xcvr::Cfp2NewStatus const *>( &status );
}

/// Whether minus infinity is no light, and not a register that the image lacks. (A CFPx says its power
/// in dBm, and so never minus infinity.)
bool mayBeNoLight( XcvrNewStatus const & status, Monitor const & monitor, std::uint8_t lane ) {
   using Xcvr::CfpTable::access;
   Xcvr::Cfp2NewStatus const * cfp = cfpStatus( status );
   if ( !cfp ) {
      return true;
   }
   Xcvr::CfpMsaMisIdEepromContents const & contents = cfp->cfpMsaMisIdEepromContents();
   return !contents.isIn( Xcvr::cfpxModules ) &&
          ( ( monitor.value == &DomInfo::txPower && contents.holds( access( "txPower" ), lane ) ) ||
            ( monitor.value == &DomInfo::rxPower && contents.holds( access( "rxPower" ), lane ) ) );
}

constexpr Limits noLimits{ unreadable, unreadable, unreadable, unreadable };

Limits limitsIn( XcvrNewStatus const & status, DomThreshold const & threshold,
                 Monitor const & monitor ) {
   return status.domThresholdValid() ? monitor.limits( threshold ) : noLimits;
}

std::string laneLabel( Monitor const & monitor, unsigned lane, unsigned lanes ) {
   return lanes > 1 ? fmt::format( "{}, lane {}", monitor.label, lane + 1 )
                    : std::string( monitor.label );
}

} // namespace

bool Limits::areKnown() const {
   return std::isfinite( lowAlarm ) || std::isfinite( lowWarn ) || std::isfinite( highWarn ) ||
          std::isfinite( highAlarm );
}

bool Limits::areInOrder() const {
   return lowAlarm <= lowWarn && lowWarn <= highWarn && highWarn <= highAlarm;
}

Place Reading::place() const {
   // Limits that a module leaves unset are all the same.
   if ( !limits.areInOrder() || limits.lowAlarm == limits.highAlarm ) {
      return Place::unknown;
   }
   return value < limits.lowAlarm    ? Place::lowAlarm
          : value > limits.highAlarm ? Place::highAlarm
          : value < limits.lowWarn   ? Place::lowWarning
          : value > limits.highWarn  ? Place::highWarning
                                     : Place::normal;
}

std::string limitText( Monitor const & monitor, double limit ) {
   if ( monitor.decimals == scientific ) {
      return fmt::format( "{:.2e}", limit );
   }
   std::string const text = fmt::format( "{:.{}f}", limit, monitor.decimals );
   bool const isZero = text.find_first_not_of( "-0." ) == std::string::npos;
   return isZero && text.starts_with( '-' ) ? text.substr( 1 ) : text;
}

std::string Reading::valueText() const {
   std::string const text = fmt::format( "{}{}{}", limitText( *monitor, value ),
                                         monitor->unit.empty() ? "" : " ", monitor->unit );
   if ( monitor->unit != "dBm" ) {
      return text;
   }
   // Calibration can make any number of a power.
   double const milliwatts = Xcvr::dbmToWatts( value ) * 1000;
   return milliwatts < 1e4 ? fmt::format( "{:.4f} mW / {}", milliwatts, text )
                           : fmt::format( "{:.3g} mW / {}", milliwatts, text );
}

unsigned lanesOf( XcvrNewStatus const & status ) {
   Xcvr::Cfp2NewStatus const * cfp = cfpStatus( status );
   return std::max<unsigned>( cfp ? cfp->networkLanes() : status.capabilities().maxChannels(), 1 );
}

namespace {

void addAggregates( std::vector<Reading> & readings, XcvrNewStatus const & status ) {
   DomCapabilities const capabilities = status.domCapabilities();
   Xcvr::DomAggPower const power = status.domAggPower();
   for ( auto const & [monitor, value] : aggregates ) {
      if ( lanesOf( status ) > 1 && status.domInfoValid( Xcvr::LaneId() ) &&
           ( capabilities.*monitor.implemented )() ) {
         double const sum = ( power.*value )();
         if ( sum != unreadable || !cfpStatus( status ) ) {
            readings.push_back( { &monitor, std::string( monitor.label ), sum, noLimits } );
         }
      }
   }
}

Limits limitsOfSensor( XcvrNewStatus const & status, std::uint32_t index ) {
   Xcvr::EnhancedDomThreshold const limits = status.enhancedDomThreshold( index );
   return status.enhancedDomThresholdValid( index )
             ? Limits{ limits.lowAlarm(), limits.lowWarn(), limits.highWarn(), limits.highAlarm() }
             : noLimits;
}

/// Where the enhanced monitors measure, in their order.
std::vector<Xcvr::SensorCategory> sensorCategories( XcvrNewStatus const & status ) {
   using Categories = Xcvr::EnhancedDomSensorCategory;
   Categories const categories = status.enhancedDomSensorCategory();
   std::vector<Xcvr::SensorCategory> all;
   Categories::velFields( [&]( auto const &, auto field ) { all.push_back( categories.*field ); } );
   return all;
}

} // namespace

std::vector<EnhancedSensor> enhancedSensorsOf( XcvrNewStatus const & status ) {
   std::vector<Xcvr::SensorCategory> const categories = sensorCategories( status );
   std::vector<EnhancedSensor> sensors;
   for ( std::size_t i = 0; i < std::size( enhancedMonitors ); ++i ) {
      bool const isOfLane = categories[i] == Xcvr::SensorCategory::laneSensor;
      auto const id = static_cast<Xcvr::EnhancedDomMonitor>( i );
      for ( unsigned lane = 0; lane < ( isOfLane ? lanesOf( status ) : 1 ); ++lane ) {
         std::uint32_t const index =
            Xcvr::enhancedDomIndex( id, static_cast<std::uint8_t>( lane ) );
         bool const isRead = status.enhancedDomValuesValid( index );
         if ( isRead || status.enhancedDomThresholdValid( index ) ) {
            Monitor const & monitor = enhancedMonitors[i];
            sensors.push_back(
               { id,
                 isOfLane ? std::optional<unsigned>( lane ) : std::optional<unsigned>(),
                 { &monitor,
                   isOfLane ? laneLabel( monitor, lane, lanesOf( status ) )
                            : std::string( monitor.label ),
                   isRead ? status.enhancedDomValue( index ) : unreadable,
                   limitsOfSensor( status, index ) } } );
         }
      }
   }
   return sensors;
}

std::vector<Reading> readingsOf( XcvrNewStatus const & status, std::uint32_t missingLanes ) {
   DomCapabilities const capabilities = status.domCapabilities();
   DomThreshold const threshold = status.domThreshold();
   std::vector<Reading> readings;
   for ( Monitor const & monitor : monitors ) {
      Limits const limits = limitsIn( status, threshold, monitor );
      unsigned const lanes = monitor.perLane ? lanesOf( status ) : 1;
      for ( unsigned lane = 0; lane < lanes; ++lane ) {
         Xcvr::LaneId const id( static_cast<std::uint8_t>( lane ) );
         bool const isMissing = monitor.perLane && ( missingLanes >> lane & 1 );
         if ( isMissing || !status.domInfoValid( id ) ) {
            continue;
         }
         // No light is minus infinity, and so is a monitor that is not there.
         DomInfo const info = status.domInfo( id );
         double const value = ( info.*monitor.value )();
         bool const isCalibrated = info.calibration() != Xcvr::domCalibrationUnknown;
         if ( value != unreadable || ( isCalibrated && ( capabilities.*monitor.implemented )() &&
                                       mayBeNoLight( status, monitor, id.value() ) ) ) {
            readings.push_back( { &monitor, laneLabel( monitor, lane, lanes ), value, limits } );
         }
      }
   }
   addAggregates( readings, status );
   for ( EnhancedSensor & sensor : enhancedSensorsOf( status ) ) {
      if ( sensor.reading.value != unreadable ) {
         readings.push_back( std::move( sensor.reading ) );
      }
   }
   return readings;
}

std::vector<Reading> limitsOf( XcvrNewStatus const & status, DomThreshold const & threshold ) {
   std::vector<Reading> all;
   for ( Monitor const & monitor : monitors ) {
      Limits const limits = limitsIn( status, threshold, monitor );
      if ( limits.areKnown() ) {
         all.push_back( { &monitor, std::string( monitor.label ), unreadable, limits } );
      }
   }
   for ( EnhancedSensor const & sensor : enhancedSensorsOf( status ) ) {
      if ( sensor.reading.limits.areKnown() ) {
         all.push_back( sensor.reading );
         all.back().value = unreadable;
      }
   }
   return all;
}

std::string bar( Limits const & limits, double value ) {
   struct Zone {
      double from, to;
      std::size_t first, width;
   };
   Zone const zones[] = {
      { limits.lowAlarm, limits.lowWarn, 0, 3 },
      { limits.lowWarn, limits.highWarn, 3, 9 },
      { limits.highWarn, limits.highAlarm, 12, 3 },
   };
   std::string text = "--|---------|--";
   if ( value < limits.lowAlarm ) {
      text.front() = '<';
   } else if ( value > limits.highAlarm ) {
      text.back() = '>';
   }
   for ( Zone const & zone : zones ) {
      if ( !std::isfinite( zone.from ) || !std::isfinite( zone.to ) ) {
         return {};
      }
      if ( value >= zone.from && value <= zone.to && zone.from < zone.to ) {
         double const part = ( value - zone.from ) / ( zone.to - zone.from );
         auto const steps = static_cast<std::size_t>( part * static_cast<double>( zone.width ) );
         text[zone.first + std::min( steps, zone.width - 1 )] = '*';
         return text;
      }
   }
   return text;
}

namespace {

struct PlaceText {
   Place place;
   std::string_view text;
};

constexpr PlaceText placeTexts[] = {
   { Place::lowAlarm, "low alarm" },
   { Place::lowWarning, "low warning" },
   { Place::highWarning, "high warning" },
   { Place::highAlarm, "high alarm" },
};

std::string_view textOf( Place place ) {
   auto const found = std::ranges::find( placeTexts, place, &PlaceText::place );
   return found == std::end( placeTexts ) ? "" : found->text;
}

std::string emphasized( std::string const & text, Place place, Style const & style ) {
   switch ( place ) {
   case Place::lowAlarm:
   case Place::highAlarm:
      return style.alarm( text );
   case Place::lowWarning:
   case Place::highWarning:
      return style.warning( text );
   case Place::unknown:
   case Place::normal:
      break;
   }
   return text;
}

std::string limitColumns( std::string_view lowAlarm, std::string_view lowWarn,
                          std::string_view highWarn, std::string_view highAlarm ) {
   return fmt::format( "{:>10}{:>10}{:>10}{:>11}", lowAlarm, lowWarn, highWarn, highAlarm );
}

std::string tableLine( Reading const & reading, std::size_t labelWidth, Style const & style ) {
   Place const place = reading.place();
   Limits const & limits = reading.limits;
   std::string const value = fmt::format( "{:>22}", reading.valueText() );
   std::string line =
      fmt::format( "   {:{}} {}", reading.label, labelWidth, emphasized( value, place, style ) );
   auto const shown = [&]( double limit ) {
      return limits.areKnown() ? limitText( *reading.monitor, limit ) : "-";
   };
   line += limitColumns( shown( limits.lowAlarm ), shown( limits.lowWarn ),
                         shown( limits.highWarn ), shown( limits.highAlarm ) );
   bool const hasBar = style.terminal && place != Place::unknown;
   std::string last = hasBar ? bar( limits, reading.value ) : "";
   if ( last.empty() ) {
      last = textOf( place );
   }
   return line + ( last.empty() ? "" : "  " + emphasized( last, place, style ) ) + '\n';
}

} // namespace

std::string monitorTable( std::vector<Reading> const & readings, Style const & style ) {
   std::size_t labelWidth = std::string_view( "Monitor" ).size();
   for ( Reading const & reading : readings ) {
      labelWidth = std::max( labelWidth, reading.label.size() );
   }
   std::string text =
      style.heading( fmt::format( "   {:{}} {:>22}", "Monitor", labelWidth, "Value" ) +
                     limitColumns( "Low alarm", "Low warn", "High warn", "High alarm" ) ) +
      '\n';
   for ( Reading const & reading : readings ) {
      text += tableLine( reading, labelWidth, style );
   }
   return text;
}

} // namespace XcvrTool

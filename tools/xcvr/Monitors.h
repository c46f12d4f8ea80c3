#pragma once

#include "tools/xcvr/Text.h"

#include <Xcvr/XcvrStatus.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Monitored values between their limits.
namespace XcvrTool {

/// Limits in the unit of the value; minus infinity where there is none.
struct Limits {
   double lowAlarm, lowWarn, highWarn, highAlarm;

   /// Any of them can be read.
   [[nodiscard]] bool areKnown() const;
   [[nodiscard]] bool areInOrder() const;
};

/// Where a value stands. Unknown: there are no limits, or they leave no room between them.
enum class Place { unknown, lowAlarm, lowWarning, normal, highWarning, highAlarm };

/// As the decimals of a ratio that spans many powers of ten.
inline constexpr int scientific = -1;

/// One monitored quantity of a module. The functions are those of the quantities of DomInfo.
struct Monitor {
   std::string_view label;
   std::string_view unit;
   int decimals;
   bool perLane = false;
   double ( Xcvr::DomInfo::*value )() const = nullptr;
   bool ( Xcvr::DomCapabilities::*implemented )() const = nullptr;
   Limits ( *limits )( Xcvr::DomThreshold const & threshold ) = nullptr;
};

/// One value of it.
struct Reading {
   Monitor const * monitor;
   std::string label; // with the lane, if there are several
   double value;
   Limits limits;

   [[nodiscard]] Place place() const;
   /// With the unit; optical power in mW and in dBm.
   [[nodiscard]] std::string valueText() const;
};

/// Where a module has an enhanced monitor: on a lane or, without one, for all of the module.
struct EnhancedSensor {
   Xcvr::EnhancedDomMonitor monitor;
   std::optional<unsigned> lane;
   Reading reading; // the value minus infinity if it was not read
};

/// The enhanced monitors that a module gives, or whose limits it gives, by monitor and lane.
[[nodiscard]] std::vector<EnhancedSensor> enhancedSensorsOf( Xcvr::XcvrNewStatus const & status );

/// The number of lanes that have monitors of their own, counted from 0: at least one.
[[nodiscard]] unsigned lanesOf( Xcvr::XcvrNewStatus const & status );

/// The values that a module gives, lane by lane, or none. `missingLanes` has a bit for each lane
/// whose monitors mean nothing.
[[nodiscard]] std::vector<Reading> readingsOf( Xcvr::XcvrNewStatus const & status,
                                               std::uint32_t missingLanes = 0 );

/// The limits that a module gives, in the same shape; the values are minus infinity. Of the status's
/// own monitors they are those in `threshold`.
[[nodiscard]] std::vector<Reading> limitsOf( Xcvr::XcvrNewStatus const & status,
                                             Xcvr::DomThreshold const & threshold );

/// A number of the monitor's, without its unit.
[[nodiscard]] std::string limitText( Monitor const & monitor, double limit );

/// The values with their limits, a line each: on a terminal with a bar between the alarm limits.
[[nodiscard]] std::string monitorTable( std::vector<Reading> const & readings,
                                        Style const & style );

/// 15 characters: three for each zone between an alarm and its warning, nine between the warnings,
/// whatever their widths, and the value as "*". Empty where any limit is not known.
[[nodiscard]] std::string bar( Limits const & limits, double value );

} // namespace XcvrTool

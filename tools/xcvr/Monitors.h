#pragma once

#include "tools/xcvr/Text.h"

#include <Xcvr/XcvrStatus.h>

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

/// One monitored quantity of a module.
struct Monitor {
   std::string_view label;
   std::string_view unit;
   int decimals;
   bool perLane;
   double ( Xcvr::DomInfo::*value )() const;
   bool ( Xcvr::DomCapabilities::*implemented )() const;
   Limits ( *limits )( Xcvr::DomThreshold const & threshold );
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

/// The number of lanes that have monitors of their own, counted from 0: at least one.
[[nodiscard]] unsigned lanesOf( Xcvr::XcvrNewStatus const & status );

/// The values that a module gives, lane by lane, or none.
[[nodiscard]] std::vector<Reading> readingsOf( Xcvr::XcvrNewStatus const & status );

/// The limits that a module gives, in the same shape; the values are minus infinity.
[[nodiscard]] std::vector<Reading> limitsOf( Xcvr::XcvrNewStatus const & status );

/// A number of the monitor's, without its unit.
[[nodiscard]] std::string limitText( Monitor const & monitor, double limit );

/// The values with their limits, a line each: on a terminal with a bar between the alarm limits.
[[nodiscard]] std::string monitorTable( std::vector<Reading> const & readings,
                                        Style const & style );

/// 15 characters: three for each zone between an alarm and its warning, nine between the warnings,
/// whatever their widths, and the value as "*". Empty where any limit is not known.
[[nodiscard]] std::string bar( Limits const & limits, double value );

} // namespace XcvrTool

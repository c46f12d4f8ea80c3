// Monitored values between their limits, of slots of any family.
#include "tools/xcvr/Monitors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace XcvrTest {
namespace {

using ::testing::ElementsAre;
using XcvrTool::Limits;
using XcvrTool::Place;

constexpr double none = -std::numeric_limits<double>::infinity();

/// A module of two lanes, of which the second one has no light; its bias is not monitored.
class TwoLanes : public Xcvr::XcvrNewStatus {
 public:
   TwoLanes() : Xcvr::XcvrNewStatus( "slot", Xcvr::XcvrType::qsfpPlus ) {}

   Xcvr::Capabilities capabilities() const override {
      Xcvr::Capabilities two;
      two.maxChannelsIs( 2 );
      return two;
   }
   bool domInfoValid( Xcvr::LaneId ) const override { return true; }
   Xcvr::DomInfo domInfo( Xcvr::LaneId lane ) const override {
      double const power = lane.value() == 0 ? -3.5 : none;
      return { 1, Xcvr::domCalibrationInternal, -0.001, none, none, 0, power, none };
   }
   Xcvr::DomCapabilities domCapabilities() const override {
      return { true, false, false, true, true, false, false, false };
   }
   bool domThresholdValid() const override { return true; }
   Xcvr::DomThreshold domThreshold() const override {
      Xcvr::DomThreshold threshold;
      Xcvr::DomThreshold::velFields(
         [&]( auto const &, double Xcvr::DomThreshold::*limit ) { threshold.*limit = none; } );
      threshold.rxPowerLowAlarmIs( -12 );
      threshold.rxPowerLowWarnIs( -10 );
      threshold.rxPowerHighWarnIs( -4 );
      threshold.rxPowerHighAlarmIs( 2 );
      return threshold;
   }
};

TEST( Monitors, OfSeveralLanes ) {
   EXPECT_EQ( XcvrTool::monitorTable( XcvrTool::readingsOf( TwoLanes() ), {} ),
              R"(   Monitor                           Value Low alarm  Low warn High warn High alarm
   Temperature                     0.00 °C         -         -         -          -
   Tx power, lane 1   1.0000 mW / 0.00 dBm         -         -         -          -
   Tx power, lane 2   1.0000 mW / 0.00 dBm         -         -         -          -
   Rx power, lane 1  0.4467 mW / -3.50 dBm    -12.00    -10.00     -4.00       2.00  high warning
   Rx power, lane 2   0.0000 mW / -inf dBm    -12.00    -10.00     -4.00       2.00  low alarm
)" );
}

TEST( Monitors, WhereAValueStands ) {
   constexpr Limits limits{ 0, 10, 40, 50 };
   constexpr Limits unset{ 0, 0, 0, 0 };
   constexpr Limits disordered{ 0, 30, 20, 50 };
   constexpr Limits onlyHigh{ none, none, 40, 50 };
   struct {
      Limits limits;
      double value;
      Place place;
      char const * bar;
   } const cases[] = {
      { limits, -0.1, Place::lowAlarm, "<-|---------|--" },
      { limits, 0, Place::lowWarning, "*-|---------|--" }, // the limit itself is within
      { limits, 9.9, Place::lowWarning, "--*---------|--" },
      { limits, 25, Place::normal, "--|----*----|--" },
      { limits, 40, Place::normal, "--|--------*|--" },
      { limits, 45, Place::highWarning, "--|---------|*-" },
      { limits, 50, Place::highWarning, "--|---------|-*" },
      { limits, 51, Place::highAlarm, "--|---------|->" },
      { limits, none, Place::lowAlarm, "<-|---------|--" },
      { unset, 7, Place::unknown, nullptr },
      { disordered, 25, Place::unknown, nullptr },
      { onlyHigh, none, Place::normal, "" },
      { onlyHigh, 45, Place::highWarning, "" },
   };
   for ( auto const & row : cases ) {
      XcvrTool::Reading const reading{ nullptr, "", row.value, row.limits };
      EXPECT_EQ( reading.place(), row.place ) << row.value;
      if ( row.bar ) {
         EXPECT_EQ( XcvrTool::bar( row.limits, row.value ), row.bar ) << row.value;
      }
   }
}

} // namespace
} // namespace XcvrTest

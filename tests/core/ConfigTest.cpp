#include <Xcvr/Xcvr.h>

#include <gtest/gtest.h>

#include <limits>

using namespace Xcvr;

TEST( ConfigTest, NewSettingsHaveTheirDefaults ) {
   Vel::Ptr<Xgc> const xgc = xgcFactory( "xgc" );
   EXPECT_EQ( xgc->minimumTempHighAlarmThreshold().value(), 50.0 );
   EXPECT_EQ( xgc->alternateTempHighAlarmThreshold().value(), 63.0 );
   EXPECT_EQ( xgc->minimumTempHighWarnThreshold().value(), 45.0 );
   EXPECT_EQ( xgc->alternateTempHighWarnThreshold().value(), 58.0 );
   EXPECT_EQ( xgc->performanceMonitoringPeriod(), PerformanceMonitoringPeriodConfig( 900, "s" ) );
   EXPECT_EQ( xgc->targetTemperature100GEDwdm2().value(),
              -std::numeric_limits<double>::infinity() );
   XcvrConfig const config( "Ethernet1", 12.5 );
   EXPECT_EQ( config.initTime(), 12.5 );
   EXPECT_GT( XcvrConfig( "Ethernet2" ).initTime(), 1.6e9 ); // now
}

#pragma once

#include "tests/support/AllocationCount.h"

#include <Xcvr/XcvrDirs.h>
#include <Xcvr/XcvrStatus.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <type_traits>
#include <vector>

// What the tests of several families ask a status, and compare with.
namespace XcvrTest {

constexpr double unreadable = -std::numeric_limits<double>::infinity();

/// Of a power in 0.1 µW.
inline double dBm( double code ) {
   return 10 * std::log10( code * 1e-7 ) + 30;
}

/// The module came at 10 s; its thresholds were read at 15 s and its monitors at 20 s.
template <typename Status>
Vel::Ptr<Status> asRead( Vel::Ptr<Status> const & status ) {
   status->presenceIs( Xcvr::xcvrPresent );
   status->idEepromValidIs( true );
   status->lastPresenceChangeIs( 10 );
   status->lastDomUpdateTimeIs( 20 );
   status->lastDomThresholdsUpdateTimeIs( 15 );
   status->lastEnhancedDomUpdateTimeIs( 20 );
   status->lastEnhancedDomThresholdsUpdateTimeIs( 15 );
   return status;
}

/// The fields of a value that have one type, in their order.
template <typename Field, typename Value>
std::vector<Field> fieldsOf( Value const & value ) {
   std::vector<Field> result;
   Value::velFields( [&]( auto const &, auto field ) {
      if constexpr ( std::is_same_v<decltype( field ), Field Value::*> ) {
         result.push_back( value.*field );
      }
   } );
   return result;
}

/// Those that are measurements.
template <typename Value>
std::vector<double> doubles( Value const & value ) {
   return fieldsOf<double>( value );
}

/// Of a slot with monitors and thresholds of which all is valid, lane 0 at -12.5 °C: when they are not.
template <typename Status>
void expectValidOnceRead( std::function<Vel::Ptr<Status>()> const & inserted ) {
   struct {
      char const * what;
      std::function<void( Xcvr::XcvrNewStatus & )> change;
      bool info, thresholds;
   } const cases[] = {
      { "read", []( auto & ) {}, true, true },
      { "absent", []( auto & s ) { s.presenceIs( Xcvr::xcvrNotPresent ); }, false, false },
      { "unknown", []( auto & s ) { s.presenceIs( Xcvr::xcvrPresenceUnknown ); }, false, false },
      { "read before", []( auto & s ) { s.lastDomUpdateTimeIs( 10 ); }, false, true },
      { "never read", []( auto & s ) { s.lastDomThresholdsUpdateTimeIs( 0 ); }, true, false },
      { "unusable", []( auto & s ) { s.idEepromValidIs( false ); }, true, false } };
   for ( auto const & c : cases ) {
      SCOPED_TRACE( c.what );
      Vel::Ptr<Status> const status = inserted();
      c.change( *status );
      EXPECT_EQ( status->domInfoValid( Xcvr::LaneId() ), c.info );
      EXPECT_EQ( status->domThresholdValid(), c.thresholds );
      Xcvr::DomInfo const info = status->domInfo( Xcvr::LaneId() );
      EXPECT_EQ( info.updateTime(), c.info ? 20 : 0 );
      EXPECT_EQ( info.calibration(),
                 c.info ? Xcvr::domCalibrationInternal : Xcvr::domCalibrationUnknown );
      EXPECT_EQ( info.temperature(), c.info ? -12.5 : unreadable );
   }
}

/// Thresholds whose registers, in their order, hold what `code` has of 0 to 19: those of temperature
/// in 1/256 °C, voltage, Tx bias, and the powers.
template <typename Code>
void expectThresholds( Xcvr::DomThreshold const & thresholds, Code const & code ) {
   std::vector<double> const found = doubles( thresholds );
   ASSERT_EQ( found.size(), 24u );
   constexpr double units[] = { 1 / 256., 0.0001, 0.002 };
   for ( unsigned i = 0; i < 24; ++i ) {
      EXPECT_DOUBLE_EQ( found[i], i < 12   ? code( i ) * units[i / 4]
                                  : i < 20 ? dBm( code( i ) )
                                           : unreadable );
   }
}

/// Which rows of the operator's table apply to "Vendor", "PN-1", "SN-1".
template <typename Status>
void expectClosestOperatorThresholds( Status & status ) {
   Vel::Ptr<Xcvr::Xgc> const xgc = Xcvr::xgcFactory( "xgc" );
   Xcvr::DomThreshold const own = status.domThreshold();
   auto const rowIs = [&xgc]( char const * name, char const * vendor, char const * pn,
                              char const * sn, double power ) {
      using Row = Xcvr::DomThresholdOverride;
      Vel::Ptr<Row> const row = xgc->domThresholdOverrideDataIs( name );
      row->vendorNameIs( vendor );
      row->vendorPnIs( pn );
      row->vendorSnIs( sn );
      for ( auto const limitIs :
            { &Row::txPowerHighAlarmIs, &Row::txPowerLowAlarmIs, &Row::txPowerHighWarnIs,
              &Row::txPowerLowWarnIs, &Row::rxPowerHighAlarmIs, &Row::rxPowerLowAlarmIs,
              &Row::rxPowerHighWarnIs, &Row::rxPowerLowWarnIs } ) {
         ( ( *row ).*limitIs )( Units::Decibels( power-- ) );
      }
   };
   auto const inForce = [&status] { return status.domThresholdInForce().txPowerHighAlarm(); };

   status.domThresholdOverriddenIs( true );
   EXPECT_EQ( status.domThresholdInForce(), own ); // no table
   status.xgcIs( xgc );
   rowIs( "a", "", "", "", 1 );               // means no module
   rowIs( "b", "Vendor", "PN-2", "", 2 );     // another part
   rowIs( "c", "Vendor", "PN-1", "SN-2", 3 ); // another module of the part
   rowIs( "d", "Vend", "", "", 4 );           // another vendor
   EXPECT_EQ( status.domThresholdInForce(), own );
   // Padding does not count; of equals the first counts, by the bytes of their names.
   rowIs( "9", "Vendor  ", "", "", 6 );
   rowIs( "10", "Vendor", "", "", 5 );
   EXPECT_EQ( inForce(), 5 );
   rowIs( "g", "Vendor", "PN-1   ", "", 7 );
   EXPECT_EQ( inForce(), 7 );
   rowIs( "0", "Vendor          ", "PN-1", "SN-1", 8 );
   std::vector<double> expected = doubles( own );
   for ( unsigned i = 0; i < 8; ++i ) {
      expected[12 + i] = 8 - i;
   }
   EXPECT_EQ( doubles( status.domThresholdInForce() ), expected );
   EXPECT_EQ( status.domThreshold(), own );
   status.domThresholdOverriddenIs( false );
   EXPECT_EQ( status.domThresholdInForce(), own );
}

/// Nothing that is asked of a slot, by whoever knows its family or not, allocates.
inline void expectNoAllocation( Xcvr::XcvrNewStatus const & status ) {
   AllocationCount const allocations;
   static_cast<void>( status.vendorInfo() );
   static_cast<void>( status.mediaType() );
   static_cast<void>( status.domInfo( Xcvr::LaneId() ) );
   static_cast<void>( status.domThreshold() );
   static_cast<void>( status.domAggPower() );
   static_cast<void>( status.enhancedDomValue( 0 ) );
   EXPECT_EQ( allocations.calls(), 0u );
}

/// Contents of an active diagnostic override, of a vendor "Other", replace those of a vendor "Vendor",
/// and destroy nothing.
template <typename Config, typename Status, typename Contents>
void expectOverride( Status & status, Vel::Ptr<Config> const & config, Contents const & other ) {
   Contents actual = status.actualIdEepromContents();
   auto const vendor = [&status] { return status.vendorInfo().vendorName().substr( 0, 6 ); };
   status.xcvrConfigIs( config );
   auto const diag = config->diagConfigIs( "diag" );
   diag->overrideIdEepromContentsIs( other );
   EXPECT_EQ( vendor(), "Vendor" );
   diag->overrideIdEepromContentsActivationKeyIs( 0x5EA1F00D );
   EXPECT_EQ( vendor(), "Other " );
   EXPECT_EQ( status.detectedMediaType(), other.mediaType() );
   status.updateLastValidTime( 99 );
   actual.lastValidDataIs( 99 );
   EXPECT_EQ( status.actualIdEepromContents(), actual );
   diag->overrideIdEepromContentsActivationKeyIs( 0x5EA1F00C );
   EXPECT_EQ( vendor(), "Vendor" );
   diag->overrideIdEepromContentsActivationKeyIs( 0x5EA1F00D );
   EXPECT_EQ( vendor(), "Other " );
}

} // namespace XcvrTest

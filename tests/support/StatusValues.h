#pragma once

#include <Xcvr/XcvrStatus.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

// What the tests of several families ask a status, and compare with.
namespace XcvrTest {

constexpr double unreadable = -std::numeric_limits<double>::infinity();

/// Of a power in 0.1 µW.
inline double dBm( double code ) {
   return 10 * std::log10( code * 1e-7 ) + 30;
}

/// The module came at 10 s; its thresholds were read at 15 s and its monitors at 20 s.
inline void insert( Xcvr::XcvrNewStatus & status ) {
   status.presenceIs( Xcvr::xcvrPresent );
   status.idEepromValidIs( true );
   status.lastPresenceChangeIs( 10 );
   status.lastDomUpdateTimeIs( 20 );
   status.lastDomThresholdsUpdateTimeIs( 15 );
   status.lastEnhancedDomUpdateTimeIs( 20 );
   status.lastEnhancedDomThresholdsUpdateTimeIs( 15 );
}

/// Of a slot with monitors and thresholds of which all is valid, lane 0 at -12.5 °C: when they are not.
template <typename Status>
void expectValidOnceRead( std::function<Vel::Ptr<Status>()> const & inserted ) {
   struct Case {
      char const * what;
      std::function<void( Xcvr::XcvrNewStatus & )> change;
      bool info, thresholds;
   };
   Case const cases[] = {
      { "read", []( auto & ) {}, true, true },
      { "absent", []( auto & s ) { s.presenceIs( Xcvr::xcvrNotPresent ); }, false, false },
      { "unknown", []( auto & s ) { s.presenceIs( Xcvr::xcvrPresenceUnknown ); }, false, false },
      { "read before", []( auto & s ) { s.lastDomUpdateTimeIs( 10 ); }, false, true },
      { "never read", []( auto & s ) { s.lastDomThresholdsUpdateTimeIs( 0 ); }, true, false },
      { "unusable", []( auto & s ) { s.idEepromValidIs( false ); }, true, false } };
   for ( Case const & c : cases ) {
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

/// The fields of a value that are measurements, in their order.
template <typename Value>
std::vector<double> doubles( Value const & value ) {
   std::vector<double> result;
   Value::velFields( [&]( auto const &, auto field ) {
      if constexpr ( std::is_same_v<decltype( field ), double Value::*> ) {
         result.push_back( value.*field );
      }
   } );
   return result;
}

/// The names of a value's fields that are not 0 or false, each behind a prefix.
template <typename Value>
std::vector<std::string> fieldsSet( Value const & value, std::string const & prefix = "" ) {
   std::vector<std::string> result;
   Value::velFields( [&]( std::string_view label, auto field ) {
      if ( value.*field ) {
         size_t const from = label.find( '\'' ) + 1; // the label has the name in quotes
         result.push_back( prefix );
         result.back() += label.substr( from, label.rfind( '\'' ) - from );
      }
   } );
   return result;
}

} // namespace XcvrTest

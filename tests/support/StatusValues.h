#pragma once

#include <Xcvr/XcvrStatus.h>

#include <cmath>
#include <limits>
#include <vector>

// What tests of the families' statuses share.
namespace XcvrTest {

constexpr double unreadable = -std::numeric_limits<double>::infinity();

/// dBm of a power in 0.1 µW.
inline double dBm( double code ) {
   return 10 * std::log10( code * 1e-7 ) + 30;
}

/// The fields of a value that are doubles, in the order of their declaration.
template <typename Value>
std::vector<double> doubles( Value const & value ) {
   std::vector<double> result;
   Value::velFields( [&]( auto const &, auto Value::*field ) {
      if constexpr ( std::is_same_v<decltype( field ), double Value::*> ) {
         result.push_back( value.*field );
      }
   } );
   return result;
}

/// Does what an agent does when it has read a module's memory: at 20, of a module that came at 10.
template <typename Status>
Vel::Ptr<Status> asRead( Vel::Ptr<Status> const & status ) {
   status->presenceIs( Xcvr::xcvrPresent );
   status->idEepromValidIs( true );
   status->lastPresenceChangeIs( 10 );
   status->lastDomUpdateTimeIs( 20 );
   status->lastDomThresholdsUpdateTimeIs( 15 );
   return status;
}

} // namespace XcvrTest

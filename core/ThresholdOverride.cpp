#include "core/ThresholdOverride.h"

#include <string_view>

namespace Xcvr {
namespace {

/// Without the blanks, or zeros, that fill up a field of module memory.
std::string_view unpadded( std::string_view text ) {
   constexpr std::string_view padding( " \0", 2 );
   return text.substr( 0, text.find_last_not_of( padding ) + 1 );
}

/// How closely a row is meant for a module: 0 for not at all, the more the closer.
unsigned closeness( DomThresholdOverride const & row, VendorInfo const & vendor ) {
   struct Part {
      std::string_view wanted, actual;
      unsigned weight;
   };
   unsigned result = 0;
   for ( Part const & part : { Part{ row.vendorName(), vendor.vendorName(), 1 },
                               Part{ row.vendorPn(), vendor.vendorPn(), 2 },
                               Part{ row.vendorSn(), vendor.vendorSn(), 4 } } ) {
      std::string_view const wanted = unpadded( part.wanted );
      if ( wanted.empty() ) {
         continue;
      }
      if ( wanted != unpadded( part.actual ) ) {
         return 0;
      }
      result += part.weight;
   }
   return result;
}

} // namespace

Vel::Ptr<DomThresholdOverride const> closestThresholdOverride( Xgc const * global,
                                                               VendorInfo const & vendor ) {
   Vel::Ptr<DomThresholdOverride const> result;
   if ( global ) {
      unsigned closest = 0;
      for ( auto const & [name, row] : global->domThresholdOverrideDataMap() ) {
         unsigned const close = closeness( *row, vendor );
         if ( close > closest ) {
            closest = close;
            result = row;
         }
      }
   }
   return result;
}

DomThreshold withOverride( DomThreshold thresholds, DomThresholdOverride const & row ) {
   thresholds.txPowerHighAlarmIs( row.txPowerHighAlarm().value() );
   thresholds.txPowerLowAlarmIs( row.txPowerLowAlarm().value() );
   thresholds.txPowerHighWarnIs( row.txPowerHighWarn().value() );
   thresholds.txPowerLowWarnIs( row.txPowerLowWarn().value() );
   thresholds.rxPowerHighAlarmIs( row.rxPowerHighAlarm().value() );
   thresholds.rxPowerLowAlarmIs( row.rxPowerLowAlarm().value() );
   thresholds.rxPowerHighWarnIs( row.rxPowerHighWarn().value() );
   thresholds.rxPowerLowWarnIs( row.rxPowerLowWarn().value() );
   return thresholds;
}

} // namespace Xcvr

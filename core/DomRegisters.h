#pragma once

#include "core/DomCodes.h"
#include "core/DomNeutral.h"

#include <Xcvr/XcvrMemoryMap.h>
#include <Xcvr/XcvrTypes.h>

#include <cstdint>

// The monitoring registers of SFP and QSFP modules: two bytes each, known by the first one's address.
namespace Xcvr {

/// Decodes the registers of a module that calibrates its readings itself.
class DomRegisters {
 public:
   /// Of a module that does not monitor its Tx power that is unreadable, whatever the registers hold.
   explicit DomRegisters( PageView page, bool monitorsTxPower = true )
      : page_( page ), monitorsTxPower_( monitorsTxPower ) {}

   [[nodiscard]] double temperature( uint32_t at ) const {
      return DomCodes::temperature( page_.s16be( at ) );
   }
   [[nodiscard]] double voltage( uint32_t at ) const {
      return DomCodes::supplyVoltage( page_.u16be( at ) );
   }
   [[nodiscard]] double txBias( uint32_t at ) const {
      return DomCodes::txBias( page_.u16be( at ) );
   }
   [[nodiscard]] double txPower( uint32_t at ) const {
      return monitorsTxPower_ ? rxPower( at ) : unreadable;
   }
   [[nodiscard]] double rxPower( uint32_t at ) const {
      return DomCodes::power( page_.u16be( at ) );
   }
   [[nodiscard]] double rxPowerThreshold( uint32_t at ) const { return rxPower( at ); }

 private:
   PageView page_;
   bool monitorsTxPower_;
};

/// Where the thresholds of each monitor begin: four registers in the order of high alarm, low alarm,
/// high warning and low warning.
struct ThresholdRegisters {
   uint32_t temperature, voltage, txBias, txPower, rxPower;
};

// Inlined always, so that the addresses, and the length of a page that has a constant one, are known.
template <typename Decoder>
[[gnu::always_inline]] inline DomThreshold domThresholds( Decoder const & decode,
                                                          ThresholdRegisters const & at ) {
   return { decode.temperature( at.temperature ),
            decode.temperature( at.temperature + 2 ),
            decode.temperature( at.temperature + 4 ),
            decode.temperature( at.temperature + 6 ),
            decode.voltage( at.voltage ),
            decode.voltage( at.voltage + 2 ),
            decode.voltage( at.voltage + 4 ),
            decode.voltage( at.voltage + 6 ),
            decode.txBias( at.txBias ),
            decode.txBias( at.txBias + 2 ),
            decode.txBias( at.txBias + 4 ),
            decode.txBias( at.txBias + 6 ),
            decode.txPower( at.txPower ),
            decode.txPower( at.txPower + 2 ),
            decode.txPower( at.txPower + 4 ),
            decode.txPower( at.txPower + 6 ),
            decode.rxPowerThreshold( at.rxPower ),
            decode.rxPowerThreshold( at.rxPower + 2 ),
            decode.rxPowerThreshold( at.rxPower + 4 ),
            decode.rxPowerThreshold( at.rxPower + 6 ),
            unreadable,
            unreadable,
            unreadable,
            unreadable };
}

} // namespace Xcvr

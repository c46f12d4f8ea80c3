#pragma once

#include <Xcvr/XcvrStatus.h>

// Whether what a status holds was read from the module that is in the slot now.
namespace Xcvr {

/// The module is there, and its monitors were read, last at `updateTime`, after it came.
inline bool monitorsRead( XcvrNewStatus const & status, Vel::Seconds updateTime ) {
   return status.presence() == xcvrPresent && updateTime > status.lastPresenceChange();
}

/// The module is there, and its thresholds were read, last at `updateTime`; 0 for never. They are
/// constants of the module, which the agent reads with the identification memory: idEepromValid says
/// that this was done. What the agent can provide in general (xcvrMgrCapabilities) says nothing about
/// the module in the slot.
inline bool thresholdsRead( XcvrNewStatus const & status, Vel::Seconds updateTime ) {
   return status.presence() == xcvrPresent && updateTime > 0 && status.idEepromValid();
}

} // namespace Xcvr

#pragma once

#include <Statedb/Mount.h>
#include <Xcvr/XcvrApi.h>

namespace Xcvr {

/// What a process that reads transceiver status mounts.
class XCVR_API Mounter {
 public:
   /// Adds a mount of transceiver status to a group, and what every reader of status needs besides.
   static void doMountXcvrStatus( Vel::Ptr<Statedb::MountGroup> const & mountGroup,
                                  Vel::Ptr<Statedb::Mount> const & mount );
   /// Adds, for reading, the attenuation table to which status entities refer and the global
   /// configuration. What the group mounts there already stays.
   static void doMountXcvrStatusImplicits( Vel::Ptr<Statedb::MountGroup> const & mountGroup );
};

} // namespace Xcvr

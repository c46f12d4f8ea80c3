#pragma once

/// CFP2, CFPx and CFP2-DCO modules: their register tables and what they say, and the entities of their
/// slots.
#include <Xcvr/XcvrCfp2Contents.h>
#include <Xcvr/XcvrCfp2Status.h>
#include <Xcvr/XcvrCfpxTypes.h>

#pragma once

/// SFP and SFP+ modules: their memory and what it says, and the entities of their slots.
#include <Xcvr/XcvrSfpContents.h>
#include <Xcvr/XcvrSfpStatus.h>

#pragma once

/// QSFP, QSFP+ and QSFP28 modules: their memory and what it says, and the entities of their slots.
#include <Xcvr/XcvrQsfpContents.h>
#include <Xcvr/XcvrQsfpStatus.h>

#pragma once

/// OSFP and QSFP-DD modules (CMIS): their memory and what it says, their control sets, and the entities
/// of their slots.
#include <Xcvr/XcvrOsfpContents.h>
#include <Xcvr/XcvrOsfpControlSet.h>
#include <Xcvr/XcvrOsfpParser.h>
#include <Xcvr/XcvrOsfpStatus.h>

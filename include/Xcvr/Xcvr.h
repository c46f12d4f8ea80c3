#pragma once

/// The shared model of all module families: what is configured, what a slot's status says, and the
/// directories in which both are found.
#include <Xcvr/XcvrConfig.h>
#include <Xcvr/XcvrDirs.h>
#include <Xcvr/XcvrMediaTypes.h>
#include <Xcvr/XcvrOptics.h>
#include <Xcvr/XcvrStatus.h>
#include <Xcvr/XcvrTypes.h>

#pragma once

#include "tools/xcvr/Module.h"

namespace XcvrTool {

/// The SFP, SFP+ or SFP28 module in an image (SFF-8472).
[[nodiscard]] std::unique_ptr<Module> sfpModule( ModuleImage image );

} // namespace XcvrTool

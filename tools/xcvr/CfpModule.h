#pragma once

#include "tools/xcvr/Module.h"

namespace XcvrTool {

/// The CFP2, CFPx or CFP2-DCO module in an image (CFP MSA management interface specification).
[[nodiscard]] std::unique_ptr<Module> cfpModule( ModuleImage image );

} // namespace XcvrTool

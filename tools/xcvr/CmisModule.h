#pragma once

#include "tools/xcvr/Module.h"

namespace XcvrTool {

/// The OSFP or QSFP-DD module in an image (CMIS).
[[nodiscard]] std::unique_ptr<Module> cmisModule( ModuleImage image );

} // namespace XcvrTool

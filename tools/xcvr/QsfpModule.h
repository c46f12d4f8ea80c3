#pragma once

#include "tools/xcvr/Module.h"

namespace XcvrTool {

/// The QSFP, QSFP+ or QSFP28 module in an image (SFF-8636, and SFF-8436 before it).
[[nodiscard]] std::unique_ptr<Module> qsfpModule( ModuleImage image );

} // namespace XcvrTool

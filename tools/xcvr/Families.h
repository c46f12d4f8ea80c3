#pragma once

#include "tools/xcvr/Module.h"

// The module in an image, family by family.
namespace XcvrTool {

/// SFP, SFP+ and SFP28 (SFF-8472).
[[nodiscard]] std::unique_ptr<Module> sfpModule( ModuleImage image );
/// QSFP, QSFP+ and QSFP28 (SFF-8636, and SFF-8436 before it).
[[nodiscard]] std::unique_ptr<Module> qsfpModule( ModuleImage image );
/// QSFP-DD and OSFP (CMIS).
[[nodiscard]] std::unique_ptr<Module> cmisModule( ModuleImage image );
/// CFP2, CFPx and CFP2-DCO (CFP MSA).
[[nodiscard]] std::unique_ptr<Module> cfpModule( ModuleImage image );

} // namespace XcvrTool

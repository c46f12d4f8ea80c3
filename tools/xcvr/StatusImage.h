#pragma once

#include "tools/xcvr/ModuleImage.h"

#include <Xcvr/XcvrStatus.h>

#include <string>

namespace XcvrTool {

/// The image of the module in a slot whose status may come from another process: the pages that the
/// status holds, of all families that the tool reads. Throws ImageError, with the slot's name, for
/// those of other families and for pages that do not tell what the module is.
[[nodiscard]] ModuleImage imageOf( Xcvr::XcvrNewStatus const & status );

/// The module in one line: media type, maker, part and serial number.
[[nodiscard]] std::string moduleSummary( Xcvr::XcvrNewStatus const & status );

} // namespace XcvrTool

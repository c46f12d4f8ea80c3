#pragma once

#include "tools/xcvr/ModuleImage.h"
#include "tools/xcvr/Report.h"

#include <Xcvr/XcvrSfpPlus.h>

namespace XcvrTool {

/// The library's view of the memory of an SFP module.
[[nodiscard]] Xcvr::XcvrSff8472IdEepromContents sfpContents( ModuleImage const & image );

/// Identity, medium, features and checksums of an SFP module.
[[nodiscard]] Report sfpReport( ModuleImage const & image );

/// The part of it that tells what kind of module it is, whichever of its items, and what the
/// rules for the media type read beside it.
[[nodiscard]] Report sfpKindReport( ModuleImage const & image );

} // namespace XcvrTool

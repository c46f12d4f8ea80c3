#pragma once

#include "tools/xcvr/ModuleImage.h"
#include "tools/xcvr/Report.h"

#include <string>

// What each command says about one module.
namespace XcvrTool {

/// `xcvr show`: the decoded module.
[[nodiscard]] std::string showText( ModuleImage const & image, Style const & style );
/// The same as an object, with the units of its numbers in an object of the same shape.
[[nodiscard]] Json showJson( ModuleImage const & image, Json & units );

/// `xcvr hexdump`: every byte of the image, with the fields that it belongs to.
[[nodiscard]] std::string hexdumpText( ModuleImage const & image, Style const & style );

/// `xcvr explain`: how the media type was found.
[[nodiscard]] std::string explainText( ModuleImage const & image, Style const & style );

} // namespace XcvrTool

#pragma once

#include "tools/xcvr/Module.h"
#include "tools/xcvr/Report.h"

#include <string>

// What each command says.
namespace XcvrTool {

/// `xcvr show`: the decoded module.
[[nodiscard]] std::string showText( Module const & module, Style const & style );
/// The same as an object, with the units of its numbers in an object of the same shape.
[[nodiscard]] Json showJson( Module const & module, Json & units );

/// `xcvr hexdump`: every byte of the image, with the fields that it belongs to.
[[nodiscard]] std::string hexdumpText( Module const & module, Style const & style );

/// `xcvr explain`: how the media type was found.
[[nodiscard]] std::string explainText( Module const & module, Style const & style );

/// `xcvr check`: what is wrong, a line each, with the file's name in front; nothing if all is well.
[[nodiscard]] std::string checkText( Module const & module, Style const & style );
[[nodiscard]] Json checkJson( Module const & module, Json & units );
[[nodiscard]] bool hasFindings( Module const & module );

/// `xcvr media-types`: every media type that the library knows, whatever the module.
[[nodiscard]] std::string mediaTypesText( Style const & style );
[[nodiscard]] Json mediaTypesJson();

} // namespace XcvrTool

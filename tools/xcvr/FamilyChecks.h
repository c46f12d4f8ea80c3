#pragma once

#include "tools/xcvr/Module.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// What `check` finds in every family whose memory is a lower page and upper pages.
namespace XcvrTool {

/// A sentence for a page that the module has, if the image lacks it or has a part of it only.
void findMissingPage( std::vector<std::string> & found, Module const & module,
                      std::string_view label, std::string_view contents );

/// A sentence if byte 0 and byte 128, which both have the identifier, differ.
[[nodiscard]] std::vector<std::string> ofTwoIdentifiers( Module const & module );

inline constexpr std::string_view missingPageAdvice =
   "Read all pages of the module; many drivers give the first ones only.";
inline constexpr Check identifierCopyCheck = {
   "identifier-copy", ofTwoIdentifiers,
   "Read the module again; if it stays so, programs may take it for one kind or the other." };

} // namespace XcvrTool

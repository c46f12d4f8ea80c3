#pragma once

#include <Xcvr/XcvrTypes.h>

#include <cstddef>
#include <string_view>

namespace Xcvr {

/// One rule of a module family's media type decision. The rules are tried in order; the first that
/// matches decides, and the last one always matches.
struct MediaTypeRule {
   std::string_view why; // what a module has that the rule matches
   MediaType mediaType;
};

/// The outcome of a media type decision.
struct MediaTypeDecision {
   MediaType mediaType;
   std::size_t rule; // index of the rule that matched
   std::string_view why;
};

} // namespace Xcvr

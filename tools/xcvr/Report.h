#pragma once

#include "tools/xcvr/Text.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace XcvrTool {

using Json = nlohmann::ordered_json;

/// One fact about a module, for both forms of output.
struct Fact {
   std::string member = {}; // where JSON has it: "vendorInfo/vendorName"; empty: nowhere
   Json value = {};         // in JSON
   std::string unit = {};   // of the value in JSON; empty for none
   std::string label = {};  // in text; empty for what text leaves out
   std::string text = {};   // the value as text, with its unit
   bool alarming = false;
};

/// What is to say about one module, in the order in which it is said.
using Report = std::vector<Fact>;

/// The labelled facts, a line each or more; the labels are aligned.
[[nodiscard]] std::string textForm( Report const & report, Style const & style );

/// Adds the facts to the object of a module, and their units to an object of the same shape.
void addJson( Report const & report, Json & module, Json & units );

} // namespace XcvrTool

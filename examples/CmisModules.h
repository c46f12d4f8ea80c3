#pragma once

#include "tests/support/CmisImageBuilder.h"

#include <vector>

/// An example of an OSFP or QSFP-DD module.
struct CmisExample {
   char const * name;
   char const * about;
   XcvrTest::CmisImageBuilder module;
};

/// The modules and their vendors are invented.
[[nodiscard]] std::vector<CmisExample> cmisExamples();

#pragma once

#include "sandbox/Http.h"

namespace velmora::sandbox {

/// What is wrong, in words, with the query of a VAST URL as the library makes it; nothing when all is well.
[[nodiscard]] std::vector<std::string> vastProblems(const Request& request);

}  // namespace velmora::sandbox

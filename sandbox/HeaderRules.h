#pragma once

#include "sandbox/Http.h"

namespace velmora::sandbox {

/// What is wrong, in words, with the headers that the library puts on its calls; nothing when all is well.
[[nodiscard]] std::vector<std::string> headerProblems(const Fields& headers);

/// The token of a well-formed "authorization" header.
[[nodiscard]] std::optional<std::string> bearerToken(const Fields& headers);

}  // namespace velmora::sandbox

#pragma once

#include "sandbox/Http.h"

namespace velmora::sandbox {

/// What is wrong, in words, with what tells of the library, the device and the user; nothing when all is
/// well.
[[nodiscard]] std::vector<std::string> identityProblems(const Fields& headers);

/// What is wrong with the headers that the library puts on its calls: these, and those of any JSON exchange.
[[nodiscard]] std::vector<std::string> headerProblems(const Fields& headers);

/// The token of a well-formed "authorization" header.
[[nodiscard]] std::optional<std::string> bearerToken(const Fields& headers);

}  // namespace velmora::sandbox

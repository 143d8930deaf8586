#pragma once

#include "sandbox/Http.h"

#include <string>
#include <vector>

namespace velmora::sandbox {

/// Answers as Nominatim's reverse geocoding does: the place that lies within a degree of the position, out of
/// a few that were made up; or that there is none.
[[nodiscard]] Response reverseGeocoded(const Request& request);

/// What is wrong, in words, with the question.
[[nodiscard]] std::vector<std::string> geocodingProblems(const Request& request);

}  // namespace velmora::sandbox

#pragma once

#include <string>
#include <vector>

#include <boost/json.hpp>

namespace velmora::sandbox {

/// What is wrong, in words, with the body that asks for suggestions; nothing when all is well.
[[nodiscard]] std::vector<std::string> suggestionBodyProblems(const boost::json::object& body);

}  // namespace velmora::sandbox

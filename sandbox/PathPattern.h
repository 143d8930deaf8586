#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::sandbox {

/// What stands in the path where the pattern has names in braces, each of which takes one part that is not
/// empty; absent when the path is another one. A slash at the end counts.
[[nodiscard]] std::optional<std::vector<std::string>> match(std::string_view pattern, std::string_view path);

}  // namespace velmora::sandbox

#pragma once

#include <optional>
#include <string_view>

namespace velmora::sandbox {

/// One of the HTML pages that are built into the service.
[[nodiscard]] std::optional<std::string_view> pageNamed(std::string_view name);

}  // namespace velmora::sandbox

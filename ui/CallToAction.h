#pragma once

#include <optional>
#include <string>

namespace velmora {

/// The URL that a page's "open" command asks for: `type` says how `target` and `description` make it. Absent
/// where there is nothing to open.
[[nodiscard]] std::optional<std::string> callToActionUrl(const std::optional<std::string>& type,
                                                         const std::optional<std::string>& target,
                                                         const std::optional<std::string>& description);

}  // namespace velmora

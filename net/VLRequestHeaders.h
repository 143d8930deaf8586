#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velmora {

/// Header names and values, in the order in which they were set.
using VLHeaders = std::vector<std::pair<std::string, std::string>>;

/// The headers that tell the service which library, application, device and user speaks. Any thread; every
/// call reads the current values.
class VLRequestHeaders {
public:
    VLRequestHeaders() = delete;

    /// An entry whose source has no value is missing, never empty.
    [[nodiscard]] static VLHeaders getHeaders();

    /// A checksum of the text, in decimal: the sum of its UTF-16 code units, and of the values of its digits
    /// once more. "0" for an absent text.
    [[nodiscard]] static std::string randomIntForString(const std::optional<std::string>& string);

    /// "none", "data" (cellular) or "wifi" (any other link), as the machine's routes tell. Sends nothing.
    [[nodiscard]] static std::string connectionType();
};

}  // namespace velmora

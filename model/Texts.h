#pragma once

#include "platform/Value.h"

#include <optional>
#include <string>
#include <vector>

namespace velmora {

/// The texts of an array, without what else is in it; absent when the property is none.
[[nodiscard]] std::optional<std::vector<std::string>> textsOf(const platform::Property& list);

/// "name=value" for each entry, joined by "&", as they stand.
[[nodiscard]] std::string queryTextOf(const platform::Dictionary& params);

}  // namespace velmora

#pragma once

#include "sandbox/Http.h"

namespace velmora::sandbox {

/// A file of the folder, whole or the part that a "range" header asks for.
[[nodiscard]] Response mediaFile(const std::filesystem::path& folder, const std::string& name,
                                 const std::optional<std::string>& range);

}  // namespace velmora::sandbox

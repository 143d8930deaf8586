#pragma once

#include <optional>
#include <string>

namespace velmora::webpage {

/// The engine ends the process, or never draws, where one of its conditions does not hold. This looks first:
/// the reason, or none when the engine can start. Looks again on every call, until it has found no reason.
[[nodiscard]] std::optional<std::string> whyTheEngineCannotStart();

}  // namespace velmora::webpage

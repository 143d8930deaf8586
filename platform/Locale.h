#pragma once

#include <string>
#include <vector>

namespace velmora::platform {

/// The languages that the user prefers, the first one most, as language tags (RFC 5646, "fa-IR"): those of
/// LANGUAGE, then that of LC_ALL, LC_MESSAGES or LANG, each followed by what it is a variant of. Empty where
/// the session has none, or only that of the C standard. Any thread.
[[nodiscard]] std::vector<std::string> preferredLanguages();

}  // namespace velmora::platform

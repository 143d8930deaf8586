#pragma once

#include "sandbox/Zones.h"

#include <string>

namespace velmora::sandbox {

/// A VAST document with one linear ad, the zone's first video; with no ad for a zone that has none. Every URL
/// in it begins with `origin`.
[[nodiscard]] std::string vastDocument(const Zone& zone, const std::string& origin,
                                       const std::string& suggestionId);

}  // namespace velmora::sandbox

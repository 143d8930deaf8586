#pragma once

#include "sandbox/Zones.h"

#include <string>

namespace velmora::sandbox {

/// What a VAST document is made of.
struct VastAd {
    const Zone& zone;
    /// Every URL in it begins with this.
    std::string origin;
    std::string suggestionId;
    /// Whether the viewer may skip the ad, if its zone says from where on.
    bool maySkip = true;
};

enum class VastVersion { v2, v3 };

/// A VAST document with one linear ad, the zone's first video; with no ad for a zone that has none. An ad
/// that may be skipped is beyond VAST 2.0.
[[nodiscard]] std::string vastDocument(const VastAd& ad, VastVersion version);

}  // namespace velmora::sandbox

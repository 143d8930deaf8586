#pragma once

#include <string>

namespace velmora {

/// How this library was built, as the service is told.
class VLBuildVariants {
public:
    VLBuildVariants() = delete;

    [[nodiscard]] static std::string getDevelopmentPlatformName();
    /// The library's version.
    [[nodiscard]] static std::string getVersion();
};

}  // namespace velmora

#pragma once

#include <string>

namespace velmora {

/// How this library was built, as the service is told.
class VLBuildVariants {
public:
    VLBuildVariants() = delete;

    [[nodiscard]] static std::string getDevelopmentPlatformName();
};

}  // namespace velmora

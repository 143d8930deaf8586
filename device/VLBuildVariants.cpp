#include "device/VLBuildVariants.h"

namespace velmora {

std::string VLBuildVariants::getDevelopmentPlatformName() { return "Xcode"; }

std::string VLBuildVariants::getVersion() { return VELMORA_VERSION; }

}  // namespace velmora

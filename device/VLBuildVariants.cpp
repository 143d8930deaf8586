#include "device/VLBuildVariants.h"

namespace velmora {

std::string VLBuildVariants::getDevelopmentPlatformName() { return "Xcode"; }

}  // namespace velmora

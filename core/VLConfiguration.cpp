#include <velmora/VLConfiguration.h>

#include <utility>

namespace velmora {

void VLConfiguration::setDebugMode(bool debugMode) { mDebugMode = debugMode; }

bool VLConfiguration::isDebugMode() const { return mDebugMode.value_or(false); }

void VLConfiguration::setAppUserId(std::optional<std::string> appUserId) {
    mAppUserId = std::move(appUserId);
}

std::optional<std::string> VLConfiguration::appUserId() const { return mAppUserId; }

}  // namespace velmora

#include <velmora/VLConfiguration.h>

#include "model/AtomicProperty.h"

#include <utility>

namespace velmora {

class VLConfigurationState {
public:
    AtomicProperty<std::optional<bool>> debugMode;
    AtomicProperty<std::optional<std::string>> appUserId;
};

VLConfiguration::VLConfiguration() : state_(std::make_unique<VLConfigurationState>()) {}

VLConfiguration::~VLConfiguration() = default;

void VLConfiguration::setDebugMode(bool debugMode) { setMDebugMode(debugMode); }

bool VLConfiguration::isDebugMode() const { return mDebugMode().value_or(false); }

void VLConfiguration::setMDebugMode(std::optional<bool> debugMode) { state_->debugMode.set(debugMode); }

std::optional<bool> VLConfiguration::mDebugMode() const { return state_->debugMode.get(); }

void VLConfiguration::setAppUserId(std::optional<std::string> appUserId) {
    state_->appUserId.set(std::move(appUserId));
}

std::optional<std::string> VLConfiguration::appUserId() const { return state_->appUserId.get(); }

void VLConfiguration::setMAppUserId(std::optional<std::string> appUserId) {
    setAppUserId(std::move(appUserId));
}

std::optional<std::string> VLConfiguration::mAppUserId() const { return appUserId(); }

}  // namespace velmora

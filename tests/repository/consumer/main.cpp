#include <cstring>
#include <optional>

#include <velmora/velmora.h>

int main() {
    auto options = std::make_shared<velmora::VLAdShowOptions>();
    options->setBackDisabled(velmora::TYPE_DISABLE_BACK);
    velmora::Velmora::initializeWithAppKey(nullptr);
    velmora::VLLog("%@ %d %s", std::optional<std::string>(), 1, "one");

    int errors = 0;
    velmora::Velmora::requestAdForZone(
        "zone", [](const auto&) {}, [] {}, [&](const std::string&) { ++errors; }, [](const auto&) {});

    const bool right = velmora::Velmora::getVersion() == "3.0.0" && options->getBackDisabled() &&
                       velmora::VelmoraSDKv3VersionNumber == 1.0 &&
                       std::strstr(velmora::VelmoraSDKv3VersionString, "VelmoraSDKv3-1\n") != nullptr;
    return right ? 0 : 1;
}

#include "ui/CallToAction.h"

#include "platform/UrlText.h"
#include "platform/Value.h"

namespace velmora {

namespace {

constexpr const char* kMarketPage = "itms-apps://apps.apple.com/app/id";

std::string textMessage(const std::string& number, const std::optional<std::string>& body) {
    auto url = "sms:" + number;
    if (body) url.append("&body=").append(*body);
    return platform::percentEncoded(url, platform::UrlCharacters::hostAllowed);
}

}  // namespace

std::optional<std::string> callToActionUrl(const std::optional<std::string>& type,
                                           const std::optional<std::string>& target,
                                           const std::optional<std::string>& description) {
    const auto named = platform::formatted(target);
    if (type == "market") return kMarketPage + named;
    if (type == "sms") return textMessage(named, description);
    if (type == "tel") return "tel://" + named;
    // "web", no type, and every other one: the target is the URL.
    return target;
}

}  // namespace velmora

#include "platform/UrlText.h"

#include <boost/url.hpp>

namespace velmora::platform {

namespace {

namespace urls = boost::urls;

constexpr urls::grammar::lut_chars
    kUnreservedAndSubDelims("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~!$&'()*+,;=");
constexpr auto kQueryAllowed = kUnreservedAndSubDelims + urls::grammar::lut_chars(":@/?");
constexpr auto kHostAllowed = kUnreservedAndSubDelims + urls::grammar::lut_chars(":[]");

}  // namespace

std::string percentEncoded(std::string_view text, UrlCharacters allowed) {
    const auto& unchanged = allowed == UrlCharacters::queryAllowed ? kQueryAllowed : kHostAllowed;
    return urls::encode({text.data(), text.size()}, unchanged);
}

bool isUrl(std::string_view text) {
    return !text.empty() && urls::parse_uri_reference({text.data(), text.size()}).has_value();
}

std::optional<std::vector<UrlQueryItem>> queryItems(std::string_view url) {
    const auto parsed = urls::parse_uri_reference({url.data(), url.size()});
    if (!parsed || !parsed->has_query()) return std::nullopt;

    std::vector<UrlQueryItem> items;
    for (const auto& pair : parsed->encoded_params()) {
        auto& item = items.emplace_back();
        item.name = pair.key.decode();
        if (pair.has_value) item.value = pair.value.decode();
    }
    return items;
}

}  // namespace velmora::platform

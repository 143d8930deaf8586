#include "platform/UrlText.h"

#include <algorithm>

#include <boost/url.hpp>

namespace velmora::platform {

namespace {

namespace urls = boost::urls;

constexpr urls::grammar::lut_chars
    kUnreservedAndSubDelims("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~!$&'()*+,;=");
constexpr auto kQueryAllowed = kUnreservedAndSubDelims + urls::grammar::lut_chars(":@/?");
constexpr auto kHostAllowed = kUnreservedAndSubDelims + urls::grammar::lut_chars(":[]");
constexpr auto kSchemeCharacters = urls::grammar::alnum_chars + urls::grammar::lut_chars("+-.");

/// Browsers leave brackets in a query as they are, where RFC 3986 has none.
std::string withBracketsEncoded(std::string_view url) {
    std::string text(url.substr(0, url.find('?')));
    for (const char c : url.substr(text.size())) {
        if (c == '[' || c == ']') {
            text += c == '[' ? "%5B" : "%5D";
        } else {
            text += c;
        }
    }
    return text;
}

}  // namespace

std::string percentEncoded(std::string_view text, UrlCharacters allowed) {
    const auto& unchanged = allowed == UrlCharacters::queryAllowed ? kQueryAllowed : kHostAllowed;
    return urls::encode({text.data(), text.size()}, unchanged);
}

bool isUrl(std::string_view text) {
    return !text.empty() && urls::parse_uri_reference({text.data(), text.size()}).has_value();
}

std::string_view urlScheme(std::string_view url) {
    const auto scheme = url.substr(0, std::min(url.find(':'), url.size()));
    const bool ends = scheme.size() < url.size();
    const bool isScheme = !scheme.empty() && urls::grammar::alpha_chars(scheme.front()) &&
                          std::all_of(scheme.begin(), scheme.end(), kSchemeCharacters);
    return ends && isScheme ? scheme : std::string_view();
}

std::optional<std::string_view> urlHost(std::string_view url) {
    const auto scheme = urlScheme(url);
    if (scheme.empty()) return std::nullopt;
    auto rest = url.substr(scheme.size() + 1);
    if (!rest.starts_with("//")) return std::nullopt;
    rest.remove_prefix(2);

    auto authority = rest.substr(0, std::min(rest.find_first_of("/?#"), rest.size()));
    if (const auto user = authority.rfind('@'); user != std::string_view::npos)
        authority.remove_prefix(user + 1);
    // An address in brackets has colons of its own.
    const auto port = authority.find(':', authority.starts_with('[') ? authority.find(']') : 0);
    return authority.substr(0, std::min(port, authority.size()));
}

std::optional<std::vector<UrlQueryItem>> queryItems(std::string_view url) {
    const auto text = withBracketsEncoded(url);
    const auto parsed = urls::parse_uri_reference(text);
    if (!parsed || !parsed->has_query()) return std::nullopt;

    std::vector<UrlQueryItem> items;
    for (const auto& pair : parsed->encoded_params()) {
        auto& item = items.emplace_back();
        item.name = pair.key.decode();
        if (pair.has_value) item.value = pair.value.decode();
    }
    return items;
}

std::string encodedQuery(const std::vector<UrlQueryItem>& items) {
    std::string query;
    for (const auto& item : items) {
        if (!query.empty()) query += '&';
        query += percentEncoded(item.name, UrlCharacters::queryAllowed);
        if (item.value) query.append(1, '=').append(percentEncoded(*item.value, UrlCharacters::queryAllowed));
    }
    return query;
}

}  // namespace velmora::platform

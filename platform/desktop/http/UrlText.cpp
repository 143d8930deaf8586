#include "platform/UrlText.h"

#include "platform/Utf8.h"

#include <memory>

#include <boost/algorithm/string/split.hpp>
#include <glib.h>

namespace velmora::platform {

namespace {

/// All that RFC 3986 has, the percent sign included.
constexpr std::string_view kUrlCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~:/?#[]@!$&'()*+,;=%";

struct Free {
    void operator()(char* text) const noexcept { g_free(text); }
};

using Text = std::unique_ptr<char, Free>;

/// Its query as it is written, null where it has none; absent where it is no URL.
std::optional<Text> queryOf(std::string_view url) {
    if (url.empty() || url.find_first_not_of(kUrlCharacters) != std::string_view::npos) return std::nullopt;
    char* query = nullptr;
    if (g_uri_split(std::string(url).c_str(), G_URI_FLAGS_ENCODED, nullptr, nullptr, nullptr, nullptr,
                    nullptr, &query, nullptr, nullptr) == 0)
        return std::nullopt;
    return Text(query);
}

std::optional<std::string> decoded(std::string_view part) {
    // Nothing comes back when a zero byte is in it.
    const Text text(g_uri_unescape_segment(part.data(), part.data() + part.size(), nullptr));
    return text && isUtf8(text.get()) ? std::optional<std::string>(text.get()) : std::nullopt;
}

}  // namespace

std::string percentEncoded(std::string_view text, UrlCharacters allowed) {
    const char* const reserved =
        allowed == UrlCharacters::queryAllowed ? "!$&'()*+,;=:@/?" : "!$&'()*+,;=:[]";
    std::string encoded;
    // GLib leaves a zero byte as it is, and its text ends there.
    for (auto end = text.find('\0');; end = text.find('\0')) {
        const std::string part(text.substr(0, end));
        const auto* bytes = reinterpret_cast<const guint8*>(part.c_str());
        encoded += Text(g_uri_escape_bytes(bytes, part.size(), reserved)).get();
        if (end == std::string_view::npos) return encoded;
        encoded += "%00";
        text.remove_prefix(end + 1);
    }
}

bool isUrl(std::string_view text) { return queryOf(text).has_value(); }

std::string urlScheme(std::string_view url) {
    const Text scheme(g_uri_parse_scheme(std::string(url).c_str()));
    return scheme ? scheme.get() : std::string();
}

std::optional<std::string_view> urlHost(std::string_view url) {
    // GLib's own function decodes the host, and has none for a URL that is broken elsewhere.
    const auto scheme = urlScheme(url);
    if (scheme.empty()) return std::nullopt;
    auto rest = url.substr(scheme.size() + 1);
    if (!rest.starts_with("//")) return std::nullopt;
    rest.remove_prefix(2);

    auto authority = rest.substr(0, rest.find_first_of("/?#"));
    if (const auto user = authority.rfind('@'); user != std::string_view::npos)
        authority.remove_prefix(user + 1);
    // An address in brackets has colons of its own.
    return authority.substr(0, authority.find(':', authority.starts_with('[') ? authority.find(']') : 0));
}

std::optional<std::vector<UrlQueryItem>> queryItems(std::string_view url) {
    const auto query = queryOf(url);
    if (!query || !*query) return std::nullopt;

    const std::string_view text(query->get());
    std::vector<std::string> pairs;
    boost::algorithm::split(pairs, text, [](char c) { return c == '&'; });
    std::vector<UrlQueryItem> items;
    for (const auto& pair : pairs) {
        const auto end = pair.find('=');
        const auto name = decoded(pair.substr(0, end));
        if (!name) continue;
        items.push_back({*name, std::nullopt});
        if (end != std::string::npos) items.back().value = decoded(pair.substr(end + 1));
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

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::platform {

/// The characters that stay as they are when a text is percent-encoded (RFC 3986); every other byte of its
/// UTF-8 form, the percent sign included, becomes %XX.
enum class UrlCharacters {
    queryAllowed,  ///< unreserved, sub-delims, and : @ / ?
    hostAllowed,   ///< unreserved, sub-delims, and : [ ]
};

[[nodiscard]] std::string percentEncoded(std::string_view text, UrlCharacters allowed);

/// Whether it is a URL, or a reference to one, as RFC 3986 has it: a space or a letter beyond ASCII makes it
/// none.
[[nodiscard]] bool isUrl(std::string_view text);

/// What stands before the first colon, as it is written; empty where that is no scheme.
[[nodiscard]] std::string_view urlScheme(std::string_view url);

/// The host of an absolute URL as it is written, without user and port. Absent where there is no "//" after
/// the scheme; what follows the host need not be well-formed.
[[nodiscard]] std::optional<std::string_view> urlHost(std::string_view url);

/// One name=value pair of a URL's query, percent-decoded. The value is absent where the pair has no "=".
struct UrlQueryItem {
    std::string name;
    std::optional<std::string> value;
};

/// The pairs of a URL's query in their order, repeated names included. A plus sign stays a plus sign. Absent
/// when the text is not a URL or has no query.
[[nodiscard]] std::optional<std::vector<UrlQueryItem>> queryItems(std::string_view url);

/// The query of these pairs, in their order, without the "?". Names and values are encoded with
/// `UrlCharacters::queryAllowed`: an "&" or "=" in them stays, and splits its pair.
[[nodiscard]] std::string encodedQuery(const std::vector<UrlQueryItem>& items);

}  // namespace velmora::platform

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

/// Whether it is a URL, or a reference to one: what is downloaded, played, shown and opened is one, or
/// nothing is. Its bytes are those that RFC 3986 has, brackets in a query included; each % stands before two
/// hexadecimal digits; and host and port are well-formed.
[[nodiscard]] bool isUrl(std::string_view text);

/// What stands before the first colon, as it is written; empty where that is no scheme. What follows need not
/// be well-formed.
[[nodiscard]] std::string urlScheme(std::string_view url);

/// The host of an absolute URL as it is written, without user and port. Absent where there is no "//" after
/// the scheme; what follows the host need not be well-formed.
[[nodiscard]] std::optional<std::string_view> urlHost(std::string_view url);

/// One name=value pair of a URL's query, percent-decoded. The value is absent where the pair has no "=", and
/// where it holds a zero byte or is not UTF-8.
struct UrlQueryItem {
    std::string name;
    std::optional<std::string> value;
};

/// The pairs of a URL's query in their order, repeated names included; those whose name holds a zero byte or
/// is not UTF-8 are left out. A plus sign stays a plus sign. Absent when the text is not a URL or has no
/// query.
[[nodiscard]] std::optional<std::vector<UrlQueryItem>> queryItems(std::string_view url);

/// The query of these pairs, in their order, without the "?". Names and values are encoded with
/// `UrlCharacters::queryAllowed`: an "&" or "=" in them stays, and splits its pair.
[[nodiscard]] std::string encodedQuery(const std::vector<UrlQueryItem>& items);

}  // namespace velmora::platform

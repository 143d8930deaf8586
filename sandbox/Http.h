#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velmora::sandbox {

/// Names and values; of a name that came twice, the values joined by ", ".
using Fields = std::map<std::string, std::string, std::less<>>;

/// Absent when there is none of the name.
[[nodiscard]] inline std::optional<std::string> valueOf(const Fields& fields, std::string_view name) {
    const auto found = fields.find(name);
    return found == fields.end() ? std::nullopt : std::optional(found->second);
}

/// One request, as the service reads it.
struct Request {
    bool secure = false;
    std::string method;
    /// Percent-decoded, and without the query.
    std::string path;
    Fields query;
    /// The names that the query has more than once.
    std::set<std::string> repeated = {};
    /// Names in lower case.
    Fields headers;
    std::string body;

    /// Absent when it did not come.
    [[nodiscard]] std::optional<std::string> header(std::string_view name) const {
        return valueOf(headers, name);
    }

    /// The value of a pair of the query; absent when it did not come.
    [[nodiscard]] std::optional<std::string> queryValue(std::string_view name) const {
        return valueOf(query, name);
    }

    /// Scheme, host and port that the client reached the service by, as the beginning of a URL.
    [[nodiscard]] std::string origin() const {
        return (secure ? "https://" : "http://") + header("host").value_or("127.0.0.1");
    }
};

struct FilePart {
    std::filesystem::path file;
    std::uintmax_t offset = 0;
    std::uintmax_t length = 0;
};

struct Response {
    int status = 200;
    std::string type = "application/json";
    std::string body = {};
    /// Sent instead of the body.
    std::optional<FilePart> file = {};
    std::vector<std::pair<std::string, std::string>> headers = {};
};

/// Called on the server's threads, by several of them at once.
using Handler = std::function<Response(const Request& request)>;

}  // namespace velmora::sandbox

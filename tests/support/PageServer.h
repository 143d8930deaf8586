#pragma once

#include "sandbox/ScriptedServer.h"
#include "support/Certificates.h"

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace velmora::test {

using sandbox::Script;
using sandbox::ScriptedServer;
using sandbox::SeenRequest;

/// Serves a test's web pages, some that are always there, and some ways not to serve one.
class PageServer {
public:
    explicit PageServer(const std::shared_ptr<Certificates>& certificates = nullptr)
        : server_([this](const SeenRequest& request) { return answer(request.target); }, certificates) {}

    void setPage(const std::string& path, const std::string& html) {
        const std::lock_guard lock(mutex_);
        pages_[path] = html;
    }

    [[nodiscard]] std::string url(const std::string& path) const { return server_.url(path); }

    [[nodiscard]] auto requestsOf(const std::string& path) const {
        const auto seen = server_.seen();
        return std::count_if(seen.begin(), seen.end(),
                             [&](const auto& request) { return request.target == path; });
    }

    [[nodiscard]] int connections() const { return server_.connections(); }

private:
    Script answer(const std::string& target) {
        const auto mark = target.find('?');
        const auto path = target.substr(0, mark);
        const auto query = mark == std::string::npos ? "" : target.substr(mark + 1);
        if (path == "/redirect") return Script::answer(302, "", "Location: " + query + "\r\n");
        if (path == "/nothing") return Script::answer(204, "");
        if (path == "/breaks") return Script{.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n<p>"};
        if (path == "/hang") return Script{.hang = true};
        if (path == "/download") {
            return Script::answer(200, "a file", "Content-Disposition: attachment; filename=file\r\n");
        }
        const std::lock_guard lock(mutex_);
        const auto page = pages_.find(path);
        const bool found = page != pages_.end();
        return Script::answer(found ? 200 : 404, found ? page->second : "<p>There is no such page.",
                              "Content-Type: text/html\r\n");
    }

    std::mutex mutex_;
    std::map<std::string, std::string> pages_{
        {"/plain", "<p>A page."},
        {"/top", "<script>top.location = 'velmora://close'</script>"},
        {"/frame", "<script>location = 'velmora://close'</script>"},
    };
    ScriptedServer server_;
};

}  // namespace velmora::test

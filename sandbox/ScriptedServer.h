#pragma once

#include "sandbox/Certificates.h"

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::sandbox {

/// What the server read of one request.
struct SeenRequest {
    std::string method;
    std::string target;
    /// Names in lower case.
    std::map<std::string, std::string> headers;
    std::string body;
    /// Which connection it came over, counted from 1 in the order in which they were made. A client that
    /// makes one for each request has sent them in this order, however they were read.
    int connection = 0;
};

/// What the server does about one request: bytes to send as they stand, and how it ends the connection.
struct Script {
    std::string bytes = {};
    /// Sent so often after the bytes: a long body takes no memory.
    std::string block = {};
    std::size_t blocks = 0;
    /// Before each block: a slow body.
    std::chrono::milliseconds pause{0};
    /// Keep the connection for the next request, when the bytes allow it.
    bool keepOpen = false;
    /// Leave the client without an end, until the server goes or the client does.
    bool hang = false;

    /// A well-formed answer.
    static Script answer(int status, std::string_view body, std::string_view moreHeaders = {});
};

/// An HTTP server on an ephemeral port of this machine that does what it is told, well-formed or not. It
/// records every request; `script` runs on its threads.
class ScriptedServer {
public:
    using OnRequest = std::function<Script(const SeenRequest& request)>;

    /// An address that the machine has not got is a `std::runtime_error`.
    explicit ScriptedServer(OnRequest script,
                            const std::shared_ptr<const Certificates>& certificates = nullptr,
                            const char* address = "127.0.0.1");
    /// Ends every connection.
    ~ScriptedServer();
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    /// Of a path that begins with "/".
    [[nodiscard]] std::string url(std::string_view path) const;
    [[nodiscard]] std::vector<SeenRequest> seen() const;
    /// How many connections were made.
    [[nodiscard]] int connections() const;
    /// How many connections went on with the TLS session of an earlier one.
    [[nodiscard]] int resumedSessions() const;

private:
    struct Shared;
    std::shared_ptr<Shared> shared_;
};

}  // namespace velmora::sandbox

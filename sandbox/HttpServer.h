#pragma once

#include "sandbox/Http.h"

#include <memory>

namespace velmora::sandbox {

struct Certificates;

/// An HTTP or HTTPS server on a port of 127.0.0.1, answering from construction to destruction.
class HttpServer {
public:
    /// On the port given, or on a free one for 0; over TLS when there are certificates. Throws
    /// std::runtime_error when the port cannot be had.
    HttpServer(int port, const Certificates* certificates, Handler handler);
    /// Ends every connection, and waits for the calls of the handler that run.
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    [[nodiscard]] int port() const;

private:
    struct Running;
    std::unique_ptr<Running> running_;
};

}  // namespace velmora::sandbox

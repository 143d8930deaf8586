#pragma once

#include "sandbox/OpenSsl.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <string>

#include <httplib.h>
#include <openssl/ssl.h>

namespace velmora::sandbox {

/// One accepted connection, plain or over TLS, as the HTTP parser reads and writes it.
class Connection final : public httplib::Stream {
public:
    /// Owns the socket from here on. `tls` is null for a plain connection.
    Connection(socket_t socket, SSL_CTX* tls);
    ~Connection() override;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// False when the client does not speak the protocol.
    [[nodiscard]] bool shakeHands();
    /// Whether there is something to read in time; the end of the connection counts.
    [[nodiscard]] bool awaitRequest(std::chrono::milliseconds most) const;

    [[nodiscard]] bool is_readable() const override;
    [[nodiscard]] bool is_writable() const override;
    ssize_t read(char* bytes, std::size_t size) override;
    ssize_t write(const char* bytes, std::size_t size) override;
    void get_remote_ip_and_port(std::string& address, int& port) const override;
    void get_local_ip_and_port(std::string& address, int& port) const override;
    [[nodiscard]] socket_t socket() const override { return socket_; }

private:
    [[nodiscard]] bool ready(short event, std::chrono::milliseconds most) const;
    ssize_t receive(char* bytes, std::size_t size);

    socket_t socket_;
    Owned<SSL, SSL_free> tls_;
    // The parser reads a head byte by byte.
    std::array<char, 16384> buffer_{};
    std::size_t next_ = 0;
    std::size_t end_ = 0;
};

}  // namespace velmora::sandbox

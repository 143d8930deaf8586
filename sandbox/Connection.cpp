#include "sandbox/Connection.h"

#include <algorithm>
#include <limits>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace velmora::sandbox {

namespace {

int atMostInt(std::size_t size) {
    return static_cast<int>(std::min<std::size_t>(size, std::numeric_limits<int>::max()));
}

using NameOf = int (*)(int socket, sockaddr* address, socklen_t* size);

void read(NameOf name, socket_t socket, std::string& address, int& port) {
    sockaddr_in in{};
    socklen_t size = sizeof in;
    if (name(socket, reinterpret_cast<sockaddr*>(&in), &size) != 0) return;
    std::array<char, INET_ADDRSTRLEN> text{};
    ::inet_ntop(AF_INET, &in.sin_addr, text.data(), text.size());
    address = text.data();
    port = ntohs(in.sin_port);
}

}  // namespace

Connection::Connection(socket_t socket, SSL_CTX* tls) : socket_(socket) {
    if (tls == nullptr) return;
    tls_.reset(SSL_new(tls));
    SSL_set_fd(tls_.get(), socket_);
}

Connection::~Connection() {
    ::shutdown(socket_, SHUT_RDWR);
    ::close(socket_);
}

bool Connection::shakeHands() { return !tls_ || SSL_accept(tls_.get()) == 1; }

bool Connection::awaitRequest(std::chrono::milliseconds most) const {
    return next_ < end_ || (tls_ && SSL_pending(tls_.get()) > 0) || ready(POLLIN, most);
}

bool Connection::is_readable() const { return awaitRequest(std::chrono::milliseconds(0)); }

bool Connection::is_writable() const { return ready(POLLOUT, std::chrono::seconds(5)); }

bool Connection::ready(short event, std::chrono::milliseconds most) const {
    pollfd what{.fd = socket_, .events = event, .revents = 0};
    return ::poll(&what, 1, static_cast<int>(most.count())) > 0;
}

ssize_t Connection::receive(char* bytes, std::size_t size) {
    if (tls_) return SSL_read(tls_.get(), bytes, atMostInt(size));
    return ::recv(socket_, bytes, size, 0);
}

ssize_t Connection::read(char* bytes, std::size_t size) {
    if (next_ == end_) {
        if (size >= buffer_.size()) return receive(bytes, size);
        const auto got = receive(buffer_.data(), buffer_.size());
        if (got <= 0) return got;
        next_ = 0;
        end_ = static_cast<std::size_t>(got);
    }
    const auto count = std::min(size, end_ - next_);
    std::copy_n(buffer_.data() + next_, count, bytes);
    next_ += count;
    return static_cast<ssize_t>(count);
}

ssize_t Connection::write(const char* bytes, std::size_t size) {
    for (std::size_t sent = 0; sent < size;) {
        const auto now = tls_ ? SSL_write(tls_.get(), bytes + sent, atMostInt(size - sent))
                              : ::send(socket_, bytes + sent, size - sent, MSG_NOSIGNAL);
        if (now <= 0) return -1;
        sent += static_cast<std::size_t>(now);
    }
    return static_cast<ssize_t>(size);
}

void Connection::get_remote_ip_and_port(std::string& address, int& port) const {
    sandbox::read(::getpeername, socket_, address, port);
}

void Connection::get_local_ip_and_port(std::string& address, int& port) const {
    sandbox::read(::getsockname, socket_, address, port);
}

}  // namespace velmora::sandbox

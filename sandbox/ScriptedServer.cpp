// Fences, which the thread sanitizer does not know, order what this server never shares.
#define BOOST_ASIO_DISABLE_FENCED_BLOCK

#include "sandbox/ScriptedServer.h"

#include <algorithm>
#include <list>
#include <mutex>
#include <thread>

#include <boost/asio.hpp>
#include <boost/asio/ssl.hpp>

namespace velmora::sandbox {

namespace asio = boost::asio;
using Tcp = asio::ip::tcp;
using Error = boost::system::error_code;

namespace {

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

/// The head of a request; the body follows by its length.
SeenRequest parsed(const std::string& head) {
    SeenRequest request;
    const auto first = head.find(' ');
    const auto second = head.find(' ', first + 1);
    request.method = head.substr(0, first);
    request.target = head.substr(first + 1, second - first - 1);
    for (auto at = head.find("\r\n") + 2; at < head.size();) {
        const auto end = head.find("\r\n", at);
        const auto line = head.substr(at, end - at);
        if (const auto colon = line.find(':'); colon != std::string::npos) {
            const auto value = line.find_first_not_of(' ', colon + 1);
            request.headers[lower(line.substr(0, colon))] =
                value == std::string::npos ? "" : line.substr(value);
        }
        if (end == std::string::npos) break;
        at = end + 2;
    }
    return request;
}

}  // namespace

Script Script::answer(int status, std::string_view body, std::string_view moreHeaders) {
    Script script;
    script.bytes = "HTTP/1.1 " + std::to_string(status) +
                   " Some\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" +
                   std::string(moreHeaders) + "\r\n" + std::string(body);
    script.keepOpen = true;
    return script;
}

/// Shared with the threads of the connections.
struct ScriptedServer::Shared {
    explicit Shared(const char* address)
        : acceptor(context, Tcp::endpoint(asio::ip::make_address(address), 0)) {}

    asio::io_context context;
    Tcp::acceptor acceptor;
    asio::ssl::context tls{asio::ssl::context::tls_server};
    bool secure = false;
    OnRequest script;
    std::thread accepting;

    std::mutex mutex;
    std::vector<SeenRequest> seen;
    std::list<std::thread> threads;
    std::list<Tcp::socket*> open;
    int connections = 0;
    int resumedSessions = 0;
    bool ending = false;

    template <class Stream>
    void serve(Stream& stream, int connection) {
        std::string buffer;
        for (;;) {
            Error error;
            const auto headSize = asio::read_until(stream, asio::dynamic_buffer(buffer), "\r\n\r\n", error);
            if (error) return;
            auto request = parsed(buffer.substr(0, headSize - 4));
            buffer.erase(0, headSize);
            const auto length = static_cast<std::size_t>(std::atoll(
                request.headers.contains("content-length") ? request.headers.at("content-length").c_str()
                                                           : "0"));
            if (buffer.size() < length) {
                asio::read(stream, asio::dynamic_buffer(buffer),
                           asio::transfer_exactly(length - buffer.size()), error);
                if (error) return;
            }
            request.body = buffer.substr(0, length);
            buffer.erase(0, length);
            request.connection = connection;
            {
                const std::lock_guard lock(mutex);
                seen.push_back(request);
            }
            const auto what = script(request);
            asio::write(stream, asio::buffer(what.bytes), error);
            for (std::size_t sent = 0; sent < what.blocks && !error; ++sent) {
                std::this_thread::sleep_for(what.pause);
                asio::write(stream, asio::buffer(what.block), error);
            }
            if (error) return;
            if (what.hang)
                asio::read(stream, asio::dynamic_buffer(buffer), asio::transfer_at_least(1), error);
            if (!what.keepOpen) return;
        }
    }

    void serveConnection(Tcp::socket socket, int number) {
        std::list<Tcp::socket*>::iterator place;
        {
            const std::lock_guard lock(mutex);
            if (ending) return;
            place = open.insert(open.end(), &socket);
        }
        if (secure) {
            asio::ssl::stream<Tcp::socket&> stream(socket, tls);
            Error error;
            stream.handshake(asio::ssl::stream_base::server, error);
            if (!error && SSL_session_reused(stream.native_handle()) == 1) {
                const std::lock_guard lock(mutex);
                ++resumedSessions;
            }
            if (!error) serve(stream, number);
        } else {
            serve(socket, number);
        }
        const std::lock_guard lock(mutex);
        open.erase(place);
    }

    void accept() {
        for (;;) {
            Error error;
            auto socket = acceptor.accept(error);
            const std::lock_guard lock(mutex);
            if (error || ending) return;
            threads.emplace_back([this, number = ++connections, moved = std::move(socket)]() mutable {
                serveConnection(std::move(moved), number);
            });
        }
    }
};

ScriptedServer::ScriptedServer(OnRequest script, const std::shared_ptr<const Certificates>& certificates,
                               const char* address)
    : shared_(std::make_shared<Shared>(address)) {
    shared_->script = std::move(script);
    if (certificates) {
        shared_->secure = true;
        shared_->tls.use_certificate(asio::buffer(certificates->certificate), asio::ssl::context::pem);
        shared_->tls.use_private_key(asio::buffer(certificates->key), asio::ssl::context::pem);
    }
    shared_->accepting = std::thread([this] { shared_->accept(); });
}

ScriptedServer::~ScriptedServer() {
    const auto endpoint = shared_->acceptor.local_endpoint();
    {
        const std::lock_guard lock(shared_->mutex);
        shared_->ending = true;
        for (auto* socket : shared_->open) ::shutdown(socket->native_handle(), SHUT_RDWR);
    }
    // One more connection makes the accepting thread look.
    Error error;
    Tcp::socket knock(shared_->context);
    knock.connect(endpoint, error);
    shared_->accepting.join();
    for (auto& thread : shared_->threads) thread.join();
}

std::string ScriptedServer::url(std::string_view path) const {
    const auto endpoint = shared_->acceptor.local_endpoint();
    const auto address = endpoint.address().to_string();
    return (shared_->secure ? "https://" : "http://") +
           (endpoint.address().is_v6() ? "[" + address + "]" : address) + ":" +
           std::to_string(endpoint.port()) + std::string(path);
}

std::vector<SeenRequest> ScriptedServer::seen() const {
    const std::lock_guard lock(shared_->mutex);
    return shared_->seen;
}

int ScriptedServer::connections() const {
    const std::lock_guard lock(shared_->mutex);
    return shared_->connections;
}

int ScriptedServer::resumedSessions() const {
    const std::lock_guard lock(shared_->mutex);
    return shared_->resumedSessions;
}

}  // namespace velmora::sandbox

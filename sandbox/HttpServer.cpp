#include "sandbox/HttpServer.h"

#include "sandbox/Certificates.h"
#include "sandbox/Connection.h"
#include "sandbox/OpenSsl.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>

#include <boost/algorithm/string/split.hpp>
#include <openssl/pem.h>

namespace velmora::sandbox {

namespace {

constexpr const char* kAddress = "127.0.0.1";
/// An open connection keeps its thread, so there are more than a client and a browser together hold open.
constexpr std::size_t kThreads = 64;
constexpr std::size_t kRequestsAConnection = 1'000'000;
constexpr auto kIdle = std::chrono::seconds(30);
constexpr std::size_t kLargestBody = std::size_t{64} << 20U;

using Context = Owned<SSL_CTX, SSL_CTX_free>;
using Memory = Owned<BIO, BIO_free_all>;
using Certificate = Owned<X509, X509_free>;
using Key = Owned<EVP_PKEY, EVP_PKEY_free>;

Memory memoryOf(const std::string& text) {
    return Memory(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
}

Context contextFor(const Certificates* certificates) {
    if (certificates == nullptr) return nullptr;
    Context context(SSL_CTX_new(TLS_server_method()));
    const auto certificateText = memoryOf(certificates->certificate);
    const auto keyText = memoryOf(certificates->key);
    const Certificate certificate(PEM_read_bio_X509(certificateText.get(), nullptr, nullptr, nullptr));
    const Key key(PEM_read_bio_PrivateKey(keyText.get(), nullptr, nullptr, nullptr));
    if (SSL_CTX_use_certificate(context.get(), certificate.get()) != 1 ||
        SSL_CTX_use_PrivateKey(context.get(), key.get()) != 1) {
        throw std::runtime_error("The server's certificate or its key cannot be used");
    }
    return context;
}

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

void add(Fields& fields, std::string name, const std::string& value) {
    const auto [place, isNew] = fields.emplace(std::move(name), value);
    if (!isNew) place->second += ", " + value;
}

/// Read from the address itself: of two pairs that are the same, the library keeps one.
std::set<std::string> repeatedNames(std::string_view target) {
    const auto question = target.find('?');
    if (question == std::string_view::npos) return {};
    std::vector<std::string> pairs;
    const std::string query(target.substr(question + 1));
    boost::algorithm::split(pairs, query, [](char c) { return c == '&'; });
    std::set<std::string> seen;
    std::set<std::string> repeated;
    for (const auto& pair : pairs) {
        auto name = pair.substr(0, pair.find('='));
        if (!name.empty() && !seen.insert(name).second) repeated.insert(std::move(name));
    }
    return repeated;
}

Request read(const httplib::Request& from, bool secure) {
    Request request{.secure = secure,
                    .method = from.method,
                    .path = from.path,
                    .query = {},
                    .repeated = repeatedNames(from.target),
                    .headers = {},
                    .body = from.body};
    for (const auto& [name, value] : from.params) add(request.query, name, value);
    for (const auto& [name, value] : from.headers) {
        // Put in by the parser.
        if (name != "REMOTE_ADDR" && name != "REMOTE_PORT" && name != "LOCAL_ADDR" && name != "LOCAL_PORT")
            add(request.headers, lower(name), value);
    }
    return request;
}

/// Reads the part piece by piece, as the client takes it.
httplib::ContentProvider contentOf(const FilePart& part) {
    auto stream = std::make_shared<std::ifstream>(part.file, std::ios::binary);
    return [stream, part](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
        std::vector<char> piece(std::min<std::size_t>(length, 65536));
        stream->seekg(static_cast<std::streamoff>(part.offset + offset));
        stream->read(piece.data(), static_cast<std::streamsize>(piece.size()));
        const auto got = stream->gcount();
        return got > 0 && sink.write(piece.data(), static_cast<std::size_t>(got));
    };
}

void write(const Response& from, httplib::Response& to) {
    to.status = from.status;
    for (const auto& [name, value] : from.headers) to.set_header(name, value);
    if (from.file && from.file->length > 0) {
        to.set_content_provider(static_cast<std::size_t>(from.file->length), from.type,
                                contentOf(*from.file));
    } else {
        to.set_content(from.body, from.type);
    }
}

void prepare(httplib::Request& request) {
    // Ranges are answered by who knows the file; the library would apply them a second time.
    request.ranges.clear();
    // "curl -X POST" sends no length, and the library would read on to the end of the connection.
    const bool mayHaveBody = request.method == "POST" || request.method == "PUT" || request.method == "PATCH";
    if (mayHaveBody && !request.has_header("Content-Length") && !request.has_header("Transfer-Encoding"))
        request.set_header("Content-Length", "0");
}

/// The library's own server reads and writes HTTP; the connections are ours, because it keeps no list of its
/// own, and would sit out the idle time of each before it stops.
class Server final : public httplib::Server {
public:
    explicit Server(Context tls) : tls_(std::move(tls)) {}

    /// The library asks for a queue of five connections, and a burst of a client's first ones overflows it.
    void lengthenQueue() { ::listen(svr_sock_, SOMAXCONN); }

    void endConnections() {
        const std::lock_guard lock(mutex_);
        ending_ = true;
        for (const auto socket : open_) ::shutdown(socket, SHUT_RDWR);
    }

private:
    bool process_and_close_socket(socket_t socket) override {
        Connection connection(socket, tls_.get());
        {
            const std::lock_guard lock(mutex_);
            if (ending_) return false;
            open_.insert(socket);
        }
        if (connection.shakeHands()) serve(connection);
        const std::lock_guard lock(mutex_);
        open_.erase(socket);
        return true;
    }

    void serve(Connection& connection) {
        for (auto left = keep_alive_max_count_; left > 0 && connection.awaitRequest(kIdle); --left) {
            bool closed = false;
            if (!process_request(connection, left == 1, closed, prepare) || closed) return;
        }
    }

    Context tls_;
    std::mutex mutex_;
    std::set<socket_t> open_;
    bool ending_ = false;
};

void reuseAddress(socket_t socket) {
    // Not the port as well, which is the library's default: two services could then share one.
    const int yes = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
}

int bind(Server& server, int port) {
    if (port == 0)
        port = server.bind_to_any_port(kAddress);
    else if (!server.bind_to_port(kAddress, port))
        port = -1;
    if (port < 0) throw std::runtime_error("The port cannot be had");
    return port;
}

}  // namespace

struct HttpServer::Running {
    Running(int wanted, const Certificates* certificates, Handler handler)
        : server(contextFor(certificates)) {
        const auto answer = [handler = std::move(handler), secure = certificates != nullptr](
                                const httplib::Request& request, httplib::Response& response) {
            write(handler(read(request, secure)), response);
        };
        constexpr const char* everything = ".*";
        server.Get(everything, answer)
            .Post(everything, answer)
            .Put(everything, answer)
            .Patch(everything, answer)
            .Delete(everything, answer)
            .Options(everything, answer);
        server.set_socket_options(reuseAddress);
        server.set_tcp_nodelay(true);
        server.set_keep_alive_max_count(kRequestsAConnection);
        server.set_keep_alive_timeout(kIdle.count());
        server.set_payload_max_length(kLargestBody);
        // Deleted by the server.
        server.new_task_queue = [] { return std::make_unique<httplib::ThreadPool>(kThreads).release(); };
        port = bind(server, wanted);
        server.lengthenQueue();
        listening = std::thread([this] { server.listen_after_bind(); });
        // A server that does not run yet would not be stopped.
        while (!server.is_running()) std::this_thread::yield();
    }

    ~Running() {
        server.endConnections();
        server.stop();
        listening.join();
    }

    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    Server server;
    int port = 0;
    std::thread listening;
};

HttpServer::HttpServer(int port, const Certificates* certificates, Handler handler)
    : running_(std::make_unique<Running>(port, certificates, std::move(handler))) {}

HttpServer::~HttpServer() = default;

int HttpServer::port() const { return running_->port; }

}  // namespace velmora::sandbox

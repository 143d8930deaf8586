// Fences, which the thread sanitizer does not know, order what this server never shares.
#define BOOST_ASIO_DISABLE_FENCED_BLOCK

#include "support/ScriptedServer.h"

#include "platform/FileManager.h"
#include "support/TemporaryDirectory.h"

#include <algorithm>
#include <atomic>
#include <list>
#include <mutex>
#include <thread>

#include <boost/asio.hpp>
#include <boost/asio/ssl.hpp>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

namespace velmora::test {

namespace asio = boost::asio;
using Tcp = asio::ip::tcp;
using Error = boost::system::error_code;

namespace {

template <class T, void (*release)(T*)>
struct Release {
    void operator()(T* object) const noexcept { release(object); }
};

using Key = std::unique_ptr<EVP_PKEY, Release<EVP_PKEY, EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Release<X509, X509_free>>;

Key makeKey() { return Key(EVP_EC_gen("P-256")); }

void addExtension(X509* certificate, X509* issuer, int kind, const std::string& value) {
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    auto* extension = X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str());
    X509_add_ext(certificate, extension, -1);
    X509_EXTENSION_free(extension);
}

Certificate makeCertificate(const std::string& name, EVP_PKEY* key, X509* issuer, EVP_PKEY* issuerKey,
                            int validDays, const std::string& alternativeName) {
    constexpr long day = 24L * 60 * 60;
    Certificate certificate(X509_new());
    auto* raw = certificate.get();
    X509_set_version(raw, 2);
    static std::atomic<long> serial = 1;
    ASN1_INTEGER_set(X509_get_serialNumber(raw), serial++);
    X509_gmtime_adj(X509_getm_notBefore(raw), -10 * day);
    X509_gmtime_adj(X509_getm_notAfter(raw), validDays * day);
    X509_set_pubkey(raw, key);
    const auto* bytes = reinterpret_cast<const unsigned char*>(name.c_str());
    X509_NAME_add_entry_by_txt(X509_get_subject_name(raw), "CN", MBSTRING_UTF8, bytes, -1, -1, 0);
    X509_set_issuer_name(raw, X509_get_subject_name(issuer != nullptr ? issuer : raw));
    if (issuer == nullptr) addExtension(raw, raw, NID_basic_constraints, "critical,CA:TRUE");
    if (!alternativeName.empty()) addExtension(raw, issuer, NID_subject_alt_name, alternativeName);
    X509_sign(raw, issuerKey, EVP_sha256());
    return certificate;
}

template <class Write>
std::string pem(const Write& write) {
    BIO* memory = BIO_new(BIO_s_mem());
    write(memory);
    char* bytes = nullptr;
    const long size = BIO_get_mem_data(memory, &bytes);
    std::string text(bytes, static_cast<std::size_t>(size));
    BIO_free(memory);
    return text;
}

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

std::shared_ptr<Certificates> Certificates::makeFor(const std::string& host, int validDays) {
    // Authorities of one name would be taken for each other.
    static std::atomic<int> count = 0;
    const auto name = "Test authority " + std::to_string(count++);
    const auto authorityKey = makeKey();
    const auto authority = makeCertificate(name, authorityKey.get(), nullptr, authorityKey.get(), 1, "");
    const auto key = makeKey();
    const bool isAddress = std::isdigit(static_cast<unsigned char>(host.front())) != 0;
    const auto server = makeCertificate(host, key.get(), authority.get(), authorityKey.get(), validDays,
                                        (isAddress ? "IP:" : "DNS:") + host);
    return std::make_shared<Certificates>(
        pem([&](BIO* memory) { PEM_write_bio_X509(memory, authority.get()); }),
        pem([&](BIO* memory) { PEM_write_bio_X509(memory, server.get()); }), pem([&](BIO* memory) {
            PEM_write_bio_PrivateKey(memory, key.get(), nullptr, nullptr, 0, nullptr, nullptr);
        }));
}

Certificates::Certificates(std::string authorityText, std::string certificateText, std::string keyText)
    : authority(std::move(authorityText)), certificate(std::move(certificateText)), key(std::move(keyText)) {
    static const TemporaryDirectory folder;
    static std::atomic<int> count = 0;
    authorityFile_ = (folder / ("authority-" + std::to_string(count++) + ".pem")).string();
    if (!platform::FileManager::write(authorityFile_, authority)) std::abort();
}

/// Shared with the threads of the connections.
struct ScriptedServer::Shared {
    asio::io_context context;
    Tcp::acceptor acceptor{context, Tcp::endpoint(asio::ip::address_v4::loopback(), 0)};
    asio::ssl::context tls{asio::ssl::context::tls_server};
    bool secure = false;
    OnRequest script;
    std::thread accepting;

    std::mutex mutex;
    std::vector<SeenRequest> seen;
    std::list<std::thread> threads;
    std::list<Tcp::socket*> open;
    int connections = 0;
    int mostConnections = 0;
    bool ending = false;

    template <class Stream>
    void serve(Stream& stream) {
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
            {
                const std::lock_guard lock(mutex);
                seen.push_back(request);
            }
            const auto what = script(request);
            asio::write(stream, asio::buffer(what.bytes), error);
            for (std::size_t sent = 0; sent < what.blocks && !error; ++sent) {
                asio::write(stream, asio::buffer(what.block), error);
            }
            if (error) return;
            if (what.hang)
                asio::read(stream, asio::dynamic_buffer(buffer), asio::transfer_at_least(1), error);
            if (!what.keepOpen) return;
        }
    }

    void serveConnection(Tcp::socket socket) {
        std::list<Tcp::socket*>::iterator place;
        {
            const std::lock_guard lock(mutex);
            if (ending) return;
            place = open.insert(open.end(), &socket);
            ++connections;
            mostConnections = std::max(mostConnections, static_cast<int>(open.size()));
        }
        if (secure) {
            asio::ssl::stream<Tcp::socket&> stream(socket, tls);
            Error error;
            stream.handshake(asio::ssl::stream_base::server, error);
            if (!error) serve(stream);
        } else {
            serve(socket);
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
            threads.emplace_back(
                [this, moved = std::move(socket)]() mutable { serveConnection(std::move(moved)); });
        }
    }
};

ScriptedServer::ScriptedServer(OnRequest script, std::shared_ptr<Certificates> certificates)
    : shared_(std::make_shared<Shared>()) {
    shared_->script = std::move(script);
    if (certificates) {
        shared_->secure = true;
        shared_->tls.use_certificate(asio::buffer(certificates->certificate), asio::ssl::context::pem);
        shared_->tls.use_private_key(asio::buffer(certificates->key), asio::ssl::context::pem);
    }
    shared_->accepting = std::thread([this] { shared_->accept(); });
}

ScriptedServer::~ScriptedServer() {
    const auto port = shared_->acceptor.local_endpoint().port();
    {
        const std::lock_guard lock(shared_->mutex);
        shared_->ending = true;
        for (auto* socket : shared_->open) ::shutdown(socket->native_handle(), SHUT_RDWR);
    }
    // One more connection makes the accepting thread look.
    Error error;
    Tcp::socket knock(shared_->context);
    knock.connect({asio::ip::address_v4::loopback(), port}, error);
    shared_->accepting.join();
    for (auto& thread : shared_->threads) thread.join();
}

std::string ScriptedServer::url(std::string_view path) const {
    return (shared_->secure ? "https://127.0.0.1:" : "http://127.0.0.1:") +
           std::to_string(shared_->acceptor.local_endpoint().port()) + std::string(path);
}

std::vector<SeenRequest> ScriptedServer::seen() const {
    const std::lock_guard lock(shared_->mutex);
    return shared_->seen;
}

int ScriptedServer::connections() const {
    const std::lock_guard lock(shared_->mutex);
    return shared_->connections;
}

int ScriptedServer::mostConnections() const {
    const std::lock_guard lock(shared_->mutex);
    return shared_->mostConnections;
}

}  // namespace velmora::test

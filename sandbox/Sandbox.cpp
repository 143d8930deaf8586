#include "sandbox/Sandbox.h"

#include "sandbox/Certificates.h"
#include "sandbox/HttpServer.h"
#include "sandbox/Service.h"

namespace velmora::sandbox {

namespace {

constexpr int kCertificateDays = 30;

std::string at(std::string_view scheme, const HttpServer& server, std::string_view path) {
    return std::string(scheme) + "://127.0.0.1:" + std::to_string(server.port()) + std::string(path);
}

}  // namespace

struct Sandbox::Running {
    explicit Running(const Options& options) : service(options), options_(options) {}

    Service service;
    const Options options_;
    const Certificates certificates = Certificates::makeFor({"127.0.0.1", "localhost"}, kCertificateDays);
    const Handler handler = [this](const Request& request) { return service.answer(request); };
    HttpServer plain{options_.httpPort, nullptr, handler};
    HttpServer secure{options_.httpsPort, &certificates, handler};
};

Sandbox::Sandbox(Options options) : running_(std::make_unique<Running>(options)) {}

Sandbox::~Sandbox() = default;

std::string Sandbox::apiUrl() const { return at("https", running_->secure, "/v2"); }

std::string Sandbox::plainApiUrl() const { return plainUrl("/v2"); }

std::string Sandbox::plainUrl(std::string_view path) const { return at("http", running_->plain, path); }

std::string Sandbox::geocoderUrl() const { return plainUrl("/geocoder"); }

std::string Sandbox::inspectorUrl() const { return plainUrl("/sandbox/"); }

const std::string& Sandbox::authority() const { return running_->certificates.authority; }

boost::json::object Sandbox::ledger(std::uint64_t after) const { return running_->service.ledger(after); }

bool Sandbox::await(std::string_view kind, std::size_t count, std::chrono::milliseconds most) const {
    return running_->service.await(kind, count, most);
}

void Sandbox::reset() { running_->service.reset(); }

void Sandbox::expireTokens() { running_->service.expireTokens(); }

}  // namespace velmora::sandbox

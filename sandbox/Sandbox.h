#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include <boost/json.hpp>

namespace velmora::sandbox {

struct Options {
    /// What /media/ serves; nothing when empty.
    std::filesystem::path videos = {};
    /// 0 takes a free one.
    int httpPort = 0;
    int httpsPort = 0;
    /// How long the ad of the zone "expiring" is good for.
    std::chrono::milliseconds expiringAfter{3000};
    std::chrono::seconds tokenLifetime{3600};
    std::size_t mostLedgerEntries = 10'000;
};

/// The far side: an ad service on 127.0.0.1 that speaks the whole protocol of the library over HTTP and
/// HTTPS, from construction to destruction, and writes down what it was asked. Any thread.
class Sandbox {
public:
    /// Throws std::runtime_error when a port cannot be had.
    explicit Sandbox(Options options = {});
    /// Ends every connection.
    ~Sandbox();
    Sandbox(const Sandbox&) = delete;
    Sandbox& operator=(const Sandbox&) = delete;

    /// The API base over HTTPS and over HTTP, with no slash at the end: what VELMORA_API_BASE_URL takes.
    [[nodiscard]] std::string apiUrl() const;
    [[nodiscard]] std::string plainApiUrl() const;
    /// Of a path that begins with "/", over HTTP.
    [[nodiscard]] std::string plainUrl(std::string_view path) const;
    /// The base of a geocoder that knows a few made-up places: what VELMORA_GEOCODER_URL takes.
    [[nodiscard]] std::string geocoderUrl() const;
    /// The page that shows the ledger as it grows.
    [[nodiscard]] std::string inspectorUrl() const;
    /// The certificate authority to trust, as PEM text.
    [[nodiscard]] const std::string& authority() const;

    /// What GET /sandbox/ledger answers: "entries" with a number above `after`, in order, "finalStates" of
    /// each user, "problems" in all, and "oldest" and "last", the first number that is still there and the
    /// highest that was given.
    [[nodiscard]] boost::json::object ledger(std::uint64_t after = 0) const;
    /// Whether the ledger has so many entries of the kind ("suggestions", "tracker", "media" ...) in time.
    [[nodiscard]] bool await(std::string_view kind, std::size_t count = 1,
                             std::chrono::milliseconds most = std::chrono::seconds(60)) const;

    /// Empties the ledger, and forgets tokens and final states.
    void reset();
    /// Every token that is out is refused from here on.
    void expireTokens();

private:
    struct Running;
    std::unique_ptr<Running> running_;
};

}  // namespace velmora::sandbox

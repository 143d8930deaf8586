#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velmora::platform {

struct UrlRequest {
    std::string url;
    std::string method = "GET";
    /// Names compare without case (RFC 9110, 5.1).
    std::vector<std::pair<std::string, std::string>> headers;
    std::optional<std::string> body;
    /// Refuse to send it over http to any host but a loopback one, also where a redirect leads there.
    bool requiresSecureTransport = false;
    /// Nobody waits for its answer: it goes on when the others are cancelled.
    bool isReport = false;

    /// Replaces the header of that name, or adds it.
    void setHeader(std::string_view name, std::string value);
};

struct UrlResponse {
    /// The address that answered, after redirects.
    std::string url;
    int statusCode = 0;
};

/// Why an exchange broke off.
struct UrlError {
    enum Code : int {
        unknown = -1,
        cancelled = -999,
        badUrl = -1000,
        timedOut = -1001,
        unsupportedUrl = -1002,
        cannotFindHost = -1003,
        cannotConnectToHost = -1004,
        networkConnectionLost = -1005,
        tooManyRedirects = -1007,
        badServerResponse = -1011,
        cannotDecodeContentData = -1016,
        insecureTransportRefused = -1022,
        dataLengthExceedsMaximum = -1103,
        secureConnectionFailed = -1200,
        serverCertificateUntrusted = -1202,
    };

    std::string domain;
    int code = unknown;
    std::string description;
};

/// What an exchange came to.
///
/// With an error there is no data. There is a response when a status line arrived, also when the exchange
/// broke off after it. An empty body is data that is present and empty.
struct UrlOutcome {
    std::optional<std::string> data;
    std::optional<UrlResponse> response;
    std::optional<UrlError> error;
};

/// One exchange. Safe to call from any thread.
class UrlTask {
public:
    enum class State : int { running = 0, suspended = 1, canceling = 2, completed = 3 };

    virtual ~UrlTask() = default;

    /// Starts it; a second call does nothing.
    virtual void resume() = 0;

    /// Ends it, started or not; its completion runs with `UrlError::cancelled`. After the exchange has ended
    /// it does nothing.
    virtual void cancel() = 0;

    /// `suspended` until `resume`, `canceling` from `cancel` to the end, `completed` from the end on.
    [[nodiscard]] virtual State state() const = 0;
};

/// One process-wide HTTP session. Safe to call from any thread.
///
/// At most 8 exchanges with a host are in flight; later ones wait their turn. Connections are kept and
/// shared, HTTP/2 is used where offered, compressed bodies are decoded, cookies live in memory, redirects are
/// followed to http and https only and at most 16 times, and servers are verified against the system's
/// certificates, or those in the file that VELMORA_CA_FILE names. An exchange over which no byte has moved
/// for 60 seconds ends.
///
/// Once the process leaves `main`, exchanges end without a completion.
class UrlSession {
public:
    /// Runs once, on the delegate queue, which is serial; on the caller's thread only where the machine has
    /// no thread left to start.
    using Completion = std::function<void(UrlOutcome outcome)>;

    [[nodiscard]] static UrlSession& shared();

    /// Prepares `request`; nothing is sent before the task's `resume()`. A task that is dropped goes on.
    ///
    /// A body beyond 64 MiB, as it is after decoding, ends the exchange in an error.
    [[nodiscard]] std::shared_ptr<UrlTask> dataTask(UrlRequest request, Completion completion);

    /// As `dataTask`, but the body goes to a temporary file beside `file` as it arrives, and is published
    /// there by rename when the exchange ends without an error; the data of the outcome is then absent.
    /// Memory use does not depend on the length, which has no bound. A file that cannot be written is logged
    /// and is no error.
    [[nodiscard]] std::shared_ptr<UrlTask> downloadTask(UrlRequest request, std::filesystem::path file,
                                                        Completion completion);

    /// Cancels every exchange but the reports. What is started afterwards goes on.
    void cancelAll();

    /// How long nothing may move. Tests make it short.
    static void setIdleTimeout(std::chrono::milliseconds timeout);

    static constexpr std::size_t kMostInFlightPerHost = 8;
    static constexpr std::size_t kMostBytesInMemory = std::size_t{64} * 1024 * 1024;
    static constexpr std::string_view kErrorDomain = "VelmoraTransportErrorDomain";
};

}  // namespace velmora::platform

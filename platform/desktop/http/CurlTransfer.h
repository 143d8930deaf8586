#pragma once

#include "platform/UrlSession.h"
#include "platform/desktop/files/PartialFile.h"

#include <array>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <curl/curl.h>

namespace velmora::platform {

class CurlLoop;

struct CurlCleanup {
    void operator()(CURL* handle) const noexcept { curl_easy_cleanup(handle); }
    void operator()(CURLU* url) const noexcept { curl_url_cleanup(url); }
    void operator()(curl_slist* list) const noexcept { curl_slist_free_all(list); }
};
using CurlUrl = std::unique_ptr<CURLU, CurlCleanup>;

/// One exchange. `resume`, `cancel` and `state` belong to any thread, all else to the loop's.
class CurlTransfer final : public UrlTask, public std::enable_shared_from_this<CurlTransfer> {
public:
    using Clock = std::chrono::steady_clock;

    CurlTransfer(CurlLoop& loop, UrlRequest request, std::optional<std::filesystem::path> file,
                 UrlSession::Completion completion);

    void resume() override;
    void cancel() override;

    [[nodiscard]] State state() const override { return state_; }

    /// Which host it goes to, as "scheme://host:port"; absent, with the error set, when it may not be sent.
    [[nodiscard]] std::optional<std::string> destination();

    /// Makes its easy handle, to be added to a multi handle; false without memory.
    [[nodiscard]] bool prepare(CURLSH* share);

    /// Null before `prepare` and after the end.
    [[nodiscard]] CURL* handle() const { return handle_.get(); }

    [[nodiscard]] bool hasEnded() const { return ended_; }

    [[nodiscard]] bool wasCancelled() const { return state_ == State::canceling; }

    [[nodiscard]] bool isReport() const { return request_.isReport; }

    /// When something last moved.
    [[nodiscard]] Clock::time_point lastActivity() const { return lastActivity_; }

    /// For the end of the process: what has arrived of a file goes.
    void dropFile() { partial_.reset(); }

    /// The end, once: its handle has been taken out of the multi handle, and goes here.
    void endWithResult(CURLcode result);
    void endWithError(UrlError::Code code);

private:
    static std::size_t onBody(char* bytes, std::size_t one, std::size_t size, void* transfer);
    static std::size_t onHeader(char* bytes, std::size_t one, std::size_t size, void* transfer);
    static int onRequest(void* transfer, char* address, char* ownAddress, int port, int ownPort);
    static int onProgress(void* transfer, curl_off_t, curl_off_t, curl_off_t, curl_off_t sent);

    void setMethodAndBody();
    void setHeaders();
    void setTrust();
    /// These are false when the exchange is not to go on.
    [[nodiscard]] bool takeBody(std::string_view bytes);
    [[nodiscard]] bool takeHeader(std::string_view line);
    [[nodiscard]] bool mayAsk();
    [[nodiscard]] long status() const;
    [[nodiscard]] std::optional<UrlResponse> response() const;
    [[nodiscard]] UrlError::Code codeOf(CURLcode result) const;
    void end(std::optional<UrlError> error);

    CurlLoop& loop_;
    const UrlRequest request_;
    /// The certificates to trust, as the environment was when the task was made; empty for the system's.
    const std::string certificates_;
    UrlSession::Completion completion_;
    std::atomic<State> state_{State::suspended};

    std::optional<std::filesystem::path> file_;
    std::unique_ptr<PartialFile> partial_;
    std::string body_;
    bool tooLong_ = false;
    bool refusedRedirect_ = false;
    bool headersAreWhole_ = false;
    bool ended_ = false;
    bool toLoopback_ = false;
    std::size_t headerSize_ = 0;
    curl_off_t sent_ = 0;
    Clock::time_point lastActivity_;

    CurlUrl url_;
    std::unique_ptr<curl_slist, CurlCleanup> headers_;
    std::array<char, CURL_ERROR_SIZE> message_{};
    std::unique_ptr<CURL, CurlCleanup> handle_;
};

}  // namespace velmora::platform

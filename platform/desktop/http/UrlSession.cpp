#include "platform/UrlSession.h"

#include "platform/Immortal.h"
#include "platform/desktop/http/CurlLoop.h"
#include "platform/desktop/http/CurlTransfer.h"

#include <algorithm>
#include <cstdlib>

#include <strings.h>

namespace velmora::platform {

namespace {

CurlLoop& loop() {
    static Immortal<CurlLoop> instance;
    [[maybe_unused]] static const int registered = std::atexit([] { instance->leave(); });
    return *instance;
}

}  // namespace

void UrlRequest::setHeader(std::string_view name, std::string value) {
    const auto found = std::find_if(headers.begin(), headers.end(), [&](const auto& header) {
        return header.first.size() == name.size() &&
               ::strncasecmp(header.first.data(), name.data(), name.size()) == 0;
    });
    if (found == headers.end()) {
        headers.emplace_back(name, std::move(value));
    } else {
        *found = {std::string(name), std::move(value)};
    }
}

UrlSession& UrlSession::shared() {
    static UrlSession instance;
    return instance;
}

std::shared_ptr<UrlTask> UrlSession::dataTask(UrlRequest request, Completion completion) {
    return std::make_shared<CurlTransfer>(loop(), std::move(request), std::nullopt, std::move(completion));
}

std::shared_ptr<UrlTask> UrlSession::downloadTask(UrlRequest request, std::filesystem::path file,
                                                  Completion completion) {
    return std::make_shared<CurlTransfer>(loop(), std::move(request), std::move(file), std::move(completion));
}

void UrlSession::cancelAll() { loop().cancelAll(); }

void UrlSession::setIdleTimeout(std::chrono::milliseconds timeout) { loop().idleTimeout = timeout; }

}  // namespace velmora::platform

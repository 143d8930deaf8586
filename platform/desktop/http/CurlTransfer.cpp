#include "platform/desktop/http/CurlTransfer.h"

#include "platform/Bundle.h"
#include "platform/Immortal.h"
#include "platform/Log.h"
#include "platform/UrlText.h"
#include "platform/desktop/http/CurlLoop.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <exception>

#include <arpa/inet.h>
#include <strings.h>

namespace velmora::platform {

namespace {

constexpr long kMostRedirects = 16;
constexpr std::size_t kMostHeaderBytes = std::size_t{300} * 1024;
constexpr const char* kBlanks = " \t\r\n\v\f";
constexpr long kReceiveBuffer = 128L * 1024;

UrlError::Code generalCodeOf(CURLcode code) {
    switch (code) {
    case CURLE_URL_MALFORMAT: return UrlError::badUrl;
    case CURLE_UNSUPPORTED_PROTOCOL: return UrlError::unsupportedUrl;
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_RESOLVE_HOST: return UrlError::cannotFindHost;
    case CURLE_COULDNT_CONNECT: return UrlError::cannotConnectToHost;
    case CURLE_OPERATION_TIMEDOUT: return UrlError::timedOut;
    case CURLE_TOO_MANY_REDIRECTS: return UrlError::tooManyRedirects;
    case CURLE_BAD_CONTENT_ENCODING: return UrlError::cannotDecodeContentData;
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM: return UrlError::networkConnectionLost;
    // What it says of an answer that begins with a folded header.
    case CURLE_BAD_FUNCTION_ARGUMENT:
    case CURLE_WEIRD_SERVER_REPLY: return UrlError::badServerResponse;
    case CURLE_PEER_FAILED_VERIFICATION: return UrlError::serverCertificateUntrusted;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_USE_SSL_FAILED: return UrlError::secureConnectionFailed;
    default: return UrlError::unknown;
    }
}

UrlError errorOf(UrlError::Code code, std::string description) {
    return {std::string(UrlSession::kErrorDomain), code, std::move(description)};
}

/// A part of an address, as libcurl itself reads it.
std::string partOf(CURLU* url, CURLUPart part) {
    char* text = nullptr;
    if (curl_url_get(url, part, &text, CURLU_DEFAULT_PORT) != CURLUE_OK) return {};
    std::string result(text);
    curl_free(text);
    return result;
}

bool isLoopback(const std::string& host) {
    in_addr address{};
    if (::inet_pton(AF_INET, host.c_str(), &address) == 1) return (ntohl(address.s_addr) >> 24U) == 127U;
    in6_addr longAddress{};
    if (host.starts_with('[') && host.ends_with(']') &&
        ::inet_pton(AF_INET6, host.substr(1, host.size() - 2).c_str(), &longAddress) == 1)
        return IN6_IS_ADDR_LOOPBACK(&longAddress);
    return host == "localhost";
}

std::string lowerCase(std::string text) {
    for (auto& c : text) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return text;
}

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

const std::string& userAgent() {
    static Immortal<std::string> agent(Bundle::main().identifier().value_or("application") + "/" +
                                       Bundle::main().version().value_or("0"));
    return *agent;
}

/// What is sent over http leaves this machine readable.
bool isPlainBeyondLoopback(CURLU* url) {
    return partOf(url, CURLUPART_SCHEME) == "http" && !isLoopback(lowerCase(partOf(url, CURLUPART_HOST)));
}

void logRefusal(CURLU* url) {
    log("Refused to send a request over http: http://" + partOf(url, CURLUPART_HOST) +
        " is not a loopback address");
}

/// Nothing may be thrown through libcurl's frames.
template <class Result, class Work>
Result keepingExceptions(Result whenThrown, const Work& work) noexcept {
    try {
        return work();
    } catch (...) {
        return whenThrown;
    }
}

}  // namespace

CurlTransfer::CurlTransfer(CurlLoop& loop, UrlRequest request, std::optional<std::filesystem::path> file,
                           UrlSession::Completion completion)
    : loop_(loop),
      request_(std::move(request)),
      certificates_(environment("VELMORA_CA_FILE")),
      completion_(std::move(completion)),
      file_(std::move(file)) {}

void CurlTransfer::resume() {
    auto expected = State::suspended;
    if (state_.compare_exchange_strong(expected, State::running)) loop_.submit(shared_from_this());
}

void CurlTransfer::cancel() {
    auto now = state_.load();
    while (now == State::suspended || now == State::running) {
        if (state_.compare_exchange_weak(now, State::canceling)) return loop_.submit(shared_from_this());
    }
}

std::optional<std::string> CurlTransfer::destination() {
    url_.reset(curl_url());
    // libcurl alone is more generous than a player or a page.
    if (!isUrl(request_.url) || curl_url_set(url_.get(), CURLUPART_URL, request_.url.c_str(),
                                             CURLU_NON_SUPPORT_SCHEME) != CURLUE_OK) {
        endWithError(UrlError::badUrl);
        return std::nullopt;
    }
    const auto scheme = partOf(url_.get(), CURLUPART_SCHEME);
    const auto host = lowerCase(partOf(url_.get(), CURLUPART_HOST));
    toLoopback_ = isLoopback(host);
    if (scheme != "http" && scheme != "https") {
        endWithError(UrlError::unsupportedUrl);
        return std::nullopt;
    }
    if (request_.requiresSecureTransport && isPlainBeyondLoopback(url_.get())) {
        logRefusal(url_.get());
        endWithError(UrlError::insecureTransportRefused);
        return std::nullopt;
    }
    return scheme + "://" + host + ":" + partOf(url_.get(), CURLUPART_PORT);
}

bool CurlTransfer::prepare(CURLSH* share) {
    // Never a handle that served before: in libcurl 7.88 it remembers where the last header line of its
    // answer lay, and a first header line that begins with a blank and has a colon is written there, into
    // freed memory; and it counts dead connections over all its exchanges, until one fails for their number.
    // Connections stay with the multi handle, cookies and TLS sessions with the share. `curl_easy_reset` is
    // no way out.
    handle_.reset(curl_easy_init());
    auto* handle = handle_.get();
    if (handle == nullptr) return false;
    curl_easy_setopt(handle, CURLOPT_SHARE, share);
    curl_easy_setopt(handle, CURLOPT_CURLU, url_.get());
    curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, message_.data());
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &CurlTransfer::onBody);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, this);
    curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, &CurlTransfer::onHeader);
    curl_easy_setopt(handle, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(handle, CURLOPT_XFERINFOFUNCTION, &CurlTransfer::onProgress);
    curl_easy_setopt(handle, CURLOPT_XFERINFODATA, this);
    curl_easy_setopt(handle, CURLOPT_NOPROGRESS, 0L);
    // Asked for each redirect too, over new and kept connections, before anything of the request goes out.
    curl_easy_setopt(handle, CURLOPT_PREREQFUNCTION, &CurlTransfer::onRequest);
    curl_easy_setopt(handle, CURLOPT_PREREQDATA, this);
    curl_easy_setopt(handle, CURLOPT_ACCEPT_ENCODING, "");
    curl_easy_setopt(handle, CURLOPT_COOKIEFILE, "");
    curl_easy_setopt(handle, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    // A name look-up that was given up must not hold up the loop until it ends.
    curl_easy_setopt(handle, CURLOPT_QUICK_EXIT, 1L);
    curl_easy_setopt(handle, CURLOPT_BUFFERSIZE, kReceiveBuffer);
    curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(handle, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(handle, CURLOPT_MAXREDIRS, kMostRedirects);
    // The loop has a time-out of its own, by the last byte that moved.
    curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT, 24L * 60 * 60);
    // What is meant to stay on this machine does not go to a proxy.
    if (toLoopback_) curl_easy_setopt(handle, CURLOPT_NOPROXY, "*");
    setTrust();
    setMethodAndBody();
    setHeaders();

    if (file_) partial_ = std::make_unique<PartialFile>(*file_);
    lastActivity_ = Clock::now();
    return true;
}

void CurlTransfer::setMethodAndBody() {
    auto* handle = handle_.get();
    const bool isPost = request_.method == "POST";
    if (request_.body || isPost) {
        static constexpr const char* kNothing = "";
        const auto size = request_.body ? request_.body->size() : 0;
        curl_easy_setopt(handle, CURLOPT_POST, 1L);
        curl_easy_setopt(handle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(size));
        curl_easy_setopt(handle, CURLOPT_POSTFIELDS, size > 0 ? request_.body->data() : kNothing);
    }
    const bool isCustom = !isPost && (request_.method != "GET" || request_.body);
    if (isCustom) curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, request_.method.c_str());
}

void CurlTransfer::setHeaders() {
    curl_slist* list = nullptr;
    const auto add = [&](const std::string& name, const std::string& value) {
        // A line end in a value would begin another header.
        if ((name + value).find_first_of(std::string("\r\n\0", 3)) != std::string::npos) {
            return log("A header with a line end in it is not sent: " + name);
        }
        // Without a value, or with one of blanks, libcurl sends the header only for a semicolon.
        const bool isBlank = value.find_first_not_of(kBlanks) == std::string::npos;
        const auto line = isBlank ? name + ";" : name + ": " + value;
        if (auto* longer = curl_slist_append(list, line.c_str())) list = longer;
    };
    add("User-Agent", userAgent());
    for (const auto& [name, value] : request_.headers) {
        // libcurl writes it itself, and leaves it out when a redirect makes a GET of a POST.
        if (::strcasecmp(name.c_str(), "Content-Length") != 0) add(name, value);
    }
    // No pause before a large body to ask whether it is wanted.
    if (auto* longer = curl_slist_append(list, "Expect:")) list = longer;
    headers_.reset(list);
    curl_easy_setopt(handle_.get(), CURLOPT_HTTPHEADER, list);
}

void CurlTransfer::setTrust() {
    static const char* const systems = curl_version_info(CURLVERSION_NOW)->cainfo;
    curl_easy_setopt(handle_.get(), CURLOPT_CAINFO, certificates_.empty() ? systems : certificates_.c_str());
    // With a folder of certificates besides the file, libcurl would load all of them for each new connection.
    curl_easy_setopt(handle_.get(), CURLOPT_CAPATH, nullptr);
}

std::size_t CurlTransfer::onBody(char* bytes, std::size_t one, std::size_t size, void* transfer) {
    auto& self = *static_cast<CurlTransfer*>(transfer);
    return keepingExceptions<std::size_t>(CURL_WRITEFUNC_ERROR, [&] {
        return self.takeBody({bytes, one * size}) ? one * size : CURL_WRITEFUNC_ERROR;
    });
}

std::size_t CurlTransfer::onHeader(char* bytes, std::size_t one, std::size_t size, void* transfer) {
    auto& self = *static_cast<CurlTransfer*>(transfer);
    return keepingExceptions<std::size_t>(CURL_WRITEFUNC_ERROR, [&] {
        return self.takeHeader({bytes, one * size}) ? one * size : CURL_WRITEFUNC_ERROR;
    });
}

int CurlTransfer::onRequest(void* transfer, char*, char*, int, int) {
    auto& self = *static_cast<CurlTransfer*>(transfer);
    return keepingExceptions<int>(CURL_PREREQFUNC_ABORT,
                                  [&] { return self.mayAsk() ? CURL_PREREQFUNC_OK : CURL_PREREQFUNC_ABORT; });
}

int CurlTransfer::onProgress(void* transfer, curl_off_t, curl_off_t, curl_off_t, curl_off_t sent) {
    auto& self = *static_cast<CurlTransfer*>(transfer);
    if (sent != self.sent_) self.lastActivity_ = Clock::now();
    self.sent_ = sent;
    return 0;
}

bool CurlTransfer::takeBody(std::string_view bytes) {
    lastActivity_ = Clock::now();
    if (partial_) {
        partial_->append(bytes);
        return true;
    }
    tooLong_ = body_.size() + bytes.size() > UrlSession::kMostBytesInMemory;
    if (!tooLong_) body_.append(bytes);
    return !tooLong_;
}

bool CurlTransfer::takeHeader(std::string_view line) {
    lastActivity_ = Clock::now();
    headerSize_ += line.size();
    if (line.starts_with("HTTP/")) headersAreWhole_ = false;
    if (line.starts_with('\r') || line.starts_with('\n')) headersAreWhole_ = true;
    return headerSize_ <= kMostHeaderBytes;
}

bool CurlTransfer::mayAsk() {
    if (!request_.requiresSecureTransport) return true;
    const char* address = nullptr;
    curl_easy_getinfo(handle_.get(), CURLINFO_EFFECTIVE_URL, &address);
    const CurlUrl url(curl_url());
    if (address == nullptr || curl_url_set(url.get(), CURLUPART_URL, address, 0) != CURLUE_OK) return false;
    refusedRedirect_ = isPlainBeyondLoopback(url.get());
    if (refusedRedirect_) logRefusal(url.get());
    return !refusedRedirect_;
}

void CurlTransfer::endWithResult(CURLcode result) {
    if (result == CURLE_OK && headersAreWhole_) return end(std::nullopt);
    const auto* description = message_[0] != '\0' ? message_.data() : curl_easy_strerror(result);
    end(errorOf(codeOf(result), result == CURLE_OK ? "The answer's headers were cut short" : description));
}

UrlError::Code CurlTransfer::codeOf(CURLcode result) const {
    if (tooLong_) return UrlError::dataLengthExceedsMaximum;
    if (refusedRedirect_) return UrlError::insecureTransportRefused;
    if (result == CURLE_OK) return UrlError::networkConnectionLost;
    // The address itself was looked at before: the answer is not HTTP, or leads to what may not be followed.
    if (result == CURLE_UNSUPPORTED_PROTOCOL && !response()) return UrlError::badServerResponse;
    return generalCodeOf(result);
}

void CurlTransfer::endWithError(UrlError::Code code) { end(errorOf(code, "")); }

long CurlTransfer::status() const {
    long status = 0;
    if (handle_) curl_easy_getinfo(handle_.get(), CURLINFO_RESPONSE_CODE, &status);
    return status;
}

std::optional<UrlResponse> CurlTransfer::response() const {
    const auto known = status();
    if (known == 0) return std::nullopt;
    const char* url = nullptr;
    curl_easy_getinfo(handle_.get(), CURLINFO_EFFECTIVE_URL, &url);
    return UrlResponse{url != nullptr ? url : request_.url, static_cast<int>(known)};
}

void CurlTransfer::end(std::optional<UrlError> error) {
    ended_ = true;
    UrlOutcome outcome;
    outcome.response = response();
    outcome.error = std::move(error);
    if (!outcome.error && !file_) outcome.data = std::move(body_);
    handle_.reset();

    // The file is flushed and moved on the delegate queue: the loop must not wait for the disk.
    loop_.delegateQueue.add([self = shared_from_this(), outcome = std::move(outcome)]() mutable {
        // A cancel that comes before the completion runs still counts.
        if (self->state_.exchange(State::completed) == State::canceling) {
            outcome = {std::nullopt, std::nullopt, errorOf(UrlError::cancelled, "cancelled")};
        }
        if (self->partial_ && !outcome.error) self->partial_->publish();
        self->partial_.reset();
        const auto completion = std::exchange(self->completion_, nullptr);
        if (completion) completion(std::move(outcome));
    });
}

}  // namespace velmora::platform

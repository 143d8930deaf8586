#include "platform/desktop/CurlTransfer.h"

#include "platform/Bundle.h"
#include "platform/Log.h"
#include "platform/UrlText.h"
#include "platform/desktop/CurlLoop.h"

#include <array>
#include <cstdlib>
#include <exception>

#include <arpa/inet.h>
#include <strings.h>

namespace velmora::platform {

namespace {

constexpr long kMostRedirects = 16;
constexpr std::size_t kMostHeaderBytes = std::size_t{300} * 1024;
constexpr long kReceiveBuffer = 128L * 1024;

UrlError::Code codeOf(CURLcode code) {
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
    return host == "localhost" || host == "[::1]";
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
    static const std::string agent =
        Bundle::main().identifier().value_or("application") + "/" + Bundle::main().version().value_or("0");
    return agent;
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
        finish(UrlError::badUrl);
        return std::nullopt;
    }
    const auto scheme = partOf(url_.get(), CURLUPART_SCHEME);
    const auto host = lowerCase(partOf(url_.get(), CURLUPART_HOST));
    toLoopback_ = isLoopback(host);
    if (scheme != "http" && scheme != "https") {
        finish(UrlError::unsupportedUrl);
        return std::nullopt;
    }
    if (request_.requiresSecureTransport && scheme == "http" && !toLoopback_) {
        log("Refused to send a request over http: " + scheme + "://" + host + " is not a loopback address");
        finish(UrlError::insecureTransportRefused);
        return std::nullopt;
    }
    return scheme + "://" + host + ":" + partOf(url_.get(), CURLUPART_PORT);
}

CurlHandle CurlTransfer::makeHandle(CURLSH* share) {
    CurlHandle made(curl_easy_init());
    auto* handle = made.get();
    if (handle == nullptr) return made;
    curl_easy_setopt(handle, CURLOPT_SHARE, share);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &CurlTransfer::onBody);
    curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, &CurlTransfer::onHeader);
    curl_easy_setopt(handle, CURLOPT_XFERINFOFUNCTION, &CurlTransfer::onProgress);
    curl_easy_setopt(handle, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(handle, CURLOPT_ACCEPT_ENCODING, "");
    curl_easy_setopt(handle, CURLOPT_COOKIEFILE, "");
    // With a folder of certificates besides the file, libcurl would load all of them for each new connection.
    curl_easy_setopt(handle, CURLOPT_CAPATH, nullptr);
    curl_easy_setopt(handle, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    // A name look-up that was given up must not hold up the loop until it ends.
    curl_easy_setopt(handle, CURLOPT_QUICK_EXIT, 1L);
    curl_easy_setopt(handle, CURLOPT_BUFFERSIZE, kReceiveBuffer);
    curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(handle, CURLOPT_MAXREDIRS, kMostRedirects);
    // The loop has a time-out of its own, by the last byte that moved.
    curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT, 24L * 60 * 60);
    return made;
}

void CurlTransfer::prepare(CurlHandle fresh) {
    handle_ = std::move(fresh);
    auto* handle = handle_.get();
    if (file_) partial_ = std::make_unique<PartialFile>(*file_);

    curl_easy_setopt(handle, CURLOPT_CURLU, url_.get());
    curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, message_.data());
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, this);
    curl_easy_setopt(handle, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(handle, CURLOPT_XFERINFODATA, this);
    setMethodAndBody();
    setHeaders();
    setSecurity();
    lastActivity_ = Clock::now();
}

void CurlTransfer::setMethodAndBody() {
    auto* handle = handle_.get();
    const bool isPost = request_.method == "POST";
    // The handle may come from a transfer with another method: each setting is made, also where it is the
    // default.
    curl_easy_setopt(handle, CURLOPT_HTTPGET, 1L);
    if (request_.body || isPost) {
        static constexpr const char* kNothing = "";
        const auto size = request_.body ? request_.body->size() : 0;
        curl_easy_setopt(handle, CURLOPT_POST, 1L);
        curl_easy_setopt(handle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(size));
        curl_easy_setopt(handle, CURLOPT_POSTFIELDS, size > 0 ? request_.body->data() : kNothing);
    }
    const bool isCustom = !isPost && (request_.method != "GET" || request_.body);
    curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, isCustom ? request_.method.c_str() : nullptr);
}

void CurlTransfer::setHeaders() {
    curl_slist* list = nullptr;
    const auto add = [&](const std::string& name, const std::string& value) {
        // A line end in a value would begin another header.
        if ((name + value).find_first_of(std::string("\r\n\0", 3)) != std::string::npos) {
            return log("A header with a line end in it is not sent: " + name);
        }
        // Without a value libcurl wants a semicolon for the colon.
        const auto line = value.empty() ? name + ";" : name + ": " + value;
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

void CurlTransfer::setSecurity() {
    auto* handle = handle_.get();
    static const char* const systems = curl_version_info(CURLVERSION_NOW)->cainfo;
    curl_easy_setopt(handle, CURLOPT_CAINFO, certificates_.empty() ? systems : certificates_.c_str());
    curl_easy_setopt(handle, CURLOPT_REDIR_PROTOCOLS_STR,
                     request_.requiresSecureTransport ? "https" : "http,https");
    // What is meant to stay on this machine does not go to a proxy.
    curl_easy_setopt(handle, CURLOPT_NOPROXY, toLoopback_ ? "*" : nullptr);
}

std::size_t CurlTransfer::onBody(char* bytes, std::size_t one, std::size_t size, void* transfer) {
    auto& self = *static_cast<CurlTransfer*>(transfer);
    self.lastActivity_ = Clock::now();
    size *= one;
    if (self.partial_) {
        self.partial_->append({bytes, size});
    } else if (self.body_.size() + size > UrlSession::kMostBytesInMemory) {
        self.tooLong_ = true;
        return CURL_WRITEFUNC_ERROR;
    } else {
        try {
            self.body_.append(bytes, size);
        } catch (const std::exception&) {
            return CURL_WRITEFUNC_ERROR;
        }
    }
    return size;
}

std::size_t CurlTransfer::onHeader(char*, std::size_t one, std::size_t size, void* transfer) {
    auto& self = *static_cast<CurlTransfer*>(transfer);
    self.lastActivity_ = Clock::now();
    self.headerSize_ += one * size;
    return self.headerSize_ > kMostHeaderBytes ? CURL_WRITEFUNC_ERROR : one * size;
}

int CurlTransfer::onProgress(void* transfer, curl_off_t, curl_off_t, curl_off_t, curl_off_t sent) {
    auto& self = *static_cast<CurlTransfer*>(transfer);
    if (sent != self.sent_) self.lastActivity_ = Clock::now();
    self.sent_ = sent;
    return 0;
}

void CurlTransfer::finish(CURLcode code) {
    if (code == CURLE_OK) return complete(std::nullopt);
    if (code == CURLE_UNSUPPORTED_PROTOCOL) return finishUnsupported();
    const auto description = message_[0] != '\0' ? message_.data() : curl_easy_strerror(code);
    complete(errorOf(tooLong_ ? UrlError::dataLengthExceedsMaximum : codeOf(code), description));
}

void CurlTransfer::finishUnsupported() {
    // The address itself was looked at before: the answer is not HTTP, or leads to what may not be followed.
    if (!response()) return finish(UrlError::badServerResponse);
    if (!request_.requiresSecureTransport) return finish(UrlError::unsupportedUrl);
    log("Refused to follow a redirect that leaves https");
    finish(UrlError::insecureTransportRefused);
}

void CurlTransfer::finish(UrlError::Code code) { complete(errorOf(code, "")); }

std::optional<UrlResponse> CurlTransfer::response() const {
    if (!handle_) return std::nullopt;
    long status = 0;
    const char* url = nullptr;
    curl_easy_getinfo(handle_.get(), CURLINFO_RESPONSE_CODE, &status);
    curl_easy_getinfo(handle_.get(), CURLINFO_EFFECTIVE_URL, &url);
    if (status == 0) return std::nullopt;
    return UrlResponse{url != nullptr ? url : request_.url, static_cast<int>(status)};
}

void CurlTransfer::complete(std::optional<UrlError> error) {
    ended_ = true;
    UrlOutcome outcome;
    outcome.response = response();
    outcome.error = std::move(error);
    if (!outcome.error && !file_) outcome.data = std::move(body_);

    // The file is flushed and moved on the delegate queue: the loop must not wait for the disk.
    loop_.deliver([self = shared_from_this(), outcome = std::move(outcome)]() mutable {
        // A cancel that comes before the completion runs still counts.
        if (self->state_.exchange(State::completed) == State::canceling) {
            outcome = {std::nullopt, std::nullopt, errorOf(UrlError::cancelled, "cancelled")};
        }
        if (self->partial_ && !outcome.error) self->partial_->publish();
        self->partial_.reset();
        self->headers_.reset();
        const auto completion = std::exchange(self->completion_, nullptr);
        if (completion) completion(std::move(outcome));
    });
}

}  // namespace velmora::platform

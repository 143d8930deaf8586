#include "net/VLClient.h"

#include "log/VLLog.h"
#include "model/RecordOutput.h"
#include "model/Texts.h"
#include "model/VLTokenResponse.h"
#include "net/VLRequestHeaders.h"
#include "net/VLWebServices.h"
#include "platform/Device.h"
#include "platform/Json.h"
#include "platform/UrlText.h"
#include "platform/Utf8.h"
#include "store/VLDefaults.h"

#include <utility>

namespace velmora {

namespace {

constexpr std::int64_t kOk = 200;
constexpr std::int64_t kUnauthorized = 401;

bool carriesBody(VLHttpRequestMethod method) {
    return method == VLHttpRequestMethod::post || method == VLHttpRequestMethod::put;
}

std::string textOf(const VLCall& call) {
    return call.params ? call.url + "?" + queryTextOf(*call.params) : call.url;
}

/// How much of a URL is its scheme and an address in brackets, which are no characters of a query.
std::size_t sizeWithBrackets(const std::string& url) {
    static constexpr std::string_view kOpening = "://[";
    const auto open = url.find(':');
    if (open == std::string::npos || url.compare(open, kOpening.size(), kOpening) != 0) return 0;
    const auto close = url.find_first_not_of("0123456789abcdefABCDEF:.", open + kOpening.size());
    if (close == std::string::npos || url[close] != ']') return 0;
    return close + 1;
}

/// Percent-encoded once, as a whole.
std::string urlOf(const VLCall& call) {
    const auto text = textOf(call);
    const auto size = sizeWithBrackets(text);
    return text.substr(0, size) + platform::percentEncoded(std::string_view(text).substr(size),
                                                           platform::UrlCharacters::queryAllowed);
}

VLResult resultOf(const std::string& data, const VLReceive& receive) {
    if (receive) {
        auto value = platform::parseJson(data);
        return receive(value ? value->if_object() : nullptr);
    }
    return platform::isUtf8(data) ? std::optional(data) : std::nullopt;
}

void complete(platform::UrlOutcome outcome, const VLReceive& receive, const VLClientSuccess& success,
              const VLClientFailure& failure) {
    const bool isOk =
        outcome.data && !outcome.error && outcome.response && outcome.response->statusCode == kOk;
    if (isOk && success) return success(kOk, resultOf(*outcome.data, receive));
    if (!failure) return;
    if (outcome.error && outcome.error->code == platform::UrlError::cancelled) return;
    failure(VLClientError(std::move(outcome.response), std::move(outcome.error)));
}

/// An attempt, with a failure of its own.
std::shared_ptr<VLDataTask> send(const VLCall& call, const VLClientFailure& failure) {
    const auto method = VLClient::getStringOfHttpRequestMethod(call.method);
    const auto data = carriesBody(call.method) ? call.body : std::nullopt;
    const auto headers =
        call.includeCustomHeaders ? std::optional(VLRequestHeaders::getHeaders()) : std::nullopt;
    auto request = VLClient::requestWithURL(urlOf(call), method, data, headers);
    request.isReport = call.isReport;
    request.requiresSecureTransport = call.url.starts_with(VLWebServices::siteRootUrl() + "/");

    auto task = std::make_shared<VLDataTask>(platform::UrlSession::shared().dataTask(
        std::move(request),
        [receive = call.receive, success = call.success, failure](platform::UrlOutcome outcome) {
            complete(std::move(outcome), receive, success, failure);
        }));
    task->task->resume();
    return task;
}

void sendWithNewToken(const std::shared_ptr<const VLCall>& call) {
    const auto onToken = [call](std::int64_t, const VLResult& result) {
        VLDefaults::setAuthorizationToken(resultAs<VLTokenResponse>(result)->getToken());
        VLClient::sendRequestOfMethod(*call);
    };
    const auto onNoToken = [call](const VLClientError& error) {
        VLLog("failed getting token from server...");
        call->failure(error);
    };
    VLClient::sendRequestOfMethod({.url = VLWebServices::getTokenUrl(),
                                   .includeCustomHeaders = true,
                                   .receive = receive<VLTokenResponse>(),
                                   .success = onToken,
                                   .failure = onNoToken});
}

}  // namespace

std::shared_ptr<VLDataTask> VLClient::sendRequestOfMethod(const VLCall& call) {
    return send(call, call.failure);
}

std::shared_ptr<VLDataTask> VLClient::sendRequestOfMethod(const VLCall& call, VLRetryMode retry) {
    const auto kept = std::make_shared<const VLCall>(call);
    return send(call, [kept, retry](const VLClientError& error) {
        const bool isUnauthorized = error.responseCode() == kUnauthorized;
        if (isUnauthorized && retry == VLRetryMode::withNewToken) return sendWithNewToken(kept);
        if (isUnauthorized && retry == VLRetryMode::asItStands) {
            sendRequestOfMethod(*kept);
            return;
        }
        kept->failure(error);
    });
}

std::shared_ptr<VLDataTask> VLClient::sendRequestOfMethod(VLCall call,
                                                          const std::shared_ptr<VLSerializedModel>& withBody,
                                                          VLRetryMode retry) {
    call.body = withBody ? recordToJson(*withBody) : std::nullopt;
    return sendRequestOfMethod(call, retry);
}

platform::UrlRequest VLClient::requestWithURL(const std::string& url, const std::string& kind,
                                              const std::optional<std::string>& data,
                                              const std::optional<VLHeaders>& headers) {
    platform::UrlRequest request;
    request.url = url;
    request.method = kind;
    if (data) {
        request.body = data;
        request.setHeader("Content-Length", std::to_string(data->size()));
    }
    request.setHeader("Content-Type", "application/json");
    request.setHeader("Accept", "application/json");
    if (headers) {
        for (const auto& [name, value] : *headers) request.setHeader(name, value);
    }
    return request;
}

std::optional<std::string> VLClient::getDeviceId() { return platform::Device::identifierForVendor(); }

std::string VLClient::getStringOfHttpRequestMethod(VLHttpRequestMethod method) {
    switch (method) {
    case VLHttpRequestMethod::get: return "GET";
    case VLHttpRequestMethod::post: return "POST";
    case VLHttpRequestMethod::put: return "PUT";
    }
    return "UNKNOWN";
}

std::int64_t VLClient::getNumberOfHttpRequestMethod(VLHttpRequestMethod method) { return numberOf(method); }

VLHttpRequestMethod VLClient::getHttpRequestMethodOfNumber(const Property& number) {
    return httpRequestMethodOf(number);
}

}  // namespace velmora

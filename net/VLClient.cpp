#include "net/VLClient.h"

#include "core/VLLog.h"
#include "model/VLDefaults.h"
#include "model/VLTokenResponse.h"
#include "net/VLRequestHeaders.h"
#include "net/VLWebServices.h"
#include "platform/Device.h"
#include "platform/Json.h"
#include "platform/UrlText.h"
#include "platform/Utf8.h"

#include <utility>

namespace velmora {

namespace {

constexpr std::int64_t kOk = 200;
constexpr std::int64_t kUnauthorized = 401;

/// All that it takes to send a request, once or once more.
struct Call {
    VLHttpRequestMethod method;
    std::string path;
    std::optional<Dictionary> params;
    std::optional<Dictionary> body;
    bool includeCustomHeaders;
    VLReceive receive;
    VLClientSuccess success;
    VLClientFailure failure;

    std::shared_ptr<VLDataTask> send(const VLClientFailure& onFailure) const {
        return VLClient::sendRequestOfMethod(method, path, params, body, includeCustomHeaders, receive,
                                             success, onFailure);
    }
};

bool carriesBody(VLHttpRequestMethod method) {
    return method == VLHttpRequestMethod::post || method == VLHttpRequestMethod::put;
}

std::string textOf(const std::string& path, const std::optional<Dictionary>& params) {
    if (!params) return path;
    std::string text = path + "?";
    bool first = true;
    for (const auto& param : *params) {
        if (!first) text += '&';
        first = false;
        text.append(param.key().data(), param.key().size()).append(1, '=');
        text += platform::description(param.value());
    }
    return text;
}

VLResult resultOf(const std::string& data, const VLReceive& receive) {
    if (receive) {
        platform::Arena arena;
        const auto value = platform::parseJson(data, &arena);
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

void sendWithNewToken(const std::shared_ptr<const Call>& call) {
    const auto onToken = [call](std::int64_t, const VLResult& result) {
        VLDefaults::setAuthorizationToken(resultAs<VLTokenResponse>(result)->getToken());
        call->send(call->failure);
    };
    const auto onNoToken = [call](const VLClientError& error) {
        VLLog("failed getting token from server...");
        call->failure(error);
    };
    VLClient::sendRequestOfMethod(VLHttpRequestMethod::get, VLWebServices::getTokenUrl(), std::nullopt,
                                  std::nullopt, true, receive<VLTokenResponse>(), onToken, onNoToken);
}

}  // namespace

std::shared_ptr<VLDataTask> VLClient::sendRequestOfMethod(
    VLHttpRequestMethod method, const std::string& toPath, const std::optional<Dictionary>& withParams,
    const std::optional<Dictionary>& withBody, bool andIncludeCustomHeaders, const VLReceive& receive,
    const VLClientSuccess& success, const VLClientFailure& failure) {
    const auto data = withBody && carriesBody(method) ? platform::writeJson(*withBody) : std::nullopt;
    const auto url =
        platform::percentEncoded(textOf(toPath, withParams), platform::UrlCharacters::queryAllowed);
    const auto headers =
        andIncludeCustomHeaders ? std::optional(VLRequestHeaders::getHeaders()) : std::nullopt;
    auto request = requestWithURL(url, getStringOfHttpRequestMethod(method), data, headers);
    request.requiresSecureTransport = toPath.starts_with(VLWebServices::siteRootUrl() + "/");

    auto task = std::make_shared<VLDataTask>(platform::UrlSession::shared().dataTask(
        std::move(request), [receive, success, failure](platform::UrlOutcome outcome) {
            complete(std::move(outcome), receive, success, failure);
        }));
    task->task->resume();
    return task;
}

std::shared_ptr<VLDataTask> VLClient::sendRequestOfMethod(
    VLHttpRequestMethod method, const std::string& toPath, const std::optional<Dictionary>& withParams,
    const std::optional<Dictionary>& withDictBody, bool andIncludeCustomHeaders, const VLReceive& receive,
    const VLClientSuccess& success, const VLClientFailure& failure, VLRetryMode retry) {
    const auto call = std::make_shared<const Call>(
        Call{method, toPath, withParams, withDictBody, andIncludeCustomHeaders, receive, success, failure});
    return call->send([call, retry](const VLClientError& error) {
        if (error.responseCode() == kUnauthorized && retry == VLRetryMode::withNewToken)
            return sendWithNewToken(call);
        if (error.responseCode() == kUnauthorized && retry == VLRetryMode::asItStands) {
            call->send(call->failure);
            return;
        }
        call->failure(error);
    });
}

std::shared_ptr<VLDataTask> VLClient::sendRequestOfMethod(
    VLHttpRequestMethod method, const std::string& toPath, const std::optional<Dictionary>& withParams,
    const std::shared_ptr<VLSerializedModel>& withBody, bool andIncludeCustomHeaders,
    const VLReceive& receive, const VLClientSuccess& success, const VLClientFailure& failure,
    VLRetryMode retry) {
    const auto body = withBody ? std::optional(dictionaryOf(*withBody)) : std::nullopt;
    return sendRequestOfMethod(method, toPath, withParams, body, andIncludeCustomHeaders, receive, success,
                               failure, retry);
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

std::int64_t VLClient::getNumberOfHttpRequestMethod(VLHttpRequestMethod method) {
    switch (method) {
    case VLHttpRequestMethod::get:
    case VLHttpRequestMethod::post:
    case VLHttpRequestMethod::put: return static_cast<std::int64_t>(method);
    }
    return static_cast<std::int64_t>(VLHttpRequestMethod::get);
}

VLHttpRequestMethod VLClient::getHttpRequestMethodOfNumber(const Property& number) {
    for (const auto method :
         {VLHttpRequestMethod::get, VLHttpRequestMethod::post, VLHttpRequestMethod::put}) {
        if (platform::equals(number, static_cast<std::int64_t>(method))) return method;
    }
    return VLHttpRequestMethod::get;
}

}  // namespace velmora

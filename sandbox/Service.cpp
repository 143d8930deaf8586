#include "sandbox/Service.h"

#include "sandbox/Answers.h"
#include "sandbox/BodyRules.h"
#include "sandbox/Geocoder.h"
#include "sandbox/HeaderRules.h"
#include "sandbox/Media.h"
#include "sandbox/Pages.h"
#include "sandbox/PathPattern.h"
#include "sandbox/Vast.h"
#include "sandbox/VastRules.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace velmora::sandbox {

namespace json = boost::json;

namespace {

constexpr const char* kHtml = "text/html; charset=utf-8";

/// What a call has to bring along.
enum class Needs { nothing, headers, headersAndToken };

bool allows(std::string_view methods, std::string_view method) {
    // HEAD is a GET whose answer is cut short.
    if (method == "HEAD") method = "GET";
    return methods.find(method) != std::string_view::npos;
}

std::string withOrWithoutSlash(std::string path) {
    if (path.ends_with('/'))
        path.pop_back();
    else
        path += '/';
    return path;
}

std::optional<std::string> text(const json::object& object, std::string_view key) {
    const auto* value = object.if_contains({key.data(), key.size()});
    if (value == nullptr || !value->is_string()) return std::nullopt;
    return std::string(value->get_string());
}

std::uint64_t numberOr0(const std::optional<std::string>& digits) {
    std::uint64_t value = 0;
    if (digits) std::from_chars(digits->data(), digits->data() + digits->size(), value);
    return value;
}

}  // namespace

/// One request on its way through the service.
struct Service::Call {
    const Request& request;
    std::string kind = "unknown";
    /// What the path has in the place of the pattern's names.
    std::vector<std::string> parts = {};
    json::object body = {};
    std::optional<std::string> zone = {};
    std::vector<std::string> problems = {};

    /// Whether there is none, or a JSON object.
    bool readBody() {
        if (request.body.empty()) return true;
        boost::system::error_code error;
        auto value = json::parse(request.body, error);
        if (error || !value.is_object()) {
            problems.emplace_back("the body is no JSON object");
            return false;
        }
        body = std::move(value.get_object());
        return true;
    }
};

struct Service::Route {
    std::string_view pattern;
    std::string_view methods;
    std::string_view kind;
    Needs needs;
    Response (Service::*answer)(Call& call);
};

struct Service::Table {
    static constexpr Route kRoutes[]{
        {"/v2/suggestions/", "POST", "suggestions", Needs::headersAndToken, &Service::offerAds},
        {"/v2/suggestions/{id}/status/", "POST", "status", Needs::headersAndToken, &Service::takeStatus},
        {"/v2/suggestions/get-reward", "GET, POST", "reward", Needs::headersAndToken, &Service::grantReward},
        {"/v2/suggestions/tracker/done", "GET, POST", "report", Needs::headersAndToken, &Service::takeReport},
        {"/v2/common/send-crash", "GET", "crash", Needs::nothing, &Service::takeReport},
        {"/v2/token/", "GET", "token", Needs::headers, &Service::giveToken},
        {"/v2/strategies/caching", "GET", "caching", Needs::headersAndToken, &Service::offerAdsToCache},
        {"/v2/pre-roll/{zone}/vast", "GET", "vast", Needs::nothing, &Service::giveVast},
        {"/media/{name}", "GET", "media", Needs::nothing, &Service::giveMedia},
        {"/pages/{name}", "GET", "page", Needs::nothing, &Service::givePage},
        {"/track/{id}/{event}", "GET", "tracker", Needs::nothing, &Service::takeTracker},
        {"/geocoder/reverse", "GET", "geocoder", Needs::nothing, &Service::findPlace},
        {"/sandbox/", "GET", "sandbox", Needs::nothing, &Service::showInspector},
        {"/sandbox/ledger", "GET", "sandbox", Needs::nothing, &Service::showLedger},
        {"/sandbox/reset", "POST", "sandbox", Needs::nothing, &Service::resetAll},
        {"/sandbox/expire-tokens", "POST", "sandbox", Needs::nothing, &Service::expireAllTokens},
    };

    static const Route* find(std::string_view path) {
        const auto* found = std::find_if(std::begin(kRoutes), std::end(kRoutes),
                                         [&](const Route& route) { return match(route.pattern, path); });
        return found == std::end(kRoutes) ? nullptr : found;
    }
};

Service::Service(const Options& options)
    : videos_(options.videos),
      ledger_(options.mostLedgerEntries),
      tokens_(options.tokenLifetime),
      suggestions_(options.expiringAfter) {}

Response Service::answer(const Request& request) {
    Call call{.request = request};
    auto response = dispatch(call);
    // Whoever looks into the ledger is not what it is about.
    if (call.kind == "sandbox") return response;
    ledger_.add({.request = request,
                 .status = response.status,
                 .kind = std::move(call.kind),
                 .zone = std::move(call.zone),
                 .problems = std::move(call.problems)});
    return response;
}

Response Service::dispatch(Call& call) {
    const auto& path = call.request.path;
    const auto* route = Table::find(path);
    if (route == nullptr) {
        const auto other = withOrWithoutSlash(path);
        return refusal(404, "There is nothing at " + path +
                                (Table::find(other) != nullptr ? "; did you mean " + other + "?" : ""));
    }
    call.kind = route->kind;
    call.parts = *match(route->pattern, path);
    if (!allows(route->methods, call.request.method)) {
        auto response = refusal(405, call.request.method + " is no method of " + path + ", which takes " +
                                         std::string(route->methods));
        response.headers.emplace_back("Allow", route->methods);
        return response;
    }
    return admit(*route, call);
}

Response Service::admit(const Route& route, Call& call) {
    bool isReadable = true;
    if (route.needs != Needs::nothing) {
        call.problems = headerProblems(call.request.headers);
        isReadable = call.readBody();
        call.zone = text(call.body, "zoneId");
        if (!call.zone) call.zone = call.request.queryValue("zoneId");
    }
    if (route.needs == Needs::headersAndToken && !mayPass(call.request)) {
        auto response = refusal(401, "The call came without a valid access token");
        response.headers.emplace_back("WWW-Authenticate", "Bearer");
        return response;
    }
    if (!isReadable) return refusal(400, "The body is no JSON object");
    return (this->*route.answer)(call);
}

bool Service::mayPass(const Request& request) const {
    const auto token = bearerToken(request.headers);
    return token && tokens_.isGood(*token, request.header("developer-key").value_or(""));
}

Response Service::offerAds(Call& call) {
    for (auto& problem : suggestionBodyProblems(call.body)) call.problems.push_back(std::move(problem));
    auto user = call.request.header("t-user-id").value_or("");
    if (user.empty()) user = "user-" + randomText(8);
    users_.remember(user, call.body);
    auto list = suggestions_.listFor(zoneNamed(call.zone.value_or("")), call.request.origin());
    list.emplace("velmoraUserId", user);
    return jsonAnswer(list);
}

Response Service::takeStatus(Call& call) {
    call.zone = zoneOfSuggestion(call.parts.front());
    const auto* state = call.body.if_contains("newState");
    if (state == nullptr || !state->is_int64())
        call.problems.emplace_back("newState is missing or no number");
    return jsonAnswer(json::object());
}

/// A coin for each done suggestion.
Response Service::grantReward(Call& call) {
    if (const auto user = call.request.header("t-user-id")) users_.remember(*user, call.body);
    const auto* done = call.body.if_contains("doneSuggestions");
    const bool isList = done != nullptr && done->is_array();
    if (done != nullptr && !isList) call.problems.emplace_back("doneSuggestions is no list");
    return jsonAnswer(json::object{{"awardedCoin", isList ? done->get_array().size() : 0}});
}

Response Service::takeReport(Call&) { return jsonAnswer(json::object()); }

Response Service::giveToken(Call& call) {
    const auto key = call.request.header("developer-key").value_or("");
    return jsonAnswer(json::object{{"token", tokens_.issueFor(key)}});
}

Response Service::offerAdsToCache(Call& call) {
    for (const char* name : {"doneCount", "doingCount"}) {
        const auto count = call.request.queryValue(name);
        if (!count || count->empty() || count->find_first_not_of("0123456789") != std::string::npos)
            call.problems.push_back(std::string(name) + " is missing or no number");
    }
    return jsonAnswer(suggestions_.listFor(zoneNamed(call.zone.value_or("")), call.request.origin()));
}

Response Service::giveVast(Call& call) {
    call.zone = call.parts.front();
    call.problems = vastProblems(call.request);
    const auto& zone = zoneNamed(*call.zone);
    const VastAd ad{.zone = zone,
                    .origin = call.request.origin(),
                    .suggestionId = suggestions_.nextIdFor(zone),
                    .maySkip = call.request.queryValue("prerollType") != "1"};
    const auto version = call.request.queryValue("vastVersion") == "2" ? VastVersion::v2 : VastVersion::v3;
    return {.type = "application/xml", .body = vastDocument(ad, version)};
}

Response Service::giveMedia(Call& call) {
    return mediaFile(videos_, call.parts.front(), call.request.header("range"));
}

Response Service::givePage(Call& call) {
    call.zone = call.request.queryValue("zone");
    const auto& name = call.parts.front();
    const auto page = name == "inspector" ? std::nullopt : pageNamed(name);
    if (!page) return refusal(404, "There is no page " + name);
    return {.type = kHtml, .body = std::string(*page)};
}

Response Service::takeTracker(Call& call) {
    call.zone = zoneOfSuggestion(call.parts.front());
    return {.type = "text/plain"};
}

Response Service::findPlace(Call& call) {
    call.problems = geocodingProblems(call.request);
    return reverseGeocoded(call.request);
}

Response Service::showInspector(Call&) {
    return {.type = kHtml, .body = std::string(pageNamed("inspector").value_or(""))};
}

Response Service::showLedger(Call& call) {
    return jsonAnswer(ledger(numberOr0(call.request.queryValue("after"))));
}

Response Service::resetAll(Call&) {
    reset();
    return jsonAnswer(json::object());
}

Response Service::expireAllTokens(Call&) {
    expireTokens();
    return jsonAnswer(json::object());
}

json::object Service::ledger(std::uint64_t after) const {
    return {{"entries", ledger_.entriesAfter(after)},
            {"oldest", ledger_.oldest()},
            {"last", ledger_.last()},
            {"finalStates", users_.finalStates()},
            {"problems", ledger_.problems()}};
}

bool Service::await(std::string_view kind, std::size_t count, std::chrono::milliseconds most) const {
    return ledger_.await(kind, count, most);
}

void Service::reset() {
    ledger_.clear();
    users_.forgetAll();
    tokens_.expireAll();
}

void Service::expireTokens() { tokens_.expireAll(); }

}  // namespace velmora::sandbox

#include "sandbox/HeaderRules.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <span>

namespace velmora::sandbox {

namespace {

constexpr std::string_view kBearer = "bearer ";
constexpr std::int64_t kClockMayDiffer = 10LL * 60 * 1000;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Of ASCII text, in which bytes and characters are the same.
std::string checksum(std::string_view key) {
    long sum = 0;
    for (const char c : key) sum += static_cast<unsigned char>(c) + (isDigit(c) ? c - '0' : 0);
    return std::to_string(sum);
}

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 128; });
}

using Check = bool (*)(const std::string& value, const Fields& headers);

bool anything(const std::string& value, const Fields&) { return !value.empty(); }

bool fingerprint(const std::string& value, const Fields& headers) {
    const auto key = valueOf(headers, "developer-key").value_or("");
    const auto sum = isAscii(key) ? checksum(key) : "";
    return value.ends_with(sum + "direct") &&
           value.find(valueOf(headers, "app-package-name").value_or("")) != std::string::npos;
}

bool recentMilliseconds(const std::string& value, const Fields&) {
    if (value.size() != 13 || !std::all_of(value.begin(), value.end(), isDigit)) return false;
    const auto now = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::system_clock::now().time_since_epoch());
    return std::abs(std::stoll(value) - now.count()) <= kClockMayDiffer;
}

bool bearer(const std::string& value, const Fields&) {
    return value.starts_with(kBearer) && value.size() > kBearer.size() &&
           value.find(' ', kBearer.size()) == std::string::npos;
}

template <const char* text>
bool exactly(const std::string& value, const Fields&) {
    return value == text;
}

constexpr char kVersion[] = VELMORA_VERSION;
constexpr char kType[] = "video-sdk";
constexpr char kPlatform[] = "Xcode";
constexpr char kSystem[] = "ios";
constexpr char kSecret[] = "480726";
constexpr char kJson[] = "application/json";

enum class Presence { required, optional };

struct Rule {
    std::string_view name;
    Presence presence;
    std::string_view wanted;
    Check check;
};

constexpr Rule kIdentity[]{
    {"sdk-version", Presence::required, kVersion, exactly<kVersion>},
    {"sdk-type", Presence::required, kType, exactly<kType>},
    {"dev-platform", Presence::required, kPlatform, exactly<kPlatform>},
    {"developer-key", Presence::required, "some text", anything},
    {"device-model", Presence::required, "some text", anything},
    {"device-imei", Presence::required,
     "device, application, checksum of the developer key and \"direct\" in one", fingerprint},
    {"device-os", Presence::required, kSystem, exactly<kSystem>},
    {"device-os-version", Presence::required, "some text", anything},
    {"device-client-date", Presence::required, "13 digits: milliseconds within ten minutes of now",
     recentMilliseconds},
    {"app-package-name", Presence::required, "some text", anything},
    {"secret-token", Presence::required, kSecret, exactly<kSecret>},
    {"t-user-id", Presence::optional, "some text", anything},
    {"authorization", Presence::optional, "\"bearer\", one blank and the token", bearer},
    {"customer-user-id", Presence::optional, "some text", anything},
};

constexpr Rule kExchange[]{
    {"content-type", Presence::required, kJson, exactly<kJson>},
    {"accept", Presence::required, kJson, exactly<kJson>},
};

std::vector<std::string> problemsBy(std::span<const Rule> rules, const Fields& headers) {
    std::vector<std::string> problems;
    for (const auto& rule : rules) {
        const auto name = std::string(rule.name);
        const auto found = headers.find(rule.name);
        if (found == headers.end()) {
            if (rule.presence == Presence::required) problems.push_back(name + " is missing");
        } else if (!rule.check(found->second, headers)) {
            problems.push_back(name + " is \"" + found->second + "\", not " + std::string(rule.wanted));
        }
    }
    return problems;
}

}  // namespace

std::vector<std::string> identityProblems(const Fields& headers) { return problemsBy(kIdentity, headers); }

std::vector<std::string> headerProblems(const Fields& headers) {
    auto problems = problemsBy(kIdentity, headers);
    const auto more = problemsBy(kExchange, headers);
    problems.insert(problems.end(), more.begin(), more.end());
    return problems;
}

std::optional<std::string> bearerToken(const Fields& headers) {
    const auto value = valueOf(headers, "authorization").value_or("");
    if (!bearer(value, headers)) return std::nullopt;
    return value.substr(kBearer.size());
}

}  // namespace velmora::sandbox

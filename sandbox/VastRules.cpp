#include "sandbox/VastRules.h"

#include "sandbox/HeaderRules.h"

namespace velmora::sandbox {

namespace {

enum class Presence { required, optional };

/// A pair of the query: what stands in it, or the pair that it repeats, where one of the two is settled.
struct Rule {
    std::string_view name;
    Presence presence;
    std::string_view wanted = {};
    std::string_view repeated = {};
};

constexpr Rule kRules[]{
    {"secretKey", Presence::required, {}, "developer-key"},
    {"targetPlatform", Presence::required, "2"},
    {"osVersion", Presence::required, {}, "device-os-version"},
    {"sdkVersion", Presence::required, {}, "sdk-version"},
    {"sdkType", Presence::required, {}, "sdk-type"},
    {"deviceModel", Presence::required, {}, "device-model"},
    {"osId", Presence::required},
    {"osAdvertisingId", Presence::required},
    {"appVersion", Presence::optional},
    {"deviceBrand", Presence::optional},
    {"deviceLanguage", Presence::optional},
    {"deviceManufacturer", Presence::optional},
    {"mcc", Presence::required},
    {"mnc", Presence::required},
    {"screenDensity", Presence::required, {}, "deviceModel"},
    {"screenHeight", Presence::required, {}, "deviceModel"},
    {"screenOrientation", Presence::required, {}, "deviceModel"},
    {"screenWidth", Presence::required, {}, "deviceModel"},
};

/// What is wrong with one pair; empty when nothing is.
std::string problem(const Rule& rule, const Fields& query) {
    const auto value = valueOf(query, rule.name);
    const std::string name(rule.name);
    if (!value) return rule.presence == Presence::required ? name + " is missing" : "";
    if (value->empty()) return name + " is empty";
    const auto wanted =
        rule.repeated.empty() ? std::string(rule.wanted) : valueOf(query, rule.repeated).value_or("");
    return wanted.empty() || *value == wanted ? "" : name + " is \"" + *value + "\", not " + wanted;
}

/// A choice may be left to the service, but not be another one than there is.
std::string problemOfChoice(const Fields& query, const std::string& name, const std::string& one,
                            const std::string& other) {
    const auto value = valueOf(query, name);
    if (!value || *value == one || *value == other) return "";
    return name + " is \"" + *value + "\", neither " + one + " nor " + other;
}

}  // namespace

std::vector<std::string> vastProblems(const Request& request) {
    const auto& query = request.query;
    if (query.empty()) return {"there is no query"};
    std::vector<std::string> problems;
    const auto note = [&](const std::string& words) {
        if (!words.empty()) problems.push_back(words);
    };
    for (const auto& rule : kRules) note(problem(rule, query));
    note(problemOfChoice(query, "vastVersion", "2", "3"));
    note(problemOfChoice(query, "prerollType", "1", "2"));
    for (const auto& words : identityProblems(query)) note(words);
    for (const auto& name : request.repeated) note(name + " is there more than once");
    return problems;
}

}  // namespace velmora::sandbox

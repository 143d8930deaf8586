#include "sandbox/BodyRules.h"

#include <algorithm>
#include <span>
#include <string_view>

namespace velmora::sandbox {

namespace json = boost::json;

namespace {

bool isText(const json::value& value) { return value.is_string() && !value.get_string().empty(); }

template <int least, int most>
bool isFromTo(const json::value& value) {
    return value.is_int64() && value.get_int64() >= least && value.get_int64() <= most;
}

bool isObject(const json::value& value) { return value.is_object(); }

bool isListOfObjects(const json::value& value) {
    return value.is_array() && std::all_of(value.get_array().begin(), value.get_array().end(), isObject);
}

enum class Presence { required, optional };

struct Rule {
    std::string_view name;
    Presence presence;
    std::string_view wanted;
    bool (*check)(const json::value& value);
};

constexpr Rule kBody[]{
    {"clientRequestedCacheType", Presence::required, "1 or 2", isFromTo<1, 2>},
    {"zoneId", Presence::optional, "some text", isText},
    {"finalStatesRequest", Presence::required, "an object", isObject},
};

constexpr Rule kFinalStates[]{
    {"states", Presence::required, "a list of objects", isListOfObjects},
};

constexpr Rule kState[]{
    {"suggestionId", Presence::required, "some text", isText},
    {"state", Presence::required, "1, 2 or 3", isFromTo<1, 3>},
    {"extraInfo", Presence::required, "an object", isObject},
};

/// Notes what is wrong with an object that is to have these entries and no other. `where` leads to it.
void check(const json::object& object, std::span<const Rule> rules, const std::string& where,
           std::vector<std::string>& problems) {
    for (const auto& rule : rules) {
        const auto* value = object.if_contains({rule.name.data(), rule.name.size()});
        const auto name = where + std::string(rule.name);
        if (value == nullptr) {
            if (rule.presence == Presence::required) problems.push_back(name + " is missing");
        } else if (!rule.check(*value)) {
            problems.push_back(name + " is " + json::serialize(*value) + ", not " + std::string(rule.wanted));
        }
    }
    for (const auto& entry : object) {
        const std::string_view key(entry.key().data(), entry.key().size());
        const bool isKnown =
            std::any_of(rules.begin(), rules.end(), [&](const Rule& rule) { return rule.name == key; });
        if (!isKnown) problems.push_back(where + std::string(key) + " is not known");
    }
}

}  // namespace

std::vector<std::string> suggestionBodyProblems(const json::object& body) {
    std::vector<std::string> problems;
    check(body, kBody, "", problems);
    const auto* finalStates = body.if_contains("finalStatesRequest");
    if (finalStates == nullptr || !finalStates->is_object()) return problems;
    check(finalStates->get_object(), kFinalStates, "finalStatesRequest.", problems);
    const auto* states = finalStates->get_object().if_contains("states");
    if (states == nullptr || !isListOfObjects(*states)) return problems;
    for (std::size_t i = 0; i < states->get_array().size(); ++i) {
        check(states->get_array()[i].get_object(), kState, "states[" + std::to_string(i) + "].", problems);
    }
    return problems;
}

}  // namespace velmora::sandbox

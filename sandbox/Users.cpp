#include "sandbox/Users.h"

#include <algorithm>

namespace velmora::sandbox {

namespace json = boost::json;

namespace {

/// The oldest make room: a benchmark posts for hours.
constexpr std::ptrdiff_t kMostStates = 1000;

const json::value* member(const json::value& value, std::string_view name) {
    const auto* object = value.if_object();
    return object == nullptr ? nullptr : object->if_contains({name.data(), name.size()});
}

void put(json::array& states, const json::value& state) {
    const auto* id = member(state, "suggestionId");
    if (id == nullptr) return;
    const auto same = std::find_if(states.begin(), states.end(), [&](const json::value& known) {
        return *member(known, "suggestionId") == *id;
    });
    if (same != states.end())
        *same = state;
    else
        states.push_back(state);
}

}  // namespace

void Users::remember(const std::string& userId, const json::object& body) {
    const auto* request = body.if_contains("finalStatesRequest");
    const auto* posted = request == nullptr ? nullptr : member(*request, "states");
    if (posted == nullptr || !posted->is_array() || posted->get_array().empty()) return;
    const std::lock_guard lock(mutex_);
    auto& states = states_[userId];
    for (const auto& state : posted->get_array()) put(states, state);
    const auto tooMany = static_cast<std::ptrdiff_t>(states.size()) - kMostStates;
    if (tooMany > 0) states.erase(states.begin(), states.begin() + tooMany);
}

json::object Users::finalStates() const {
    const std::lock_guard lock(mutex_);
    json::object object;
    for (const auto& [userId, states] : states_) object.emplace(userId, states);
    return object;
}

void Users::forgetAll() {
    const std::lock_guard lock(mutex_);
    states_.clear();
}

}  // namespace velmora::sandbox

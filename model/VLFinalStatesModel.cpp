#include "model/VLFinalStatesModel.h"

#include "model/Schema.h"
#include "platform/Mutex.h"

namespace velmora {

namespace {

platform::Mutex VLFinalStatesModelLock;

/// Calls `visit` with each state, in order, while the lock is held. The list may grow or shrink on the way.
template <class Visit>
void walk(const VLFinalStatesModel& model, const Visit& visit) {
    if (!model.getStates()) return;
    const platform::MutexLock lock(VLFinalStatesModelLock);
    // It may have been replaced while this one waited, and then the new one is meant.
    const auto states = model.getStates();
    if (!states) return;
    for (std::size_t i = 0; i < states->size(); ++i) {
        if (const auto state = (*states)[i]) visit(*state);
    }
}

}  // namespace

void VLFinalStatesModel::updateFilteredSuggestionIds(
    const std::optional<std::vector<std::string>>& suggestionIds) {
    if (!suggestionIds) return;
    walk(*this, [&](VLAdSuggestionFinalState& state) {
        if (platform::isOneOf(state.getSuggestionId(), *suggestionIds)) {
            state.changeStateTo(VLFinalState::filtered);
        }
    });
}

void VLFinalStatesModel::updateDoingSuggestion(const std::optional<std::string>& suggestionId) {
    if (!suggestionId) return;
    walk(*this, [&](VLAdSuggestionFinalState& state) {
        if (platform::equals(state.getSuggestionId(), *suggestionId)) {
            state.changeStateTo(VLFinalState::doing);
        }
    });
}

void VLFinalStatesModel::updateSuggestionExtraInfo(const std::optional<std::string>& suggestionId,
                                                   std::string_view key, const Property& value) {
    if (!suggestionId) return;
    walk(*this, [&](VLAdSuggestionFinalState& state) {
        if (!platform::equals(state.getSuggestionId(), *suggestionId)) return;
        const auto* present = state.getExtraInfo() ? state.getExtraInfo()->if_object() : nullptr;
        Dictionary extraInfo = present != nullptr ? *present : Dictionary();
        if (value) {
            extraInfo.insert_or_assign({key.data(), key.size()}, *value);
        } else {
            extraInfo.erase({key.data(), key.size()});
        }
        state.setExtraInfo(Value(std::move(extraInfo)));
    });
}

std::vector<std::string> VLFinalStatesModel::getSuggestionIds() const {
    std::vector<std::string> ids;
    walk(*this, [&](const VLAdSuggestionFinalState& state) {
        if (auto id = platform::asString(state.getSuggestionId())) ids.push_back(std::move(*id));
    });
    return ids;
}

const Schema& VLFinalStatesModel::schema() const {
    static constexpr Field fields[]{
        list<&VLFinalStatesModel::states_>("states"),
    };
    static constexpr Schema table(fields);
    return table;
}

}  // namespace velmora

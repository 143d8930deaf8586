#include "model/VLSuggestionListDirectResponseModel.h"

#include "model/Schema.h"
#include "model/VLAdSuggestion.h"
#include "model/VLAdSuggestionFinalState.h"
#include "model/VLDirectCreativeModel.h"
#include "model/VLFinalStatesModel.h"
#include "platform/Random.h"

#include <utility>

namespace velmora {

const Schema& VLSuggestionListDirectResponseModel::schema() const {
    static constexpr Field fields[]{
        list<&VLSuggestionListDirectResponseModel::suggestions>("suggestions"),
        plain<&VLSuggestionListDirectResponseModel::selectDirectAdRandomly>("selectDirectAdRandomly"),
        plain<&VLSuggestionListDirectResponseModel::serverSuggestedCacheType>("serverSuggestedCacheType"),
        plain<&VLSuggestionListDirectResponseModel::velmoraUserId>("velmoraUserId"),
        plain<&VLSuggestionListDirectResponseModel::ctaDisabled>("ctaDisabled"),
        plain<&VLSuggestionListDirectResponseModel::ctaDisabledMessage>("ctaDisabledMessage"),
    };
    static constexpr Schema table(fields);
    return table;
}

std::shared_ptr<VLFinalStatesModel>
VLSuggestionListDirectResponseModel::extractFinalStateWithInitialState(VLFinalState state) const {
    auto states = makeList<VLAdSuggestionFinalState>();
    if (const auto list = suggestions.get()) {
        for (const auto& suggestion : *list) {
            if (suggestion) states->push_back(suggestion->extractFinalStateWithInitialState(state));
        }
    }
    auto model = std::make_shared<VLFinalStatesModel>();
    model->setStates(std::move(states));
    return model;
}

std::vector<std::string> VLSuggestionListDirectResponseModel::getUnnecessarySuggestionIds() const {
    std::vector<std::string> ids;
    if (const auto list = suggestions.get()) {
        for (const auto& suggestion : *list) {
            if (!suggestion || suggestion->isValidForThisUser()) continue;
            if (auto id = suggestion->getSuggestionId()) ids.push_back(std::move(*id));
        }
    }
    return ids;
}

void VLSuggestionListDirectResponseModel::shuffleSuggestions() {
    const auto list = suggestions.get();
    if (!list || list->size() < 2) return;
    auto shuffled = *list;
    for (std::size_t i = 0; i + 1 < shuffled.size(); ++i) {
        const auto left = static_cast<std::uint32_t>(shuffled.size() - i);
        std::swap(shuffled[i], shuffled[i + platform::uniformRandom(left)]);
    }
    suggestions.set(makeList(std::move(shuffled)));
}

void VLSuggestionListDirectResponseModel::removeUnnecessaryAds() {
    const auto list = suggestions.get();
    if (!list) return;
    auto left = *list;
    std::erase_if(left, [](const auto& suggestion) {
        return !suggestion || !suggestion->isValidForThisUser() || !suggestion->creative ||
               !suggestion->creative->isSupported();
    });
    suggestions.set(makeList(std::move(left)));
}

}  // namespace velmora

#include "model/VLFinalStatesModel.h"

#include "model/VLAdSuggestionFinalState.h"
#include "support/Records.h"
#include "support/Threads.h"

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

using Change = std::function<void(VLFinalStatesModel&)>;

struct ChangeCase {
    const char* states;
    Change change;
    const char* changed;
};

void expectChanges(const std::vector<ChangeCase>& cases) {
    for (const auto& one : cases) {
        const auto model = read<VLFinalStatesModel>("{\"states\": " + std::string(one.states) + "}");
        one.change(*model);
        EXPECT_EQ(written(*model).at("states"), valueOf(one.changed)) << one.states;
    }
}

using Ids = std::vector<std::string>;

Change filtered(std::optional<Ids> ids) {
    return [ids = std::move(ids)](VLFinalStatesModel& model) { model.updateFilteredSuggestionIds(ids); };
}

Change doing(std::optional<std::string> id) {
    return [id = std::move(id)](VLFinalStatesModel& model) { model.updateDoingSuggestion(id); };
}

Change extraInfo(std::optional<std::string> id, std::string key, Property value) {
    return [id = std::move(id), key = std::move(key), value = std::move(value)](VLFinalStatesModel& model) {
        model.updateSuggestionExtraInfo(id, key, value);
    };
}

TEST(FinalStates, EveryStateOfTheNamedSuggestionsChanges) {
    const char* states = R"([{"suggestionId": "a", "state": 2}, {"suggestionId": "b", "state": 2}, {},
                             {"suggestionId": "a"}, {"suggestionId": 5}, {"suggestionId": ""}])";
    expectChanges({
        {states, filtered(Ids{"a", "c", "", "5"}),
         R"([{"suggestionId": "a", "state": 1}, {"suggestionId": "b", "state": 2}, {},
             {"suggestionId": "a", "state": 1}, {"suggestionId": 5}, {"suggestionId": "", "state": 1}])"},
        {states, filtered(std::nullopt), states},
        {states, doing("a"),
         R"([{"suggestionId": "a", "state": 3}, {"suggestionId": "b", "state": 2}, {},
             {"suggestionId": "a", "state": 3}, {"suggestionId": 5}, {"suggestionId": ""}])"},
        {states, doing("5"), states},
        {states, doing(std::nullopt), states},
    });
}

TEST(FinalStates, ExtraInformationIsWrittenKeyByKey) {
    const char* state = R"([{"suggestionId": "a", "extraInfo": {"k": 1, "l": 2}}])";
    expectChanges({
        {R"([{"suggestionId": "a"}, {"suggestionId": "b"}, {"suggestionId": "a"}])",
         extraInfo("a", "k", Value(1)),
         R"([{"suggestionId": "a", "extraInfo": {"k": 1}}, {"suggestionId": "b"},
             {"suggestionId": "a", "extraInfo": {"k": 1}}])"},
        {state, extraInfo("a", "k", Value("x")),
         R"([{"suggestionId": "a", "extraInfo": {"k": "x", "l": 2}}])"},
        {state, extraInfo("a", "k", Value(nullptr)),
         R"([{"suggestionId": "a", "extraInfo": {"k": null, "l": 2}}])"},
        {state, extraInfo("a", "k", std::nullopt), R"([{"suggestionId": "a", "extraInfo": {"l": 2}}])"},
        {state, extraInfo("b", "k", std::nullopt), state},
        {state, extraInfo(std::nullopt, "k", Value(1)), state},
        {R"([{"suggestionId": "a"}])", extraInfo("a", "k", std::nullopt),
         R"([{"suggestionId": "a", "extraInfo": {}}])"},
        {R"([{"suggestionId": "a", "extraInfo": "wrong kind"}])", extraInfo("a", "k", Value(1)),
         R"([{"suggestionId": "a", "extraInfo": {"k": 1}}])"},
    });
}

TEST(FinalStates, TheIdsComeInTheOrderOfTheListWithoutTheStatesThatHaveNone) {
    EXPECT_EQ(read<VLFinalStatesModel>(R"({"states": [{"suggestionId": "b"}, {}, {"suggestionId": "a"},
                                           {"suggestionId": 5}, {"suggestionId": "b"}]})")
                  ->getSuggestionIds(),
              (Ids{"b", "a", "b"}));
}

TEST(FinalStates, NothingHappensToAnAbsentListAndToAbsentStates) {
    VLFinalStatesModel model;
    for (const auto& list :
         {ModelList<VLAdSuggestionFinalState>(), makeList<VLAdSuggestionFinalState>({nullptr})}) {
        model.setStates(list);
        for (const auto& change : {filtered(Ids{"a"}), doing("a"), extraInfo("a", "k", Value(1))})
            change(model);

        EXPECT_EQ(model.getStates(), list);
        EXPECT_EQ(model.getSuggestionIds(), Ids{});
    }
}

TEST(FinalStates, WalksOverListsExcludeEachOther) {
    constexpr int threads = 4;
    constexpr int walks = 200;
    const auto list = makeList<VLAdSuggestionFinalState>();
    for (const char* id : {"a", "b", "a"}) {
        list->push_back(std::make_shared<VLAdSuggestionFinalState>(Value(id), 2, std::nullopt));
    }
    // Two lists that hold the same states: the exclusion must not be one of each list.
    VLFinalStatesModel models[2];
    for (auto& model : models) {
        model.setStates(makeList<VLAdSuggestionFinalState>(std::vector(*list)));
    }

    const auto walk = [&](int thread) {
        auto& model = models[thread % 2];
        for (int i = 0; i < walks; ++i) {
            model.updateSuggestionExtraInfo("a", std::to_string(thread * walks + i), Value(i));
            model.updateDoingSuggestion("b");
            model.updateFilteredSuggestionIds(Ids{"a", "b"});
            EXPECT_EQ(model.getSuggestionIds(), (Ids{"a", "b", "a"}));
            model.setStates(makeList<VLAdSuggestionFinalState>(std::vector(*model.getStates())));
        }
    };
    { const Threads running(threads, walk); }

    for (const auto index : {0U, 2U}) {
        EXPECT_EQ(list->at(index)->getExtraInfo()->as_object().size(), threads * walks);
    }
    EXPECT_EQ(list->at(1)->getState(), Value(1));
}

}  // namespace

}  // namespace velmora::test

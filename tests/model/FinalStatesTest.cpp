#include "model/VLFinalStatesModel.h"

#include "model/VLAdSuggestionFinalState.h"
#include "support/Records.h"
#include "support/Threads.h"

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <utility>
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

/// Room for values that calls a function once, before it gives any.
class WatchedStorage final : public boost::json::memory_resource {
public:
    std::function<void()> onAllocation;

private:
    void* do_allocate(std::size_t size, std::size_t) override {
        if (auto call = std::exchange(onAllocation, nullptr)) call();
        return ::operator new(size);
    }

    void do_deallocate(void* place, std::size_t, std::size_t) override { ::operator delete(place); }

    [[nodiscard]] bool do_is_equal(const memory_resource& other) const noexcept override {
        return this == &other;
    }
};

TEST(FinalStates, AnUpdateThatWaitedChangesTheListThatIsThereThen) {
    const auto listOf = [](Property extraInfo) {
        return makeList<VLAdSuggestionFinalState>({std::make_shared<VLAdSuggestionFinalState>(
            Value("a"), VLFinalState::initial, std::move(extraInfo))});
    };
    // In any one of them the update may come too late to wait.
    for (int round = 0; round < 20; ++round) {
        VLFinalStatesModel model;
        model.setStates(listOf(std::nullopt));
        const auto replacement = listOf(std::nullopt);
        WatchedStorage storage;
        VLFinalStatesModel other;
        other.setStates(listOf(Property(std::in_place, Dictionary{{"k", 1}}, &storage)));

        std::thread update;
        // Called in the middle of a walk, while all others wait.
        storage.onAllocation = [&] {
            std::atomic<bool> begins = false;
            update = std::thread([&] {
                begins = true;
                model.updateDoingSuggestion("a");
            });
            for (int turn = 0; turn < 200 || !begins; ++turn) std::this_thread::yield();
            model.setStates(replacement);
        };
        other.updateSuggestionExtraInfo("a", "k", Value(2));
        ASSERT_TRUE(update.joinable());
        update.join();
        EXPECT_EQ(replacement->front()->getState(), Value(3));
    }
}

TEST(FinalStates, WalksOverListsExcludeEachOther) {
    constexpr int threads = 4;
    constexpr int walks = 200;
    const auto list =
        read<VLFinalStatesModel>(
            R"({"states": [{"suggestionId": "a"}, {"suggestionId": "b"}, {"suggestionId": "a"}]})")
            ->getStates();
    // Two lists that hold the same states: the exclusion must not be one of each list.
    VLFinalStatesModel models[2];
    for (auto& model : models) model.setStates(makeList<VLAdSuggestionFinalState>(std::vector(*list)));

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

    for (const auto index : {0U, 2U})
        EXPECT_EQ(list->at(index)->getExtraInfo()->as_object().size(), threads * walks);
    EXPECT_EQ(list->at(1)->getState(), Value(1));
}

}  // namespace

}  // namespace velmora::test

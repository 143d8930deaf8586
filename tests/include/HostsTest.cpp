#include <velmora/hosts/glib.h>
#include <velmora/hosts/sdl.h>

#include "core/VelmoraManager.h"

#include <thread>
#include <vector>

#include <SDL.h>
#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using testing::ElementsAre;

/// The ends of shows that are told from another thread are heard on this one, in their order, and not before
/// its loop takes a turn.
class Hosts : public testing::Test {
protected:
    Hosts() {
        Velmora::setAdShowFinishedCallback([this](const auto&, bool completed) {
            EXPECT_EQ(std::this_thread::get_id(), main_);
            heard_.push_back(completed);
        });
    }

    ~Hosts() override {
        Velmora::setAdShowFinishedCallback({});
        Velmora::setMainQueue({});
    }

    void tellTwice() {
        std::thread([] {
            for (const bool completed : {true, false}) VelmoraManager::onAdShowFinished(nullptr, completed);
        }).join();
        EXPECT_THAT(heard_, ElementsAre());
    }

    const std::thread::id main_ = std::this_thread::get_id();
    std::vector<bool> heard_;
};

TEST_F(Hosts, CallbacksComeInTheMainContextOfGLibThatIsNamed) {
    GMainContext* context = g_main_context_new();
    hosts::useGlib(context);
    g_main_context_unref(context);
    tellTwice();
    EXPECT_FALSE(g_main_context_iteration(nullptr, FALSE));
    while (heard_.size() < 2) g_main_context_iteration(context, TRUE);
    EXPECT_THAT(heard_, ElementsAre(true, false));

    hosts::useGlib();
    Velmora::setAdShowFinishedCallback([this](const auto&, bool) { heard_.clear(); });
    VelmoraManager::onAdShowFinished(nullptr, true);
    while (!heard_.empty()) g_main_context_iteration(nullptr, TRUE);
}

TEST_F(Hosts, CallbacksComeWhereTheEventsOfSdlAreHandled) {
    ASSERT_EQ(SDL_Init(SDL_INIT_EVENTS), 0);
    hosts::useSdl();
    tellTwice();
    SDL_Event event{};
    bool isOurs = false;
    while (!isOurs) {
        ASSERT_EQ(SDL_WaitEventTimeout(&event, 10'000), 1);
        isOurs = hosts::handle(event);
    }
    EXPECT_THAT(heard_, ElementsAre(true, false));

    // An event that got lost costs a turn, not the callback.
    VelmoraManager::onAdShowFinished(nullptr, true);
    SDL_FlushEvents(SDL_FIRSTEVENT, SDL_LASTEVENT);
    VelmoraManager::onAdShowFinished(nullptr, false);
    while (heard_.size() < 4) {
        ASSERT_EQ(SDL_WaitEventTimeout(&event, 10'000), 1);
        hosts::handle(event);
    }
    EXPECT_THAT(heard_, ElementsAre(true, false, true, false));
    event.type = SDL_QUIT;
    EXPECT_FALSE(hosts::handle(event));
    SDL_Quit();
}

}  // namespace

}  // namespace velmora::test

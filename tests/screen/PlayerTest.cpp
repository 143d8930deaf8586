#include "support/ScriptedPlayer.h"

#include <limits>
#include <memory>
#include <vector>

#include <gmock/gmock.h>

namespace velmora::test {

namespace {

using screen::Player;
using screen::PlayerStatus;
using testing::ElementsAre;
using testing::IsEmpty;

class Watcher final : public screen::PlayerStatusObserver {
public:
    void playerStatusDidChange(Player& player) override {
        seen.push_back(player.status());
        if (onChange) onChange(player);
    }

    std::function<void(Player&)> onChange;
    std::vector<PlayerStatus> seen;
};

std::shared_ptr<ScriptedPlayer> makePlayer() { return std::make_shared<ScriptedPlayer>("test"); }

TEST(Player, AChangeIsToldToThoseWhoWereThereWhenItCame) {
    const auto player = makePlayer();
    const auto first = std::make_shared<Watcher>();
    const auto second = std::make_shared<Watcher>();
    const auto late = std::make_shared<Watcher>();
    first->onChange = [&](Player& changed) {
        changed.removeStatusObserver(*second);
        changed.addStatusObserver(late);
    };
    player->addStatusObserver(first);
    player->addStatusObserver(second);
    player->become(PlayerStatus::readyToPlay);
    EXPECT_EQ(second->seen.size(), 1U);
    EXPECT_THAT(late->seen, IsEmpty());
    player->become(PlayerStatus::failed);
    EXPECT_EQ(second->seen.size(), 1U);
    EXPECT_EQ(late->seen.size(), 1U);
}

TEST(Player, AStatusObserverIsNotHeldAndMayGoInTheMiddle) {
    const auto player = makePlayer();
    const auto first = std::make_shared<Watcher>();
    auto second = std::make_shared<Watcher>();
    const std::weak_ptr<Watcher> weak = second;
    first->onChange = [&](Player&) { second.reset(); };
    player->addStatusObserver(first);
    player->addStatusObserver(second);
    player->become(PlayerStatus::failed);
    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(first->seen.size(), 1U);
}

TEST(Player, PassingTimeIsToldAtMultiplesAndAJumpWhereItIs) {
    const auto player = makePlayer();
    std::vector<double> quarters;
    std::vector<double> seconds;
    EXPECT_EQ(player->nextDue(0), std::numeric_limits<double>::infinity());
    player->addPeriodicTimeObserver(0.25, [&](double time) { quarters.push_back(time); });
    player->addPeriodicTimeObserver(1, [&](double time) { seconds.push_back(time); });
    player->tick(0);
    for (const double time : {0.1, 0.25, 0.3, 0.5, 1.1, 1.2}) player->pass(time);
    EXPECT_THAT(quarters, ElementsAre(0, 0.25, 0.5, 1));
    EXPECT_THAT(seconds, ElementsAre(0, 1));

    player->tick(0.6);
    player->pass(0.7);
    player->pass(0.76);
    EXPECT_THAT(quarters, ElementsAre(0, 0.25, 0.5, 1, 0.6, 0.75));
    EXPECT_EQ(player->nextDue(0.76), 1.0);
    EXPECT_EQ(player->nextDue(0.5), 0.75);
}

}  // namespace

}  // namespace velmora::test

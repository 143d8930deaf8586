#include "screen/qt/player/QtPlayer.h"

#include "harness/EventLoop.h"
#include "harness/Videos.h"
#include "sandbox/ScriptedServer.h"
#include "support/Certificates.h"
#include "support/Environment.h"
#include "support/OddUrls.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include <QScreen>
#include <QWidget>

namespace velmora::test {

namespace {

using sandbox::Script;
using sandbox::ScriptedServer;
using sandbox::SeenRequest;

using namespace std::chrono_literals;

using screen::Player;
using screen::PlayerStatus;
using screen::QtPlayer;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSubsetOf;

QUrl local(const std::filesystem::path& file) {
    return QUrl::fromLocalFile(QString::fromStdString(file.string()));
}

QUrl remote(const std::string& url) { return QUrl(QString::fromStdString(url)); }

/// A player and what it has told.
class Watched final : public screen::PlayerStatusObserver, public std::enable_shared_from_this<Watched> {
public:
    static std::shared_ptr<Watched> make(std::shared_ptr<Player> player) {
        auto watched = std::make_shared<Watched>();
        watched->player = std::move(player);
        const auto weak = std::weak_ptr(watched);
        watched->player->addStatusObserver(watched);
        watched->player->addPeriodicTimeObserver(0.25, [weak](double time) {
            if (const auto self = weak.lock()) self->ticks.push_back(time);
        });
        watched->player->addEndObserver([weak] {
            if (const auto self = weak.lock()) self->ends.push_back(self->ticks.size());
        });
        return watched;
    }

    static std::shared_ptr<Watched> make(const QUrl& url, std::chrono::milliseconds patience = 10s) {
        return make(std::make_shared<QtPlayer>(url, patience));
    }

    void playerStatusDidChange(Player& changed) override { statuses.push_back(changed.status()); }

    [[nodiscard]] bool becomes(PlayerStatus status) {
        return runUntil([&] { return player->status() == status; });
    }

    [[nodiscard]] bool endsOrFails() {
        return runUntil([&] { return !ends.empty() || player->status() == PlayerStatus::failed; });
    }

    std::shared_ptr<Player> player;
    std::vector<PlayerStatus> statuses;
    std::vector<double> ticks;
    /// How many ticks came before each.
    std::vector<std::size_t> ends;
};

bool isLoaded(const std::string& library) {
    return contentOf("/proc/self/maps").find(library) != std::string::npos;
}

std::ptrdiff_t openFiles() { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); }

class QtPlayerTest : public testing::Test {
protected:
    Videos videos_;
};

TEST_F(QtPlayerTest, AVideoTellsEveryQuarterOfItsTimeAndItsWholeLengthBeforeItsEnd) {
    const auto usual = videos_.usual();
    EXPECT_FALSE(isLoaded("mediaplugin.so")) << "nothing of it is needed before the first video";
    const auto watched = Watched::make(local(usual));
    EXPECT_TRUE(isLoaded("mediaplugin.so"));
    EXPECT_TRUE(std::isnan(watched->player->duration()));
    EXPECT_EQ(watched->player->status(), PlayerStatus::unknown);

    ASSERT_TRUE(watched->becomes(PlayerStatus::readyToPlay));
    EXPECT_NEAR(watched->player->duration(), 2, 0.1);
    EXPECT_THAT(watched->ticks, IsEmpty());
    EXPECT_EQ(watched->player->rate(), 0);
    watched->player->play();
    EXPECT_EQ(watched->player->rate(), 1);
    ASSERT_TRUE(watched->endsOrFails());

    const double duration = watched->player->duration();
    EXPECT_THAT(watched->statuses, ElementsAre(PlayerStatus::readyToPlay));
    EXPECT_THAT(watched->ends, ElementsAre(watched->ticks.size()));
    EXPECT_LT(watched->ticks.front(), 0.25);
    EXPECT_EQ(watched->ticks.back(), duration);
    EXPECT_TRUE(std::is_sorted(watched->ticks.begin(), watched->ticks.end()));
    const std::vector<double> between(watched->ticks.begin() + 1, watched->ticks.end() - 1);
    EXPECT_THAT(between, IsSubsetOf({0.25, 0.5, 0.75, 1.0, 1.25, 1.5, 1.75, 2.0}));
    EXPECT_GE(between.size(), 5U);
    EXPECT_EQ(watched->player->rate(), 0);
    EXPECT_EQ(watched->player->currentTime(), duration);
}

TEST_F(QtPlayerTest, AVideoThatHasEndedPlaysAgainFromWhereItIsSentOnly) {
    const auto watched = Watched::make(local(videos_.usual(1)));
    watched->player->play();
    ASSERT_TRUE(watched->endsOrFails());
    ASSERT_EQ(watched->ends.size(), 1U);
    watched->player->play();
    EXPECT_FALSE(runUntil([&] { return watched->ends.size() > 1; }, 300ms));
    EXPECT_EQ(watched->player->rate(), 0);

    const auto before = watched->ticks.size();
    watched->player->seek(0.5, [&](bool finished) {
        EXPECT_TRUE(finished);
        watched->player->play();
    });
    ASSERT_TRUE(runUntil([&] { return watched->ends.size() > 1; }));
    EXPECT_EQ(watched->ticks.at(before), 0.5);
    const auto lowest =
        *std::min_element(watched->ticks.begin() + static_cast<int>(before), watched->ticks.end());
    EXPECT_GE(lowest, 0.25) << "never back at the start";
    EXPECT_EQ(watched->ticks.back(), watched->player->duration());
}

TEST_F(QtPlayerTest, SeekingTellsWhetherItCameThere) {
    const auto watched = Watched::make(local(videos_.usual()));
    std::vector<bool> finished;
    const auto note = [&](bool did) { finished.push_back(did); };
    watched->player->seek(1, note);
    EXPECT_THAT(finished, IsEmpty());
    ASSERT_TRUE(watched->becomes(PlayerStatus::readyToPlay));
    EXPECT_THAT(finished, ElementsAre(false)) << "nothing was loaded";

    watched->player->seek(1, note);
    watched->player->seek(1.5, note);
    EXPECT_EQ(finished.size(), 1U);
    ASSERT_TRUE(runUntil([&] { return finished.size() == 3; }));
    EXPECT_THAT(finished, ElementsAre(false, false, true));
    EXPECT_THAT(watched->ticks, ElementsAre(1.5));
}

TEST_F(QtPlayerTest, PausingStopsTheTimeAndMutingIsKept) {
    const auto watched = Watched::make(local(videos_.usual()));
    auto& player = *watched->player;
    player.setMuted(true);
    EXPECT_TRUE(player.isMuted());
    player.play();
    ASSERT_TRUE(runUntil([&] { return player.currentTime() > 0.3; }));
    player.setRate(0);
    EXPECT_EQ(player.rate(), 0);
    ASSERT_FALSE(runUntil([] { return false; }, 100ms));
    const double paused = player.currentTime();
    const auto ticks = watched->ticks.size();
    EXPECT_FALSE(runUntil([&] { return player.currentTime() > paused; }, 400ms));
    EXPECT_EQ(watched->ticks.size(), ticks);
    EXPECT_TRUE(watched->ends.empty());

    player.setMuted(false);
    player.setRate(2);
    EXPECT_EQ(player.rate(), 2);
    ASSERT_TRUE(watched->endsOrFails());
    EXPECT_FALSE(player.isMuted());
}

TEST_F(QtPlayerTest, WhatIsNoWholeVideoEitherEndsOrFailsOnceAndTellsNoMore) {
    const auto usual = videos_.usual();
    const auto headLast =
        videos_.make("headLast.mp4", "-f lavfi -i testsrc=size=160x120:duration=1 -c:v libx264");
    struct Case {
        std::string what;
        QUrl url;
        bool ends;
    };
    const ScriptedServer server([](const SeenRequest&) { return Script::answer(404, "none here"); });
    for (const auto& [what, url, ends] : {
             Case{"sound only", local(videos_.soundOnly()), true},
             Case{"cut short", local(videos_.half("cut.mp4", usual)), true},
             Case{"cut before its head", local(videos_.half("headless.mp4", headLast)), false},
             Case{"empty", local(videos_.file("empty.mp4", "")), false},
             Case{"garbage", local(videos_.file("garbage.mp4", std::string(5000, 'x'))), false},
             Case{"missing", local(videos_.missing()), false},
             Case{"a folder", local("/"), false},
             Case{"nothing", QUrl(), false},
             Case{"a path", QUrl(QString::fromStdString(usual.string())), false},
             Case{"a foreign scheme", QUrl("velmora://video"), false},
             Case{"not found", remote(server.url("/none")), false},
             Case{"nobody listens", QUrl("http://127.0.0.1:1/video.mp4"), false},
         }) {
        SCOPED_TRACE(what);
        const auto watched = Watched::make(url, 3s);
        watched->player->play();
        ASSERT_TRUE(watched->endsOrFails());
        EXPECT_FALSE(runUntil([] { return false; }, 100ms));
        if (ends && watched->ends.empty()) ADD_FAILURE() << "failed";
        if (ends) continue;
        EXPECT_THAT(watched->statuses, ElementsAre(PlayerStatus::failed));
        EXPECT_THAT(watched->ends, IsEmpty());
        EXPECT_THAT(watched->ticks, IsEmpty());
    }
}

TEST_F(QtPlayerTest, WhatIsAUrlIsPlayedAndNothingElseIsAskedFor) {
    const auto content = contentOf(videos_.usual(1));
    const ScriptedServer server([&](const SeenRequest&) { return Script::answer(200, content); });
    for (const auto& url : noUrls(server.url("/v"))) {
        const auto watched = Watched::make(Player::playerWithUrl(url));
        EXPECT_TRUE(watched->becomes(PlayerStatus::failed)) << url;
    }
    EXPECT_THAT(server.seen(), IsEmpty());
    for (const auto& url : oddUrls(server.url("/v"))) {
        const auto watched = Watched::make(Player::playerWithUrl(url));
        EXPECT_TRUE(watched->becomes(PlayerStatus::readyToPlay)) << url;
    }
}

TEST_F(QtPlayerTest, AVideoThatWasCutShortDoesNotClaimItsWholeLength) {
    const auto watched = Watched::make(local(videos_.half("cut.mp4", videos_.usual())));
    watched->player->play();
    ASSERT_TRUE(watched->endsOrFails());
    EXPECT_LT(watched->ticks.back(), watched->player->duration() * 0.75);
}

TEST_F(QtPlayerTest, AServerThatSaysNothingMoreFailsWhenPatienceEnds) {
    const auto content = contentOf(videos_.usual());
    const ScriptedServer server([&](const SeenRequest& request) {
        if (request.target == "/silent") return Script{.hang = true};
        const auto whole = Script::answer(200, content).bytes;
        return Script{.bytes = whole.substr(0, whole.size() - content.size() / 2),
                      .hang = request.target == "/stalled"};
    });
    for (const std::string path : {"/silent", "/stalled", "/broken"}) {
        SCOPED_TRACE(path);
        const auto start = std::chrono::steady_clock::now();
        const bool needsPatience = path != "/broken";
        const auto watched = Watched::make(remote(server.url(path)), needsPatience ? 2s : 1h);
        watched->player->play();
        ASSERT_TRUE(watched->becomes(PlayerStatus::failed));
        EXPECT_TRUE(!needsPatience || std::chrono::steady_clock::now() - start >= 2s);
        EXPECT_THAT(watched->ends, IsEmpty());
    }
}

TEST_F(QtPlayerTest, APausedVideoNeverRunsOutOfPatience) {
    const auto watched = Watched::make(local(videos_.usual()), 300ms);
    ASSERT_TRUE(watched->becomes(PlayerStatus::readyToPlay));
    EXPECT_FALSE(runUntil([&] { return watched->statuses.size() > 1; }, 700ms));
    watched->player->play();
    ASSERT_TRUE(runUntil([&] { return watched->player->currentTime() > 0.2; }));
    watched->player->pause();
    EXPECT_FALSE(runUntil([&] { return watched->statuses.size() > 1; }, 700ms));
    watched->player->play();
    ASSERT_TRUE(watched->endsOrFails());
    EXPECT_EQ(watched->ends.size(), 1U);
}

TEST_F(QtPlayerTest, AVideoIsStreamedAndOverTlsOnlyFromWhomIsTrusted) {
    const auto content = contentOf(videos_.usual(1));
    const auto answer = [&](const SeenRequest&) {
        return Script::answer(200, content, "Content-Type: video/mp4\r\n");
    };
    const auto good = Certificates::makeFor("127.0.0.1");
    const ScriptedServer plain(answer);
    const ScriptedServer secure(answer, good);
    const ScriptedServer foreign(answer, Certificates::makeFor("127.0.0.1"));
    const Environment trusted("VELMORA_CA_FILE", good->authorityFile().c_str());
    for (const auto& [url, plays] : {std::pair{plain.url("/v"), true}, std::pair{secure.url("/v"), true},
                                     std::pair{foreign.url("/v"), false}}) {
        SCOPED_TRACE(url);
        const auto watched = Watched::make(remote(url));
        watched->player->play();
        ASSERT_TRUE(watched->endsOrFails());
        EXPECT_EQ(watched->ends.size(), plays ? 1U : 0U);
    }
    const Environment unreadable("VELMORA_CA_FILE", "/nowhere.pem");
    const ScriptedServer unknown(answer, good);
    const auto watched = Watched::make(remote(unknown.url("/v")));
    EXPECT_TRUE(watched->becomes(PlayerStatus::failed));
}

/// The colour in the middle, and that at the middle of the upper edge.
std::pair<QColor, QColor> shown(const QUrl& url, const QSize& size) {
    QWidget window;
    window.resize(size);
    const auto watched = Watched::make(url);
    auto* layer = watched->player->makeLayer(&window);
    layer->setGeometry(window.rect());
    window.show();
    watched->player->play();
    if (!watched->endsOrFails()) return {};
    settle();
    // What is there, not what would be drawn on request.
    const auto image = window.screen()->grabWindow(window.winId()).toImage();
    return {image.pixelColor(size.width() / 2, size.height() / 2), image.pixelColor(size.width() / 2, 1)};
}

TEST_F(QtPlayerTest, ThePictureKeepsItsShapeAndItsColours) {
    for (const auto& [matrix, range] :
         {std::pair{"bt601", "tv"}, std::pair{"bt709", "tv"}, std::pair{"bt709", "pc"}}) {
        SCOPED_TRACE(testing::Message() << matrix << ' ' << range);
        const auto [middle, edge] = shown(local(videos_.brown(matrix, range)), {320, 320});
        EXPECT_NEAR(middle.red(), 192, 4);
        EXPECT_NEAR(middle.green(), 128, 4);
        EXPECT_NEAR(middle.blue(), 64, 4);
        EXPECT_EQ(edge, QColor(Qt::black)) << "twice as wide as it is high, on a square";
        const auto [wide, top] = shown(local(videos_.brown(matrix, range)), {320, 90});
        EXPECT_NEAR(top.red(), 192, 4);
    }
}

TEST_F(QtPlayerTest, NothingIsLeftOfPlayersThatWereReleasedAtAnyMoment) {
    const auto usual = local(videos_.usual());
    const auto playFor = [&](double seconds) {
        auto watched = Watched::make(usual);
        const std::weak_ptr<Player> weak = watched->player;
        QWidget window;
        static_cast<void>(watched->player->makeLayer(&window));
        watched->player->play();
        EXPECT_TRUE(runUntil([&] { return watched->player->currentTime() >= seconds; }));
        watched.reset();
        EXPECT_TRUE(weak.expired());
        settle();
    };
    playFor(0.1);
    const auto before = openFiles();
    for (int round = 0; round < 20; ++round) playFor(round % 2 == 0 ? 0 : 0.02 * round);
    EXPECT_LE(openFiles(), before + 2);
}

TEST_F(QtPlayerTest, AnObserverMayReleaseThePlayerWhateverItIsTold) {
    const auto usual = local(videos_.usual(1));
    for (const auto* moment : {"ready", "failed", "tick", "end"}) {
        SCOPED_TRACE(moment);
        const std::string when = moment;
        std::shared_ptr<Player> player =
            std::make_shared<QtPlayer>(when == "failed" ? local(videos_.missing()) : usual);
        const std::weak_ptr<Player> weak = player;
        class Releaser final : public screen::PlayerStatusObserver {
        public:
            void playerStatusDidChange(Player&) override { release(); }
            std::function<void()> release;
        };
        const auto releaser = std::make_shared<Releaser>();
        releaser->release = [&] { player.reset(); };
        if (when == "ready" || when == "failed") player->addStatusObserver(releaser);
        if (when == "tick") player->addPeriodicTimeObserver(0.25, [&](double) { player.reset(); });
        if (when == "end") player->addEndObserver([&] { player.reset(); });
        player->play();
        EXPECT_TRUE(runUntil([&] { return weak.expired(); }));
        settle();
    }
}

}  // namespace

}  // namespace velmora::test

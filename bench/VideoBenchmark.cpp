#include "harness/EventLoop.h"
#include "harness/Videos.h"
#include "model/VLAdSuggestion.h"
#include "model/VLAdSuggestionFinalState.h"
#include "model/VLCachedVelmoraAds.h"
#include "model/VLDirectCreativeModel.h"
#include "model/VLFinalStatesModel.h"
#include "model/VelmoraAdState.h"
#include "platform/Json.h"
#include "platform/Screen.h"
#include "screen/Application.h"
#include "store/VLDefaults.h"
#include "support/BareVideo.h"
#include "support/Measure.h"
#include "support/PlayedVideo.h"
#include "ui/VLAVPlayerViewController.h"
#include "ui/VLAdShowUIController.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include <QApplication>
#include <velmora/velmora.h>

// Plays one video of 1280x720 in our player, in our whole screen and in a program of nothing but Qt, in
// turns. usage: bench-video [VIDEO]; one is made when none is given, with ffmpeg.

namespace velmora::bench {

namespace {

constexpr int kFirstFrames = 31;
constexpr int kPlaybacks = 7;
constexpr int kShows = 20;
/// Of playback, after the first frame and whatever else belongs to the beginning.
constexpr double kSettled = 0.5;
constexpr double kMeasured = 2;
/// The picture of a show may come so much later than that of the player alone, as a ratio.
constexpr double kMostOfShow = 1.25;

/// A desktop's screen, on which the video is made larger.
constexpr auto kScreen = R"({"screens": [{"name": "desktop", "x": 0, "y": 0, "width": 1920, "height": 1080,
    "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})";

[[noreturn]] void giveUp(const char* why) {
    std::fprintf(stderr, "%s\n", why);
    std::_Exit(2);
}

/// From making the player until the first frame is on the screen.
template <class Program>
double firstFrame(const std::string& video) {
    Program program;
    test::settle();
    const auto start = Clock::now();
    program.open(video);
    if (!test::runUntil([&] { return program.showsPicture(); })) giveUp("no picture came");
    return millisecondsSince(start);
}

/// What a second of playback costs.
template <class Program>
Cost playback(const std::string& video) {
    Program program;
    program.open(video);
    if (!test::runUntil([&] { return program.position() > kSettled; })) giveUp("no playback");
    const double from = program.position();
    const Cost before = Cost::now();
    if (!test::runUntil([&] { return program.position() > from + kMeasured; })) giveUp("it stopped");
    return (Cost::now() - before) / (program.position() - from);
}

int compareFirstFrames(const std::string& video) {
    std::vector<double> ours;
    std::vector<double> bare;
    // Whoever comes first loads the plugins.
    firstFrame<BareVideo>(video);
    firstFrame<PlayedLayer>(video);
    for (int round = 0; round < kFirstFrames; ++round) {
        bare.push_back(firstFrame<BareVideo>(video));
        ours.push_back(firstFrame<PlayedLayer>(video));
    }
    return verdict("to the first frame on the screen", median(ours), median(bare), 1.15);
}

int comparePlayback(const std::string& video) {
    std::vector<double> bare;
    std::vector<double> layer;
    std::vector<double> screen;
    for (int round = 0; round < kPlaybacks; ++round) {
        const Cost ofBare = playback<BareVideo>(video);
        const Cost ofLayer = playback<PlayedLayer>(video);
        const Cost ofScreen = playback<PlayedScreen>(video);
        bare.push_back(ofBare.process);
        layer.push_back(ofLayer.process);
        // Decoding goes on in other threads, and differs by more from time to time than what is asked for.
        screen.push_back(ofLayer.process + ofScreen.thread - ofLayer.thread);
    }
    return verdict("processor, a second of playback", median(layer), median(bare), 1.15) +
           verdict("  with ring, label and buttons, to without", median(screen), median(layer), 1.03);
}

std::shared_ptr<VelmoraAd> makeAd(const std::string& video) {
    const auto creative = R"({"ctaType": 3, "action": {"type": 1}, "ctaUrl": "file://)" + video + "\"}";
    auto suggestion = platform::parseJson(R"({"suggestionId": "s", "creative": )" + creative + "}");
    auto ad = std::make_shared<VelmoraAd>();
    ad->state().setAd(recordFrom<VLAdSuggestion>(suggestion.value().if_object()));
    auto options = std::make_shared<VLAdRequestOptions>();
    options->setCacheType(2);
    ad->state().setAdRequestOptions(options);
    auto states = std::make_shared<VLFinalStatesModel>();
    states->setStates(makeList<VLAdSuggestionFinalState>({std::make_shared<VLAdSuggestionFinalState>(
        Value("s"), VLFinalState::initial, Value(Dictionary()))}));
    VLDefaults::setFinalStates(states);
    VLDefaults::cacheNewAd(ad);
    return ad;
}

/// The player's controller of the show.
std::shared_ptr<VLAVPlayerViewController> shown() {
    const auto root = screen::Application::rootViewController();
    const auto stack =
        std::dynamic_pointer_cast<screen::NavigationController>(root->presentedViewController());
    if (!stack) giveUp("no show");
    return std::dynamic_pointer_cast<VLAVPlayerViewController>(
        stack->viewControllers().front()->presentedViewController());
}

/// The show's window; null while there is none.
const QWidget* windowOfShow(const QWidget& host) {
    for (const auto* window : QApplication::topLevelWidgets()) {
        if (window != &host && window->isVisible()) return window;
    }
    return nullptr;
}

/// From asking for the show until the first frame is on the screen, in milliseconds. It is left then.
double show(const QWidget& host, const std::string& video) {
    bool isOver = false;
    Velmora::setAdShowFinishedCallback([&](const auto&, bool) { isOver = true; });
    const auto ad = makeAd(video);
    test::settle();
    const auto start = Clock::now();
    ad->showWithOptions(nullptr);
    const auto showsPicture = [&] {
        const auto* window = windowOfShow(host);
        return window != nullptr && hasPicture(*window);
    };
    if (!test::runUntil(showsPicture)) giveUp("no show");
    const double passed = millisecondsSince(start);
    shown()->exitButtonTouched();
    if (!test::runUntil([&] { return isOver && windowOfShow(host) == nullptr; }))
        giveUp("a show without an end");
    Velmora::setAdShowFinishedCallback(nullptr);
    return passed;
}

int compareShows(const std::string& video) {
    std::vector<double> ours;
    std::vector<double> bare;
    QWidget host;
    host.show();
    show(host, video);
    for (int round = 0; round < kFirstFrames; ++round) {
        bare.push_back(firstFrame<BareVideo>(video));
        ours.push_back(show(host, video));
    }
    return verdict("from showWithOptions to that frame", median(ours), median(bare), kMostOfShow);
}

int countWhatShowsLeave(const std::string& video) {
    const auto players = std::make_shared<CountingPlayers>();
    screen::Player::setFactory(players);
    int most = 0;
    {
        QWidget host;
        host.show();
        for (int round = 0; round < kShows; ++round) show(host, video);
        const auto left = [&] { return QApplication::allWidgets().size() - 1 + players->alive(); };
        // The last animation may still be under way.
        test::runUntil([&] { return left() == 0; }, std::chrono::seconds(2));
        most = static_cast<int>(left());
    }
    screen::Player::setFactory(nullptr);
    std::printf("  %d shows with %d players leave %d widgets and players (at most 0)%s\n", kShows,
                players->made(), most, most > 0 ? "  BEYOND" : "");
    return most > 0 ? 1 : 0;
}

int compareAll(const std::string& video) {
    const auto screen = platform::Screen::main().size;
    std::printf("On a screen of %.0fx%.0f\n", screen.width, screen.height);
    heading("A video of 1280x720, p50");
    return compareFirstFrames(video) + compareShows(video) + comparePlayback(video) +
           countWhatShowsLeave(video);
}

std::string makeVideo(const test::Videos& videos) {
    return videos.make("bench.mp4", "-f lavfi -i testsrc2=size=1280x720:rate=30:duration=8"
                                    " -f lavfi -i sine=duration=8 -c:v libx264 -preset veryfast -g 30"
                                    " -pix_fmt yuv420p -c:a aac -movflags +faststart");
}

}  // namespace

}  // namespace velmora::bench

int main(int count, char** arguments) {
    const velmora::test::TemporaryDirectory folder;
    const auto screen = folder / "screen.json";
    velmora::test::writeContent(screen, velmora::bench::kScreen);
    setenv("QT_QPA_PLATFORM", ("offscreen:configfile=" + screen.string()).c_str(), 0);
    setenv("XDG_DATA_HOME", folder.path().c_str(), 1);
    setenv("VELMORA_RESOURCES", VELMORA_RESOURCES, 0);
    const QApplication application(count, arguments);
    const velmora::test::Videos videos;
    const auto video =
        count > 1 ? std::filesystem::absolute(arguments[1]).string() : velmora::bench::makeVideo(videos);
    return velmora::bench::compareAll(video) > 0 ? 1 : 0;
}

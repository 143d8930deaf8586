#pragma once

#include "core/ShowBooks.h"
#include "harness/EventLoop.h"
#include "model/VLAdSuggestion.h"
#include "model/VLFinalStatesModel.h"
#include "model/VelmoraAdState.h"
#include "net/VLWebServices.h"
#include "sandbox/ScriptedServer.h"
#include "screen/Application.h"
#include "store/VLDefaults.h"
#include "support/ApplicationStore.h"
#include "support/ManualClock.h"
#include "support/ScriptedPage.h"
#include "support/ScriptedPlayer.h"
#include "ui/VLAVPlayerViewController.h"
#include "ui/VLAdShowUIController.h"

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <QApplication>
#include <gtest/gtest.h>
#include <velmora/velmora.h>

namespace velmora::test {

using sandbox::Script;
using sandbox::ScriptedServer;
using sandbox::SeenRequest;

/// An application with a window, which shows ads with a scripted player and scripted pages, on a clock of its
/// own; a server for their trackers; and a stranger's look into the store.
///
/// Every step goes on until nothing moves any more.
class AdShow : public testing::Test {
public:
    AdShow() {
        window_.show();
        setStates({"before", "s", "behind"});
        VLDefaults::cacheNewAd(ready("other", R"({"ctaType": 3})"));
        Velmora::setAdShowFinishedCallback([this](const auto& ad, bool completed) {
            told_ += told_.empty() ? "" : " ";
            told_ += completed ? "true" : "false";
            if (onTold) onTold(ad);
        });
    }

    ~AdShow() override {
        Velmora::setAdShowFinishedCallback(nullptr);
        for (auto* window : QApplication::topLevelWidgets()) window->close();
        rest();
        EXPECT_TRUE(controller_.expired());
        EXPECT_EQ(players_.alive(), 0U);
        EXPECT_TRUE(std::all_of(pages_.made().begin(), pages_.made().end(),
                                [](const auto& page) { return page->widget.isNull(); }));
    }

    /// A handle as a request makes it.
    static std::shared_ptr<VelmoraAd> ready(const std::string& id, const std::string& creative,
                                            const std::string& more = R"("callToActionId": "c", )") {
        return read<VelmoraAd>(R"({"mAd": {"suggestionId": ")" + id + "\", " + more +
                               "\"creative\": " + creative + R"(}, "requestOptions": {"mCacheType": 2}})");
    }

    /// One with a tracker for each event, named like it. `more` is of the creative.
    [[nodiscard]] std::string video(const std::string& more = "") const {
        std::string trackers;
        for (const std::string event : {"start", "firstQuartile", "midpoint", "thirdQuartile", "complete",
                                        "mute", "unmute", "skip", "replay", "fullscreen"})
            trackers += (trackers.empty() ? "\"" : ", \"") + event + R"(TrackerUrls": [")" +
                        server_.url("/" + event) + "\"]";
        return R"({"ctaType": 3, "ctaUrl": "http://127.0.0.1:1/v.mp4",)" + more +
               R"("action": {"type": 1, "actionUrl": "http://127.0.0.1:1/page"}, "vastTrackingData": {)" +
               trackers + "}}";
    }

    static std::string banner() { return R"({"ctaType": 2, "ctaUrl": "http://127.0.0.1:1/banner"})"; }

    /// What the last answer left in the store.
    static void setStates(const std::vector<std::string>& ids) {
        std::string states;
        for (const auto& id : ids)
            states += (states.empty() ? "" : ", ") +
                      (R"({"state": 2, "extraInfo": {}, "suggestionId": ")" + id + "\"}");
        VLDefaults::setFinalStates(read<VLFinalStatesModel>(R"({"states": [)" + states + "]}"));
    }

    void show(const std::string& creative, const std::shared_ptr<VLAdShowOptions>& options = nullptr) {
        show(ready("s", creative), options);
    }

    void show(const std::shared_ptr<VelmoraAd>& ad,
              const std::shared_ptr<VLAdShowOptions>& options = nullptr) {
        VLDefaults::cacheNewAd(ad);
        // From any thread.
        std::thread([&] { ad->showWithOptions(options); }).join();
        rest();
        controller_ = inFront();
    }

    /// What is not asked whether it is supported.
    std::shared_ptr<VLAdShowUIController> showUnasked(const std::shared_ptr<VelmoraAd>& ad) {
        VLDefaults::cacheNewAd(ad);
        auto shown = std::make_shared<VLAdShowUIController>(std::make_shared<ShowBooks>(ad));
        controller_ = shown;
        shown->showAd(ad, ad->state().mAd.get(), nullptr, ad->getRequestOptions());
        return shown;
    }

    /// The show over the window of the application; null for none.
    static std::shared_ptr<VLAdShowUIController> inFront() {
        const auto presented = screen::Application::rootViewController()->presentedViewController();
        const auto navigation = std::dynamic_pointer_cast<screen::NavigationController>(presented);
        if (!navigation) return nullptr;
        return std::dynamic_pointer_cast<VLAdShowUIController>(navigation->viewControllers().front());
    }

    std::shared_ptr<VLAdShowUIController> shown() { return controller_.lock(); }
    std::shared_ptr<ScriptedPlayer> player() { return players_.last(); }
    std::shared_ptr<ScriptedPage> page() { return pages_.made().back(); }

    /// Until nothing moves any more.
    void rest() {
        for (int step = 0; step < 16; ++step) {
            settle();
            clock_->advance(std::chrono::milliseconds(100));
        }
        settle();
    }

    void play(double length = 8) {
        player()->length = length;
        player()->become(screen::PlayerStatus::readyToPlay);
        rest();
    }

    /// Ticks of the video, each at its second.
    void tick(const std::vector<double>& seconds) {
        for (const double second : seconds) {
            player()->tick(second);
            std::ostringstream label;
            label << second;
            mark(label.str());
        }
    }

    /// Shows a video that plays up to the last of these ticks.
    void playVideo(const std::vector<double>& seconds,
                   const std::shared_ptr<VLAdShowOptions>& options = nullptr) {
        show(video(), options);
        play();
        tick(seconds);
    }

    void reachEnd() {
        player()->reachEnd();
        mark("end");
        rest();
    }

    void fail() {
        player()->become(screen::PlayerStatus::failed);
        mark("failed");
        rest();
    }

    void skip() {
        shown()->videoView->skipButtonClicked();
        mark("skip");
        rest();
    }

    void leave() {
        shown()->videoView->exitButtonTouched();
        rest();
        mark("left");
    }

    /// A command of the page.
    void command(const std::string& name) {
        EXPECT_FALSE(page()->navigate("velmora://" + name));
        mark(name);
        rest();
    }

    void replay() {
        const int before = player()->count("seek 0");
        // Clicked twice.
        EXPECT_FALSE(page()->navigate("velmora://replay"));
        command("replay");
        EXPECT_EQ(player()->count("seek 0"), before + 1);
        player()->finishSeeks(true);
    }

    /// What the manager has told the application so far.
    [[nodiscard]] const std::string& told() const { return told_; }

    /// The trackers in the order of their sending, each behind what it was sent at: a second of the video, or
    /// a step. Trackers of one moment are joined by "+".
    std::string trackers() {
        mark("last");
        std::map<int, std::string> sent;
        EXPECT_TRUE(runUntil([&] {
            for (const auto& request : server_.seen()) sent[request.connection] = request.target;
            const bool isMarked =
                std::any_of(sent.begin(), sent.end(), [&](const auto& one) { return one.second == marked_; });
            return isMarked && static_cast<int>(sent.size()) == sent.rbegin()->first;
        }));
        std::string text;
        std::string together;
        for (const auto& [connection, target] : sent) {
            if (!target.starts_with("/at/")) {
                together += (together.empty() ? "" : "+") + target.substr(1);
            } else if (!together.empty()) {
                const auto label = target.substr(target.rfind('/') + 1);
                text += (text.empty() ? "" : " ") + label + ":" + together;
                together.clear();
            }
        }
        return text;
    }

    // What another connection reads.

    /// "100 % 8 s" for each done suggestion.
    [[nodiscard]] std::string records() {
        std::ostringstream text;
        for (const auto& done : store_.list("cachedDoneAdSuggestions", "doneAdSuggestions")) {
            const auto& record = done.as_object();
            EXPECT_EQ(record.at("suggestionId"), "s");
            EXPECT_EQ(record.at("callToActionId"), "c");
            const auto number = [&](const char* key) {
                return record.contains(key) ? record.at(key).to_number<double>() : -1;
            };
            text << number("donePercentage") << " % " << number("doneSeconds") << " s";
        }
        return text.str();
    }

    [[nodiscard]] std::string states() { return store_.states(); }

    /// The identifiers of the ads that are ready to be shown.
    [[nodiscard]] std::string readyAds() {
        std::string text;
        for (const auto& ad : store_.list("cachedAds", "cachedVelmoraAds"))
            text += (text.empty() ? "" : " ") + platform::description(ad.at("mAd").at("suggestionId"));
        return text;
    }

    std::function<void(const std::shared_ptr<VelmoraAd>& ad)> onTold;
    ApplicationStore store_;
    UseManualClock clock_;
    UseScriptedPlayers players_;
    ScriptedPages pages_;
    QWidget window_;
    /// Every request has a connection of its own, so that the order of sending can be told.
    ScriptedServer server_{[](const SeenRequest&) {
        auto answer = Script::answer(200, "", "Connection: close\r\n");
        answer.keepOpen = false;
        return answer;
    }};

protected:
    std::weak_ptr<VLAdShowUIController> controller_;

private:
    /// Sent as trackers are: what was sent so far was sent up to this.
    void mark(const std::string& label) {
        marked_ = "/at/" + std::to_string(++marks_) + "/" + label;
        VLWebServices::callUrl(
            server_.url(marked_), [](const auto&) {}, [](const VLClientError&) {});
    }

    std::string told_;
    std::string marked_;
    int marks_ = 0;
};

}  // namespace velmora::test

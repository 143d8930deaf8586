#pragma once

#include "ui/VLAVPlayerViewController.h"
#include "ui/VLAVPlayerViewControllerDelegate.h"

#include <functional>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace velmora::test {

/// Writes down what it is told, in its order.
class Told final : public VLAVPlayerViewControllerDelegate {
public:
    using Url = std::optional<std::string>;

    void vlAVPlayerViewControllerDidReachEndOfVideoWithUrl(VLAVPlayerViewController&,
                                                           const Url& url) override {
        note("end " + url.value_or("-"));
    }
    void vlAVPlayerViewControllerCouldNotLoadVideoWithUrl(VLAVPlayerViewController&,
                                                          const Url& url) override {
        note("failed " + url.value_or("-"));
    }
    void vlAVPlayerViewControllerWillBeDismissedAfterFinishingVideoPlayback() override { note("will go"); }
    void vlOnAVPlayerDismissed(bool finished) override { note(finished ? "gone yes" : "gone no"); }
    void vlOnVideoMuted() override { note("muted"); }
    void vlOnVideoUnmuted() override { note("unmuted"); }
    void vlOnVideoSkipped() override { note("skipped"); }
    void vlOnProgressUpdated(float progress, float currentTime) override {
        std::ostringstream text;
        text << "progress " << progress << " at " << currentTime;
        note(text.str());
    }

    std::function<void(const std::string&)> onCall;
    std::vector<std::string> calls;

private:
    void note(const std::string& call) {
        calls.push_back(call);
        if (onCall) onCall(call);
    }
};

}  // namespace velmora::test

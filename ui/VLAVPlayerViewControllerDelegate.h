#pragma once

#include <optional>
#include <string>

namespace velmora {

class VLAVPlayerViewController;

/// What happens on the screen of a video. Main thread. A URL is what was played: the text that was set,
/// or the path of the file.
class VLAVPlayerViewControllerDelegate {
public:
    virtual ~VLAVPlayerViewControllerDelegate() = default;

    virtual void
    vlAVPlayerViewControllerDidReachEndOfVideoWithUrl(VLAVPlayerViewController& /*controller*/,
                                                      const std::optional<std::string>& /*url*/) {}
    /// The player failed, or there is nothing to play. It may come once for each time that the screen has
    /// appeared, and once more.
    virtual void vlAVPlayerViewControllerCouldNotLoadVideoWithUrl(VLAVPlayerViewController& /*controller*/,
                                                                  const std::optional<std::string>& /*url*/) {
    }
    virtual void vlAVPlayerViewControllerWillBeDismissedAfterFinishingVideoPlayback() {}
    /// After the animation; `finished` only when the end of the video was what dismissed the screen.
    virtual void vlOnAVPlayerDismissed(bool /*finished*/) {}
    virtual void vlOnVideoMuted() {}
    virtual void vlOnVideoUnmuted() {}
    virtual void vlOnVideoSkipped() {}
    /// The fraction of the duration, not-a-number while that is unknown, and the seconds.
    virtual void vlOnProgressUpdated(float /*progress*/, float /*currentTime*/) {}
};

}  // namespace velmora

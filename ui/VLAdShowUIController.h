#pragma once

#include "model/ShowEvents.h"
#include "model/VLSerializedModel.h"
#include "screen/ViewController.h"
#include "ui/VLAVPlayerViewControllerDelegate.h"
#include "ui/VLWebViewController.h"

#include <memory>
#include <optional>
#include <string>

#include <QPointer>

namespace velmora {

class VLActionModel;
class VLAdRequestOptions;
class VLAdShowOptions;
class VLAdSuggestion;
class VLAVPlayerViewController;
class VLActivityIndicatorView;
class VLDirectCreativeModel;
class VLFinalStatesModel;
class VLProgressTrackerModel;
class VLVastTrackingData;
class VelmoraAd;

/// Shows one ad over the whole screen: the player or the page, what a page asks for, and the end, which it
/// tells the manager. The half that reports lies in a file of its own. Main thread only; one for each show.
class VLAdShowUIController final : public screen::ViewController,
                                   public VLWebViewControllerDelegate,
                                   public VLAVPlayerViewControllerDelegate {
public:
    /// What happens is told to `events`, which is there.
    explicit VLAdShowUIController(std::shared_ptr<ShowEvents> events);
    /// Releases the player, whose observer keeps the player's controller alive.
    ~VLAdShowUIController() override;
    VLAdShowUIController(const VLAdShowUIController&) = delete;
    VLAdShowUIController& operator=(const VLAdShowUIController&) = delete;

    /// Presents itself over the application's root controller, and in itself the video or the page. An ad
    /// that is no longer valid leaves the screen empty. Without a window of the application nothing is shown.
    void showAd(const std::shared_ptr<VelmoraAd>& showAd,
                const std::shared_ptr<VLAdSuggestion>& forSuggestion,
                const std::shared_ptr<VLAdShowOptions>& withShowOptions,
                const std::shared_ptr<VLAdRequestOptions>& andRequestOptions);

    void initView();
    void startShowingVideoAsReplay(bool replay);
    void startShowingBanner();
    void showWebView();
    void showActionWebView();
    /// Whether a page follows the video.
    [[nodiscard]] bool isActionWebView() const;
    void finishController();
    [[nodiscard]] std::uint32_t supportedInterfaceOrientations() const override;

    void vlWebViewControllerWasDismissed() override;
    void vlWebViewBridgeClose() override;
    void vlWebViewBridgeDismiss() override;
    void vlWebViewBridgeReplay() override;
    void vlWebViewBridgeOpenType(const std::optional<std::string>& type,
                                 const std::optional<std::string>& andTarget,
                                 const std::optional<std::string>& andDescription) override;

    void vlAVPlayerViewControllerDidReachEndOfVideoWithUrl(VLAVPlayerViewController& controller,
                                                           const std::optional<std::string>& url) override;
    void vlAVPlayerViewControllerCouldNotLoadVideoWithUrl(VLAVPlayerViewController& controller,
                                                          const std::optional<std::string>& url) override;
    void vlOnAVPlayerDismissed(bool finished) override;
    void vlOnProgressUpdated(float progress, float currentTime) override;
    void vlOnVideoSkipped() override;
    void vlOnVideoMuted() override;
    void vlOnVideoUnmuted() override;

    /// Tells that the ad is over, with what was seen of it. Not of a video that could not be loaded.
    void onAdWasDone();
    /// Tells that the ad is on the screen.
    void updateSuggestionState();
    /// An empty list: the store is not this one's.
    [[nodiscard]] std::shared_ptr<VLFinalStatesModel> getFinalStates();
    /// Tells what has passed of the ad, once there is a word of that.
    void saveFinalStates();

    /// Each tells its event; which URLs are called then is for who is told.
    void sendStartVastReports(const Property& urls);
    void sendFirstQuartileVastReports(const Property& urls);
    void sendMidPointVastReports(const Property& urls);
    void sendThirdQuartileVastReports(const Property& urls);
    void sendCompleteVastReports(const Property& urls);
    void sendSkipVastReports(const Property& urls);
    void sendMutedVastReports(const Property& urls);
    void sendUnmutedVastReports(const Property& urls);
    /// Tells the place of the progress tracker that this is the URL of, by its address.
    void sendProgressVastReports(const Property& url);

    std::shared_ptr<VelmoraAd> tAd;
    std::shared_ptr<VLAdSuggestion> ad;
    std::shared_ptr<VLAdShowOptions> showOptions;
    std::shared_ptr<VLAdRequestOptions> requestOptions;
    QPointer<VLActivityIndicatorView> spinner;  ///< the player brings its own: nothing here makes this one
    std::shared_ptr<VLWebViewController> webView;
    std::shared_ptr<VLAVPlayerViewController> videoView;
    std::optional<std::string> videoPathOrUrl;
    std::shared_ptr<VLFinalStatesModel> finalStates;
    std::optional<double> videoDuration;  ///< the player's own counts: nothing here sets or reads this one
    std::optional<Seconds> doneSeconds;
    std::optional<std::int64_t> donePercentage;
    bool isResultReturned = false;
    bool isVideoShownOnce = false;
    bool isVideoCompleted = false;
    bool isStateUpdated = false;
    bool adDoneRecorded = false;
    std::optional<std::int64_t> webViewStartTime;  ///< milliseconds since 1970; nothing here sets it

private:
    [[nodiscard]] std::shared_ptr<VLAdShowUIController> self();
    [[nodiscard]] std::shared_ptr<VLDirectCreativeModel> creative() const;
    [[nodiscard]] std::shared_ptr<VLActionModel> action() const;
    [[nodiscard]] std::shared_ptr<VLVastTrackingData> trackingData() const;
    [[nodiscard]] std::shared_ptr<VLWebViewController> makePage(const std::optional<std::string>& url);
    [[nodiscard]] bool isCompletedOrShownOnce() const;
    void chooseSource();
    void tellManager(bool completed) const;
    void dismissAll();
    void followVideo();

    void sendDueOffsets(VLVastTrackingData& data, float progress, float currentTime);
    void setPassedDuration(const std::string& text);
    /// Of the video, as far as the player has told it.
    [[nodiscard]] std::optional<Seconds> length() const;
    /// The figures of what was seen; whether there is a last word of what has passed.
    bool sawVideo();
    bool sawPage();

    const std::shared_ptr<ShowEvents> events_;
    /// As it was when the show began.
    ModelList<VLProgressTrackerModel> progressTrackers_;
    /// Of what was seen, for the final state; absent before the first word of it.
    std::optional<std::string> passedDuration_;
    bool couldNotLoad_ = false;
};

}  // namespace velmora

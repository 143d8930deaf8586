#pragma once

#include "model/VLSerializedModel.h"
#include "screen/ViewController.h"
#include "ui/VLAVPlayerViewControllerDelegate.h"
#include "ui/VLWebViewController.h"

#include <functional>
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
class VLVastTrackingData;
class VelmoraAd;

/// Shows one ad over the whole screen: the player or the page, what a page asks for, and the end, which it
/// tells the manager. The half that reports lies in a file of its own. Main thread only; one for each show.
///
/// The flags are numbers that read as false while they are absent.
class VLAdShowUIController final : public screen::ViewController,
                                   public VLWebViewControllerDelegate,
                                   public VLAVPlayerViewControllerDelegate {
public:
    VLAdShowUIController();
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

    /// The record of an ad that is over: what was seen of it, and that the suggestion is done. None is made
    /// of a video that could not be loaded.
    void onAdWasDone();
    void updateSuggestionState();
    /// Those of the store, as they were when they were loaded or last changed from here.
    [[nodiscard]] std::shared_ptr<VLFinalStatesModel> getFinalStates();
    /// Puts into the store that the ad is being shown and what has passed of it, where the list there still
    /// has this suggestion.
    void saveFinalStates();

    /// Calls each URL of a list of trackers, in its order. One for each event, by its name.
    using VastReports = void(const Property& urls);
    static VastReports sendVastReports;
    static constexpr VastReports* sendStartVastReports = sendVastReports;
    static constexpr VastReports* sendFirstQuartileVastReports = sendVastReports;
    static constexpr VastReports* sendMidPointVastReports = sendVastReports;
    static constexpr VastReports* sendThirdQuartileVastReports = sendVastReports;
    static constexpr VastReports* sendCompleteVastReports = sendVastReports;
    static constexpr VastReports* sendSkipVastReports = sendVastReports;
    static constexpr VastReports* sendMutedVastReports = sendVastReports;
    static constexpr VastReports* sendUnmutedVastReports = sendVastReports;
    /// Calls the one tracker of an offset.
    static void sendProgressVastReports(const Property& url);

    std::shared_ptr<VelmoraAd> tAd;
    std::shared_ptr<VLAdSuggestion> ad;
    std::shared_ptr<VLAdShowOptions> showOptions;
    std::shared_ptr<VLAdRequestOptions> requestOptions;
    QPointer<VLActivityIndicatorView> spinner;  ///< the player brings its own: nothing here makes this one
    std::shared_ptr<VLWebViewController> webView;
    std::shared_ptr<VLAVPlayerViewController> videoView;
    std::optional<std::string> videoPathOrUrl;
    std::shared_ptr<VLFinalStatesModel> finalStates;
    Property videoDuration;  ///< the player's own counts: nothing here sets or reads this one
    Property doneSeconds;
    Property donePercentage;
    Property isResultReturned;
    Property isVideoShownOnce;
    Property isVideoCompleted;
    Property isStateUpdated;
    Property adDoneRecorded;
    Property webViewStartTime;  ///< milliseconds since 1970; nothing here sets it

private:
    [[nodiscard]] std::shared_ptr<VLAdShowUIController> self();
    [[nodiscard]] std::shared_ptr<VLDirectCreativeModel> creative() const;
    [[nodiscard]] std::shared_ptr<VLActionModel> action() const;
    [[nodiscard]] std::shared_ptr<VLVastTrackingData> trackingData() const;
    [[nodiscard]] std::shared_ptr<VLWebViewController> makePage(const Property& url);
    [[nodiscard]] bool isCompletedOrShownOnce() const;
    void chooseSource();
    void tellManager(bool completed) const;
    void dismissAll();
    void followVideo();

    void sendDueOffsets(VLVastTrackingData& data, float progress, float currentTime);
    void setPassedDuration(const std::string& text);
    void changeFinalStates(const std::function<void(VLFinalStatesModel&)>& change);
    void recordVideo();
    void recordPage();
    void addDoneSuggestion() const;

    /// Of what was seen, for the final state; absent before the first word of it.
    std::optional<std::string> passedDuration_;
    bool couldNotLoad_ = false;
};

}  // namespace velmora

#pragma once

#include "model/VLSerializedModel.h"
#include "platform/ViewController.h"
#include "ui/VLAVPlayerViewControllerDelegate.h"
#include "ui/VLWebViewController.h"

#include <memory>
#include <optional>
#include <string>

namespace velmora {

class VLActionModel;
class VLAdRequestOptions;
class VLAdShowOptions;
class VLAdSuggestion;
class VLAVPlayerViewController;
class VLDirectCreativeModel;
class VLFinalStatesModel;
class VLVastTrackingData;
class VelmoraAd;

/// Shows one ad over the whole screen: the player or the page, what a page asks for, and the end, which it
/// tells the manager. The half that reports lies in a file of its own. Main thread only; one for each show.
///
/// The flags are numbers that read as false while they are absent.
class VLAdShowUIController final : public platform::ViewController,
                                   public VLWebViewControllerDelegate,
                                   public VLAVPlayerViewControllerDelegate {
public:
    VLAdShowUIController();
    /// Releases the player, whose observer keeps the player's controller alive.
    ~VLAdShowUIController() override;

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

    /// The record of an ad that is over: what was seen of it, and that the suggestion is done.
    void onAdWasDone();
    void updateSuggestionState();
    /// Those of the store, once they have been loaded.
    [[nodiscard]] std::shared_ptr<VLFinalStatesModel> getFinalStates();
    void saveFinalStates() const;

    std::shared_ptr<VelmoraAd> tAd;
    std::shared_ptr<VLAdSuggestion> ad;
    std::shared_ptr<VLAdShowOptions> showOptions;
    std::shared_ptr<VLAdRequestOptions> requestOptions;
    std::shared_ptr<VLWebViewController> webView;
    std::shared_ptr<VLAVPlayerViewController> videoView;
    std::optional<std::string> videoPathOrUrl;
    std::shared_ptr<VLFinalStatesModel> finalStates;
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
    void dismissFromPresenter();
    void finishWithoutPage();

    void sendDueQuartiles(VLVastTrackingData& data, float progress);
    void sendDueOffsets(VLVastTrackingData& data, float progress, float currentTime);
    void updatePassedDuration();
    void setPassedDuration(const std::string& text);
    void recordVideo();
    void recordPage();
    void addDoneSuggestion() const;

    static void sendStartVastReports(const Property& urls);
    static void sendFirstQuartileVastReports(const Property& urls);
    static void sendMidPointVastReports(const Property& urls);
    static void sendThirdQuartileVastReports(const Property& urls);
    static void sendCompleteVastReports(const Property& urls);
    static void sendSkipVastReports(const Property& urls);
    static void sendMutedVastReports(const Property& urls);
    static void sendUnmutedVastReports(const Property& urls);
    static void sendProgressVastReports(const Property& url);
};

}  // namespace velmora

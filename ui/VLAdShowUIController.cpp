#include "ui/VLAdShowUIController.h"

#include "log/VLLog.h"
#include "model/ShowEvents.h"
#include "model/VLActionModel.h"
#include "model/VLAdShowOptionsState.h"
#include "model/VLAdSuggestion.h"
#include "model/VLDirectCreativeModel.h"
#include "model/VLSkipStarPercentageModel.h"
#include "model/VLVastTrackingData.h"
#include "platform/Application.h"
#include "screen/Application.h"
#include "ui/CallToAction.h"
#include "ui/VLAVPlayerViewController.h"

#include <array>
#include <utility>

#include <velmora/VLAdRequestOptions.h>
#include <velmora/VLAdShowOptions.h>
#include <velmora/VelmoraAd.h>

namespace velmora {

namespace {

namespace Mask = screen::InterfaceOrientationMask;

/// What is recorded of a video whose length is not known.
constexpr std::int64_t kSecondsOfUnknownVideo = 30;

struct Orientation {
    VLOrientation option;
    std::uint32_t mask;
};

constexpr std::array kOrientations{
    Orientation{VLOrientation::portrait, Mask::portrait},
    Orientation{VLOrientation::landscapeLeft, Mask::landscapeRight},
    Orientation{VLOrientation::any, Mask::all},
    Orientation{VLOrientation::landscapeRight, Mask::landscapeLeft},
    Orientation{VLOrientation::portraitUpsideDown, Mask::portraitUpsideDown},
};

/// What an ad is presented from: of the containers at the root, what they hold.
std::shared_ptr<screen::ViewController> presenter() {
    auto controller = screen::Application::rootViewController();
    if (const auto navigation = std::dynamic_pointer_cast<screen::NavigationController>(controller))
        controller = navigation->viewControllers().empty() ? nullptr : navigation->viewControllers().front();
    if (const auto tabBar = std::dynamic_pointer_cast<screen::TabBarController>(controller))
        controller = tabBar->selectedViewController();
    return controller;
}

}  // namespace

VLAdShowUIController::VLAdShowUIController(std::shared_ptr<ShowEvents> events) : events_(std::move(events)) {}

VLAdShowUIController::~VLAdShowUIController() {
    if (videoView) videoView->player.reset();
}

void VLAdShowUIController::showAd(const std::shared_ptr<VelmoraAd>& showAd,
                                  const std::shared_ptr<VLAdSuggestion>& forSuggestion,
                                  const std::shared_ptr<VLAdShowOptions>& withShowOptions,
                                  const std::shared_ptr<VLAdRequestOptions>& andRequestOptions) {
    ad = forSuggestion;
    showOptions = withShowOptions;
    requestOptions = andRequestOptions;
    tAd = showAd;
    videoPathOrUrl.reset();
    if (const auto data = trackingData()) progressTrackers_ = data->progressTrackingUrls.get();
    initView();

    // In its place at once, like the first picture in it: who waits for an ad gains nothing by two slides.
    if (const auto from = presenter())
        from->presentViewController(std::make_shared<screen::NavigationController>(self()), false);
    updateSuggestionState();
    if (!ad || !tAd || !tAd->isValid()) return;
    if (ad->isVideoAd()) return startShowingVideoAsReplay(false);
    if (ad->isBannerAd()) startShowingBanner();
}

void VLAdShowUIController::initView() {
    if (!ad) return;
    if (ad->isVideoAd()) {
        videoView =
            std::make_shared<VLAVPlayerViewController>(showOptions, creative()->getCreativeTypeEnum());
        videoView->delegate = self();
        webView = makePage(action() ? action()->getActionUrl() : std::nullopt);
    } else if (ad->isBannerAd()) {
        webView = makePage(creative()->getCtaUrl());
    }
}

void VLAdShowUIController::startShowingVideoAsReplay(bool replay) {
    if (!videoView) return;
    if (replay) videoView->replay();
    if (webView) webView->removeFromParentViewController();
    if (!replay && !videoPathOrUrl && requestOptions) chooseSource();
    const auto skip = creative() ? creative()->skipStartPercentage : nullptr;
    if (skip && skip->getStart()) videoView->setSkipButtonVisible(true);
    presentViewController(videoView, replay);
}

void VLAdShowUIController::chooseSource() {
    // A player that gets none of them says that it could not load.
    const auto cacheType = requestOptions->getCacheTypeNumber();
    if (cacheType == VLCacheType::streamed && creative()) {
        videoPathOrUrl = creative()->getCtaUrl();
        videoView->setUrlString(videoPathOrUrl);
    } else if (cacheType == VLCacheType::cached && tAd) {
        videoPathOrUrl = tAd->getVideoFilePath();
        videoView->setVideoFilePath(videoPathOrUrl);
    }
}

void VLAdShowUIController::startShowingBanner() {
    if (webView) presentViewController(webView, false);
}

void VLAdShowUIController::showWebView() {
    presentViewController(makePage(action() ? action()->getActionUrl() : std::nullopt), true);
}

void VLAdShowUIController::showActionWebView() {
    if (videoView) videoView->dismissViewControllerAnimated(true);
    if (webView) presentViewController(webView, true);
}

bool VLAdShowUIController::isActionWebView() const { return action() && action()->isPage(); }

void VLAdShowUIController::finishController() {
    if (isStateUpdated && !isVideoCompleted) {
        isStateUpdated = false;
        saveFinalStates();
    }
    if (ad && tAd) {
        if (ad->isVideoAd() && videoView && videoView->isVideoPlaying()) videoView->stopPlayback();
        if (!adDoneRecorded) onAdWasDone();
    }
    // A banner never comes here, and a video that was told of at its end is told of again.
    if (!isResultReturned && tAd && tAd->isVideoAd()) tellManager(isCompletedOrShownOnce());
    dismissAll();
}

std::uint32_t VLAdShowUIController::supportedInterfaceOrientations() const {
    const auto option = showOptions ? showOptions->state().mOrientation.get() : std::nullopt;
    for (const auto& one : kOrientations) {
        if (option && *option == one.option) return one.mask;
    }
    return Mask::all;
}

void VLAdShowUIController::vlWebViewControllerWasDismissed() { VLLog("web view dismissed"); }

void VLAdShowUIController::vlWebViewBridgeClose() { finishController(); }

void VLAdShowUIController::vlWebViewBridgeDismiss() {
    const bool isBanner = creative() && creative()->getCreativeTypeEnum() == VLCreativeType::banner;
    if (!adDoneRecorded && isBanner) onAdWasDone();
    finishController();
}

void VLAdShowUIController::vlWebViewBridgeReplay() {
    if (!webView || !webView->presentingViewController()) return;
    // By the page itself, so that a second command during the animation finds nothing left to dismiss.
    webView->dismissViewControllerAnimated(
        true, [controller = self()] { controller->startShowingVideoAsReplay(true); });
}

void VLAdShowUIController::vlWebViewBridgeOpenType(const std::optional<std::string>& type,
                                                   const std::optional<std::string>& andTarget,
                                                   const std::optional<std::string>& andDescription) {
    const auto url = callToActionUrl(type, andTarget, andDescription);
    if (url && platform::Application::canOpenUrl(*url)) platform::Application::openUrl(*url);
}

void VLAdShowUIController::vlAVPlayerViewControllerDidReachEndOfVideoWithUrl(
    VLAVPlayerViewController& controller, const std::optional<std::string>& url) {
    VLLog("video view reach end url: %@", url);
    donePercentage = 100;
    if (const auto length = controller.getVideoDuration(); length && platform::saturated(*length) > 0) {
        isVideoCompleted = true;
        doneSeconds = *length;
        if (!isVideoShownOnce && !isResultReturned) tellManager(true);
        isVideoShownOnce = true;
    } else {
        doneSeconds = kSecondsOfUnknownVideo;
    }
    if (isStateUpdated) saveFinalStates();
    if (!adDoneRecorded) onAdWasDone();
}

void VLAdShowUIController::vlAVPlayerViewControllerCouldNotLoadVideoWithUrl(
    VLAVPlayerViewController& controller, const std::optional<std::string>&) {
    couldNotLoad_ = true;
    if (!isResultReturned) {
        isResultReturned = true;
        // A video that never had a length counts as completed.
        const bool hasLength = controller.getVideoDuration().value_or(0) > 0;
        tellManager(!hasLength || isCompletedOrShownOnce());
    }
    if (isStateUpdated) {
        isStateUpdated = false;
        saveFinalStates();
    }
    dismissAll();
}

void VLAdShowUIController::vlOnAVPlayerDismissed(bool finished) {
    if (finished) return followVideo();
    if (!showOptions || !showOptions->getShowDialoged()) finishController();
}

std::shared_ptr<VLAdShowUIController> VLAdShowUIController::self() {
    return std::static_pointer_cast<VLAdShowUIController>(shared_from_this());
}

std::shared_ptr<VLDirectCreativeModel> VLAdShowUIController::creative() const {
    return ad ? ad->creative : nullptr;
}

std::shared_ptr<VLActionModel> VLAdShowUIController::action() const {
    return creative() ? creative()->action : nullptr;
}

std::shared_ptr<VLVastTrackingData> VLAdShowUIController::trackingData() const {
    return creative() ? creative()->vastTrackingData : nullptr;
}

std::shared_ptr<VLWebViewController> VLAdShowUIController::makePage(const std::optional<std::string>& url) {
    auto page = std::make_shared<VLWebViewController>();
    page->setUrlString(url);
    page->delegate = self();
    return page;
}

bool VLAdShowUIController::isCompletedOrShownOnce() const { return isVideoCompleted || isVideoShownOnce; }

void VLAdShowUIController::tellManager(bool completed) const { events_->finished(completed); }

void VLAdShowUIController::dismissAll() {
    // By what holds this show and nothing else: the root may present the next one by the time that this has
    // its turn. One that still waits to be presented is dismissed right after it.
    if (const auto navigation = parentViewController()) navigation->dismissViewControllerAnimated(true);
}

void VLAdShowUIController::followVideo() {
    if (isActionWebView()) return showActionWebView();
    VLLog("Operation not supported in this version, closing view controller.");
    finishController();
}

}  // namespace velmora

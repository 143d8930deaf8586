#pragma once

#include "model/VLDirectCreativeModel.h"
#include "platform/Screen.h"
#include "platform/Value.h"
#include "screen/Player.h"
#include "screen/ViewController.h"
#include "ui/TextAttributeDictionary.h"

#include <memory>
#include <optional>
#include <string>

#include <QPointer>
#include <QWidget>

namespace velmora {

class ImageButton;
class Label;
class VLActivityIndicatorView;
class VLAdShowOptions;
class VLAVPlayerViewControllerDelegate;
class VLSimpleProgressView;

/// Plays an ad's video over the whole screen, under its buttons and its progress. It decides nothing about
/// the ad: the delegate does. Main thread only.
///
/// Once its view is loaded it lives as long as its player, whose time observer holds it: whoever owns it
/// resets `player` to be rid of both.
///
/// The subviews are made on first access,
/// which loads the view, and belong to it.
class VLAVPlayerViewController : public screen::ViewController, public screen::PlayerStatusObserver {
public:
    VLAVPlayerViewController(std::shared_ptr<VLAdShowOptions> options, VLCreativeType forCreativeType);
    ~VLAVPlayerViewController() override;
    VLAVPlayerViewController(const VLAVPlayerViewController&) = delete;
    VLAVPlayerViewController& operator=(const VLAVPlayerViewController&) = delete;

    void setUrlString(std::optional<std::string> url) { urlString = std::move(url); }
    void setVideoFilePath(std::optional<std::string> path) { videoFilePath = std::move(path); }
    void setVideoPath(std::optional<std::string> path) { setVideoFilePath(std::move(path)); }

    void viewDidLoad() override;
    void viewDidAppear(bool animated) override;
    void viewDidLayoutSubviews() override;

    void muteVideo();
    void unmuteVideo();
    void muteButtonClicked();
    void skipButtonClicked();
    void exitButtonTouched();
    /// Plays from the start; whether it is on the screen is the delegate's business.
    void replay();
    void stopPlayback();
    /// Of use only while it plays already: nothing resumes what `stopPlayback` stopped.
    void resumePlayback();

    [[nodiscard]] bool isVideoPlaying() const;
    /// Hidden for good at the next layout when the creative is a rewarded video.
    void setSkipButtonVisible(bool visible);
    /// Whether it is hidden: the opposite of the name, which callers rely on.
    [[nodiscard]] bool isSkipButtonVisible();
    /// In seconds, not-a-number for an unknown one; absent before the first progress.
    [[nodiscard]] std::optional<double> getVideoDuration() const { return videoDuration; }

    /// Of the main screen, as the interface is turned.
    [[nodiscard]] static platform::ScreenSize screenSize();

    void playerStatusDidChange(screen::Player& changed) override;
    void playerItemDidReachEnd();

    [[nodiscard]] VLSimpleProgressView* progressView();
    [[nodiscard]] Label* progressLabel();
    [[nodiscard]] VLActivityIndicatorView* spinner();
    [[nodiscard]] ImageButton* exitButton();
    [[nodiscard]] ImageButton* muteButton();
    [[nodiscard]] ImageButton* skipButton();

    std::optional<std::string> urlString;      ///< goes before the file
    std::optional<std::string> videoFilePath;  ///< when there is no URL; without both it fails
    std::weak_ptr<VLAVPlayerViewControllerDelegate> delegate;
    std::shared_ptr<VLAdShowOptions> adShowOptions;
    VLCreativeType creativeType;
    std::shared_ptr<screen::Player> player;
    QPointer<QWidget> avPlayerLayer;
    std::optional<double> videoDuration;
    bool isPlayerPlaying = false;
    bool playerDidFinishWithSuccess = false;
    std::optional<std::string> linkUrlString;  ///< nothing here reads it

private:
    [[nodiscard]] std::shared_ptr<VLAVPlayerViewController> self();
    [[nodiscard]] std::optional<std::string> url() const;
    template <class... Parameters, class... Arguments>
    void tell(void (VLAVPlayerViewControllerDelegate::*operation)(Parameters...),
              Arguments&&... arguments) const;

    void wireButtons();
    void makePlayer();
    void makeLayer();
    void makeLabelAttributes();
    void observePlayer();
    void onTick(double seconds);
    void couldNotLoad();
    void playLater();
    void removeStatusObservation();
    void dismissAndTell(bool finished);

    template <class View>
    View* subview(QPointer<View>& view, const QRect& frame);
    void layOutViews(const platform::ScreenSize& screen);
    void showMuted(bool muted);

    TextAttributeDictionary labelAttributes_;
    QPointer<VLSimpleProgressView> progressView_;
    QPointer<Label> progressLabel_;
    QPointer<VLActivityIndicatorView> spinner_;
    QPointer<ImageButton> exitButton_;
    QPointer<ImageButton> muteButton_;
    QPointer<ImageButton> skipButton_;
};

}  // namespace velmora

#include "ui/VLAVPlayerViewController.h"

#include "screen/Queue.h"
#include "ui/ImageButton.h"
#include "ui/Label.h"
#include "ui/VLAVPlayerViewControllerDelegate.h"
#include "ui/VLActivityIndicatorView.h"
#include "ui/VLSimpleProgressView.h"

#include <limits>
#include <utility>

namespace velmora {

using screen::Player;
using screen::PlayerStatus;
using screen::Queue;
using Delegate = VLAVPlayerViewControllerDelegate;

namespace {

constexpr double kSecondsBetweenTicks = 0.25;

/// Truncated, and 0 when it is no number.
QString percentText(float percent) {
    return QString::number(platform::saturated(static_cast<double>(percent))) + '%';
}

}  // namespace

VLAVPlayerViewController::VLAVPlayerViewController(std::shared_ptr<VLAdShowOptions> options,
                                                   VLCreativeType forCreativeType)
    : adShowOptions(std::move(options)), creativeType(forCreativeType) {}

VLAVPlayerViewController::~VLAVPlayerViewController() = default;

std::shared_ptr<VLAVPlayerViewController> VLAVPlayerViewController::self() {
    return std::static_pointer_cast<VLAVPlayerViewController>(shared_from_this());
}

std::optional<std::string> VLAVPlayerViewController::url() const {
    return urlString ? urlString : videoFilePath;
}

template <class... Parameters, class... Arguments>
void VLAVPlayerViewController::tell(void (Delegate::*operation)(Parameters...),
                                    Arguments&&... arguments) const {
    if (const auto listener = delegate.lock()) (*listener.*operation)(std::forward<Arguments>(arguments)...);
}

void VLAVPlayerViewController::viewDidLoad() {
    ViewController::viewDidLoad();
    isPlayerPlaying = false;
    playerDidFinishWithSuccess = false;
    wireButtons();
    if (!urlString && !videoFilePath) return;
    spinner()->startAnimating();
    makePlayer();
    makeLayer();
    makeLabelAttributes();
    observePlayer();
}

void VLAVPlayerViewController::wireButtons() {
    // A touch may release the controller, which takes the button with it: not while the button is at work.
    const auto wire = [this](ImageButton* button, void (VLAVPlayerViewController::*operation)()) {
        QObject::connect(button, &ImageButton::clicked, button, [this, operation] {
            auto holder = self();
            (*holder.*operation)();
            Queue::async([holder = std::move(holder)] {});
        });
    };
    wire(exitButton(), &VLAVPlayerViewController::exitButtonTouched);
    wire(muteButton(), &VLAVPlayerViewController::muteButtonClicked);
    wire(skipButton(), &VLAVPlayerViewController::skipButtonClicked);
}

void VLAVPlayerViewController::makePlayer() {
    player = urlString ? Player::playerWithUrl(*urlString) : Player::playerWithFile(*videoFilePath);
}

void VLAVPlayerViewController::observePlayer() {
    // Held by its player on purpose: the video goes on, and is told of, until the player is released.
    player->addPeriodicTimeObserver(kSecondsBetweenTicks,
                                    [holder = self()](double seconds) { holder->onTick(seconds); });
    player->addEndObserver([weak = std::weak_ptr(self())] {
        if (const auto controller = weak.lock()) controller->playerItemDidReachEnd();
    });
    player->addStatusObserver(self());
}

void VLAVPlayerViewController::onTick(double seconds) {
    const auto time = static_cast<float>(seconds);
    const auto duration =
        player ? static_cast<float>(player->duration()) : std::numeric_limits<float>::quiet_NaN();
    if (!videoDuration) videoDuration = duration;
    const float progress = time / duration;
    tell(&Delegate::vlOnProgressUpdated, progress, time);
    progressView()->setProgress(progress);
    progressLabel()->setText(percentText(100 * time / duration), labelAttributes_);
}

void VLAVPlayerViewController::viewDidAppear(bool animated) {
    ViewController::viewDidAppear(animated);
    // A second time beside that of loading: a change is then told twice.
    if (player) player->addStatusObserver(self());
    if (player && player->status() == PlayerStatus::readyToPlay) {
        isPlayerPlaying = true;
        Queue::async([controller = self()] {
            if (controller->player) controller->player->play();
        });
    }
    showMuted(player && player->isMuted());
    if (!urlString && !videoFilePath) couldNotLoad();
}

void VLAVPlayerViewController::playerStatusDidChange(Player& changed) {
    spinner()->stopAnimating();
    if (&changed != player.get()) return;
    if (changed.status() == PlayerStatus::readyToPlay)
        playLater();
    else
        couldNotLoad();
}

void VLAVPlayerViewController::playLater() {
    Queue::async([controller = self()] {
        controller->isPlayerPlaying = true;
        if (controller->player) controller->player->play();
    });
}

void VLAVPlayerViewController::couldNotLoad() {
    isPlayerPlaying = false;
    tell(&Delegate::vlAVPlayerViewControllerCouldNotLoadVideoWithUrl, *this, url());
    removeStatusObservation();
    dismissAndTell(false);
}

void VLAVPlayerViewController::removeStatusObservation() {
    if (player) player->removeStatusObserver(*this);
}

void VLAVPlayerViewController::dismissAndTell(bool finished) {
    dismissViewControllerAnimated(true, [controller = self(), finished] {
        controller->tell(&Delegate::vlOnAVPlayerDismissed, finished);
    });
}

void VLAVPlayerViewController::playerItemDidReachEnd() {
    playerDidFinishWithSuccess = true;
    removeStatusObservation();
    tell(&Delegate::vlAVPlayerViewControllerDidReachEndOfVideoWithUrl, *this, url());
    tell(&Delegate::vlAVPlayerViewControllerWillBeDismissedAfterFinishingVideoPlayback);
    dismissAndTell(true);
}

void VLAVPlayerViewController::exitButtonTouched() {
    if (playerDidFinishWithSuccess) {
        tell(&Delegate::vlAVPlayerViewControllerWillBeDismissedAfterFinishingVideoPlayback);
    } else {
        if (player) player->setRate(0);
        removeStatusObservation();
    }
    dismissAndTell(false);
}

void VLAVPlayerViewController::replay() {
    if (!player) return;
    player->seek(0, [weak = weak_from_this()](bool /*finished*/) {
        const auto controller = std::static_pointer_cast<VLAVPlayerViewController>(weak.lock());
        if (controller && controller->player) controller->player->play();
    });
}

void VLAVPlayerViewController::muteButtonClicked() {
    if (!player) return;
    if (player->isMuted())
        unmuteVideo();
    else
        muteVideo();
}

void VLAVPlayerViewController::muteVideo() {
    if (!player) return;
    player->setMuted(true);
    showMuted(true);
    tell(&Delegate::vlOnVideoMuted);
}

void VLAVPlayerViewController::unmuteVideo() {
    if (!player) return;
    player->setMuted(false);
    showMuted(false);
    tell(&Delegate::vlOnVideoUnmuted);
}

void VLAVPlayerViewController::skipButtonClicked() { tell(&Delegate::vlOnVideoSkipped); }

bool VLAVPlayerViewController::isVideoPlaying() const { return isPlayerPlaying; }

void VLAVPlayerViewController::stopPlayback() {
    if (!player || !isVideoPlaying()) return;
    player->pause();
    isPlayerPlaying = false;
}

void VLAVPlayerViewController::resumePlayback() {
    if (player && isVideoPlaying()) playLater();
}

}  // namespace velmora

#include "screen/qt/player/QtPlayer.h"

#include "screen/Queue.h"
#include "screen/qt/player/MediaCertificates.h"
#include "screen/qt/player/VideoView.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace velmora::screen {

namespace {

constexpr int kWatchesOfPatience = 20;

// A video whose length is not in its head may still tell it a little later.
constexpr std::chrono::milliseconds kWaitForDuration(1000);

// Sound and picture seldom end with the very last millisecond; what lacks more was cut short.
constexpr double kLackAtEnd = 0.25;

bool isPlayable(const QUrl& url) {
    if (!url.isValid()) return false;
    if (url.scheme() == "https") return trustCertificatesOfEnvironment();
    return url.scheme() == "http" || url.scheme() == "file";
}

}  // namespace

QtPlayer::QtPlayer(const QUrl& source, std::chrono::milliseconds patience) {
    player_.setVideoSink(&sink_);
    // Without a sound device it plays silently all the same.
    player_.setAudioOutput(&audio_);
    tick_.setSingleShot(true);
    tick_.setTimerType(Qt::PreciseTimer);
    listen();
    watch_.start(patience / kWatchesOfPatience);
    if (player_.isAvailable() && isPlayable(source)) {
        player_.setSource(source);
        // Shows the first frame as soon as it is there; stopped, it would keep that to itself.
        player_.pause();
    } else
        QMetaObject::invokeMethod(
            &receiver_, [this] { fail(); }, Qt::QueuedConnection);
}

void QtPlayer::listen() {
    const auto later = Qt::QueuedConnection;
    QObject::connect(
        &player_, &QMediaPlayer::mediaStatusChanged, &receiver_,
        [this](QMediaPlayer::MediaStatus status) { onMediaStatus(status); }, later);
    QObject::connect(
        &player_, &QMediaPlayer::playbackStateChanged, &receiver_,
        [this](QMediaPlayer::PlaybackState state) { onPlaybackState(state); }, later);
    QObject::connect(
        &player_, &QMediaPlayer::durationChanged, &receiver_, [this] { becomeReadyWithDuration(); }, later);
    QObject::connect(
        &player_, &QMediaPlayer::bufferProgressChanged, &receiver_, [this] { idleWatches_ = 0; }, later);
    QObject::connect(
        &player_, &QMediaPlayer::errorOccurred, &receiver_, [this] { fail(); }, later);
    QObject::connect(&tick_, &QTimer::timeout, &receiver_, [this] { onTick(); });
    QObject::connect(&watch_, &QTimer::timeout, &receiver_, [this] { watch(); });
}

void QtPlayer::onMediaStatus(QMediaPlayer::MediaStatus status) {
    const auto self = shared_from_this();
    idleWatches_ = 0;
    switch (status) {
    case QMediaPlayer::LoadedMedia:
        isLoaded_ = true;
        becomeReadyWithDuration();
        QTimer::singleShot(kWaitForDuration, &receiver_, [this] { becomeReady(); });
        break;
    case QMediaPlayer::EndOfMedia: end(); break;
    case QMediaPlayer::InvalidMedia: fail(); break;
    default: break;
    }
}

void QtPlayer::becomeReadyWithDuration() {
    // A stream can report that it is buffered before its head has been read.
    if (isLoaded_ && player_.duration() > 0) becomeReady();
}

void QtPlayer::becomeReady() {
    if (status_ != PlayerStatus::unknown) return;
    const auto self = shared_from_this();
    status_ = PlayerStatus::readyToPlay;
    if (!isWanted_) watch_.stop();
    tellStatus();
    if (isWanted_) setRate(speed_);
}

void QtPlayer::fail() {
    // One fault is reported several times over.
    if (status_ == PlayerStatus::failed) return;
    const auto self = shared_from_this();
    status_ = PlayerStatus::failed;
    isWanted_ = false;
    tick_.stop();
    watch_.stop();
    player_.stop();
    tellStatus();
}

void QtPlayer::end() {
    if (status_ == PlayerStatus::failed || hasEnded_) return;
    if (status_ == PlayerStatus::unknown) return fail();
    // A seek came between the end and the word of it.
    if (player_.mediaStatus() != QMediaPlayer::EndOfMedia) return;
    const auto self = shared_from_this();
    hasEnded_ = true;
    isWanted_ = false;
    tick_.stop();
    watch_.stop();
    tellJump(currentTime());
    tellEnd();
}

void QtPlayer::play() { setRate(1); }

void QtPlayer::pause() {
    isWanted_ = false;
    if (status_ != PlayerStatus::readyToPlay) return;
    watch_.stop();
    if (!hasEnded_) player_.pause();
}

void QtPlayer::setRate(double rate) {
    if (!(rate > 0)) return pause();
    if (status_ == PlayerStatus::failed || hasEnded_) return;
    speed_ = rate;
    isWanted_ = true;
    if (status_ != PlayerStatus::readyToPlay) return;
    if (player_.playbackRate() != rate) player_.setPlaybackRate(rate);
    idleWatches_ = 0;
    watch_.start();
    player_.play();
}

void QtPlayer::setMuted(bool muted) { audio_.setMuted(muted); }

void QtPlayer::seek(double seconds, SeekCompletion completion) {
    const bool isReady = status_ == PlayerStatus::readyToPlay;
    const auto number = ++seeks_;
    const auto self = shared_from_this();
    if (isReady) {
        // At the end, the player would begin anew from the start whatever its position.
        if (std::exchange(hasEnded_, false)) player_.pause();
        player_.setPosition(std::llround(seconds * 1000));
    }
    Queue::async(
        [this, weak = std::weak_ptr(self), number, isReady, seconds, completion = std::move(completion)] {
            const auto player = weak.lock();
            if (player && isReady && number == seeks_) tellJump(seconds);
            if (completion) completion(player && isReady && number == seeks_);
        });
}

double QtPlayer::duration() const {
    const auto milliseconds = player_.duration();
    if (milliseconds <= 0) return std::numeric_limits<double>::quiet_NaN();
    return static_cast<double>(milliseconds) / 1000;
}

double QtPlayer::currentTime() const {
    const double now = static_cast<double>(player_.position()) / 1000;
    return hasEnded_ && duration() - now <= kLackAtEnd ? duration() : now;
}

QWidget* QtPlayer::makeLayer(QWidget* parent) {
    auto view = std::make_unique<VideoView>(parent);
    view->setFrame(sink_.videoFrame());
    QObject::connect(&sink_, &QVideoSink::videoFrameChanged, view.get(), &VideoView::setFrame);
    return view.release();
}

void QtPlayer::onPlaybackState(QMediaPlayer::PlaybackState state) {
    if (status_ != PlayerStatus::readyToPlay || state == QMediaPlayer::StoppedState || hasEnded_) return;
    const auto self = shared_from_this();
    tick_.stop();
    if (state == QMediaPlayer::PlayingState) waitForTick();
    tellJump(currentTime());
}

void QtPlayer::waitForTick() {
    const double now = currentTime();
    // Not at once again when the time stands still, and now and then in any case: one may have jumped.
    const double wait = std::clamp((nextDue(now) - now) / speed_, 0.01, 1.0);
    tick_.start(std::chrono::milliseconds(std::lround(std::ceil(wait * 1000))));
}

void QtPlayer::onTick() {
    if (player_.playbackState() != QMediaPlayer::PlayingState) return;
    const auto self = shared_from_this();
    waitForTick();
    tellPassed(currentTime());
}

void QtPlayer::watch() {
    const auto position = player_.position();
    if (std::exchange(seenPosition_, position) != position) idleWatches_ = 0;
    if (++idleWatches_ > kWatchesOfPatience) fail();
}

}  // namespace velmora::screen

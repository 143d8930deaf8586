#pragma once

#include "screen/Player.h"

#include <chrono>
#include <cstdint>

#include <QAudioOutput>
#include <QMediaPlayer>
#include <QObject>
#include <QTimer>
#include <QUrl>
#include <QVideoSink>

namespace velmora::screen {

/// Qt's media player. What it says is taken up at a later turn of the event loop, so that an observer may
/// release this one at any time.
class QtPlayer final : public Player {
public:
    /// How long nothing may move, while it loads or plays, before it fails. Time in which the event loop does
    /// not run does not count.
    static constexpr std::chrono::milliseconds kPatience{20'000};

    explicit QtPlayer(const QUrl& source, std::chrono::milliseconds patience = kPatience);

    [[nodiscard]] PlayerStatus status() const override { return status_; }
    void play() override;
    void pause() override;
    [[nodiscard]] double rate() const override { return isWanted_ ? speed_ : 0; }
    void setRate(double rate) override;
    [[nodiscard]] bool isMuted() const override { return audio_.isMuted(); }
    void setMuted(bool muted) override;
    void seek(double seconds, SeekCompletion completion) override;
    [[nodiscard]] double duration() const override;
    [[nodiscard]] double currentTime() const override;
    [[nodiscard]] QWidget* makeLayer(QWidget* parent) override;

private:
    void listen();
    void onMediaStatus(QMediaPlayer::MediaStatus status);
    void onPlaybackState(QMediaPlayer::PlaybackState state);
    void becomeReadyWithDuration();
    void becomeReady();
    void end();
    void fail();

    void waitForTick();
    void onTick();
    void watch();

    PlayerStatus status_ = PlayerStatus::unknown;
    bool isLoaded_ = false;
    bool isWanted_ = false;  ///< to play
    bool hasEnded_ = false;
    double speed_ = 1;
    std::uint64_t seeks_ = 0;
    qint64 seenPosition_ = 0;
    int idleWatches_ = 0;

    QVideoSink sink_;
    QAudioOutput audio_;
    QMediaPlayer player_;
    QTimer tick_;
    QTimer watch_;
    /// Gone first, and with it whatever was still to be told.
    QObject receiver_;
};

}  // namespace velmora::screen

#pragma once

#include <memory>
#include <string>

#include <QAudioOutput>
#include <QMediaPlayer>
#include <QVideoFrame>
#include <QVideoSink>
#include <QWidget>

namespace velmora::bench {

/// What an application writes that shows a video over the whole screen with nothing but Qt.
class BareVideo final : public QWidget {
public:
    BareVideo();

    void open(const std::string& file);

    [[nodiscard]] bool showsPicture() const;
    /// In seconds.
    [[nodiscard]] double position() const { return static_cast<double>(player_->position()) / 1000; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QVideoFrame frame_;
    QVideoSink sink_;
    QAudioOutput audio_;
    std::unique_ptr<QMediaPlayer> player_;
};

}  // namespace velmora::bench

#include "support/BareVideo.h"

#include "support/PlayedVideo.h"

#include <QPainter>
#include <QUrl>

namespace velmora::bench {

BareVideo::BareVideo() {
    setAttribute(Qt::WA_OpaquePaintEvent);
    coverScreen(*this);
    connect(&sink_, &QVideoSink::videoFrameChanged, this, [this](const QVideoFrame& frame) {
        frame_ = frame;
        update();
    });
}

void BareVideo::open(const std::string& file) {
    player_ = std::make_unique<QMediaPlayer>();
    player_->setVideoSink(&sink_);
    player_->setAudioOutput(&audio_);
    player_->setSource(QUrl::fromLocalFile(QString::fromStdString(file)));
    player_->play();
}

bool BareVideo::showsPicture() const { return hasPicture(*this); }

void BareVideo::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    QVideoFrame::PaintOptions options;
    options.aspectRatioMode = Qt::KeepAspectRatio;
    if (frame_.isValid())
        frame_.paint(&painter, rect(), options);
    else
        painter.fillRect(rect(), Qt::black);
}

}  // namespace velmora::bench

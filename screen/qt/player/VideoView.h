#pragma once

#include <QImage>
#include <QVideoFrame>
#include <QWidget>

namespace velmora::screen {

/// Shows frames in their own shape on black; before the first one it shows nothing. A frame is converted only
/// when it is painted.
class VideoView final : public QWidget {
public:
    explicit VideoView(QWidget* parent);

    /// One that is not valid leaves the last one standing.
    void setFrame(const QVideoFrame& frame);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QVideoFrame frame_;  ///< not yet drawn
    QImage picture_;
};

}  // namespace velmora::screen

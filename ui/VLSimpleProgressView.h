#pragma once

#include "ui/KeptPicture.h"

#include <optional>

#include <QColor>
#include <QWidget>

namespace velmora {

/// A ring that fills clockwise from its top, over what lies beneath it.
class VLSimpleProgressView : public QWidget {
public:
    explicit VLSimpleProgressView(QWidget* parent = nullptr);
    explicit VLSimpleProgressView(const QRect& frame, QWidget* parent = nullptr);

    /// The fraction done. It is not limited: beyond 1 the ring stays full, and below 0 it is as far from
    /// full. What is no number shows the empty ring.
    [[nodiscard]] double progress() const { return progress_; }
    void setProgress(double progress);

    /// A grey unless one was set; absent goes back to it.
    [[nodiscard]] QColor tintColor() const;
    void setTintColor(const std::optional<QColor>& color);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void configureView();
    void drawRect(QPainter& painter) const;
    [[nodiscard]] bool isSetHidden() const;

    double progress_ = 0;
    std::optional<QColor> tintColor_;
    KeptPicture picture_;
};

}  // namespace velmora

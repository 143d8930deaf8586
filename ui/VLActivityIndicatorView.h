#pragma once

#include "ui/ActivityIndicator.h"
#include "ui/Label.h"

#include <QWidget>

namespace velmora {

/// The rounded dark panel that is shown while a video loads: a spinner over a caption. Hidden at first.
class VLActivityIndicatorView : public QWidget {
public:
    explicit VLActivityIndicatorView(const QRect& frame, QWidget* parent = nullptr);

    /// Made on first access, in front of what the panel holds; the panel's own.
    [[nodiscard]] ActivityIndicator* spinner();
    [[nodiscard]] Label* textLabel();

    void startAnimating();
    void stopAnimating();

    /// Puts spinner and caption where they belong; done whenever the panel gets another size.
    void layoutSubviews();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void setup();

    ActivityIndicator* spinner_ = nullptr;
    Label* textLabel_ = nullptr;
};

}  // namespace velmora

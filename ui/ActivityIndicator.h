#pragma once

#include <QBasicTimer>
#include <QWidget>

namespace velmora {

/// A large white spinner. Unseen until it is started and when it is stopped; it turns, and costs anything,
/// only while it is on the screen.
class ActivityIndicator : public QWidget {
public:
    explicit ActivityIndicator(QWidget* parent = nullptr);

    void startAnimating();
    void stopAnimating();
    [[nodiscard]] bool isAnimating() const { return animating_; }
    /// Whether it moves now.
    [[nodiscard]] bool isTurning() const { return timer_.isActive(); }

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void turn();

    QBasicTimer timer_;
    int step_ = 0;
    bool animating_ = false;
};

}  // namespace velmora

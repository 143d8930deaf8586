#pragma once

#include <QImage>
#include <QPoint>
#include <QWidget>

namespace demo {

/// The library's own window, as somebody in front of the screen sees it and touches it.
class AdWindow {
public:
    /// Every window of the application is the library's, but this one.
    explicit AdWindow(const QWidget& ours);

    /// Null while no ad is shown.
    [[nodiscard]] QWidget* widget() const;
    [[nodiscard]] QImage picture() const;

    [[nodiscard]] bool hasButton(const char* name) const;
    void touchButton(const char* name) const;

    [[nodiscard]] bool hasPage() const { return page() != nullptr; }
    /// Whether a page is there in its place and has been drawn.
    [[nodiscard]] bool showsPage() const;
    /// The round button in the page's corner.
    void touchCornerOfPage() const;
    /// The last of the page's pale buttons; false when none is seen.
    bool touchLastButtonOfPage() const;
    /// With the keyboard: the last thing on the page that can be chosen.
    void chooseLastOfPage() const;

private:
    [[nodiscard]] QWidget* button(const char* name) const;
    [[nodiscard]] QWidget* page() const;

    const QWidget& ours_;
};

}  // namespace demo

#pragma once

#include <QColor>
#include <QString>

namespace demo {

/// The colours of the window.
struct Theme {
    bool isDark;
    QColor page;
    QColor sheet;
    QColor line;
    QColor text;
    QColor soft;
    QColor accent;
    QColor onAccent;
    QColor chip;
    QColor good;
    QColor warn;
    QColor bad;

    [[nodiscard]] static const Theme& light();
    [[nodiscard]] static const Theme& dark();
    /// The one that is applied.
    [[nodiscard]] static const Theme& current();

    /// To the whole application.
    void apply() const;
};

}  // namespace demo

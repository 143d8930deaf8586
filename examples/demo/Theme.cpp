#include "Theme.h"

#include <QApplication>
#include <QPalette>

namespace demo {

namespace {

const Theme* applied = nullptr;

constexpr const char* kStyle = R"(
    QWidget { color: %text; font-size: 14px; }
    QMainWindow, QScrollArea, #page { background: %page; border: none; }
    #sheet { background: %sheet; border: 1px solid %line; border-radius: 14px; }
    #title { font-size: 21px; font-weight: 700; }
    #heading { font-size: 15px; font-weight: 700; }
    #name { font-size: 15px; font-weight: 700; }
    #soft { color: %soft; font-size: 13px; }
    #glyph { background: %chip; color: %accent; border-radius: 11px; font-size: 19px; font-weight: 700; }
    QPushButton, QComboBox {
        background: %chip; border: 1px solid %chip; border-radius: 9px; padding: 6px 13px; min-height: 20px; }
    QPushButton:hover, QComboBox:hover { border-color: %soft; }
    QPushButton:focus, QComboBox:focus { border-color: %accent; }
    QPushButton:pressed { background: %line; }
    QPushButton:disabled { color: %soft; }
    QPushButton#first { background: %accent; color: %onAccent; border-color: %accent; font-weight: 600; }
    QPushButton#first:disabled { background: %chip; color: %soft; border-color: %chip; }
    QComboBox::drop-down { border: none; width: 24px; }
    QComboBox::down-arrow { width: 0; height: 0; border-left: 5px solid %chip; border-right: 5px solid %chip;
        border-top: 6px solid %soft; border-bottom: 0 solid %chip; margin-right: 10px; }
    QComboBox QAbstractItemView { background: %sheet; selection-background-color: %chip; selection-color: %text; }
    QCheckBox { spacing: 8px; }
    QCheckBox::indicator { width: 16px; height: 16px; border: 1px solid %soft; border-radius: 5px; background: %sheet; }
    QCheckBox::indicator:checked { background: %accent; border-color: %accent; }
    QListView { background: transparent; border: none; outline: none; }
    QScrollBar:vertical { background: transparent; width: 10px; }
    QScrollBar::handle:vertical { background: %line; border-radius: 5px; min-height: 30px; }
    QScrollBar::add-line, QScrollBar::sub-line { height: 0; }
    QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }
)";

QPalette paletteOf(const Theme& theme) {
    QPalette palette;
    palette.setColor(QPalette::Window, theme.page);
    palette.setColor(QPalette::Base, theme.sheet);
    palette.setColor(QPalette::Button, theme.chip);
    palette.setColor(QPalette::Highlight, theme.accent);
    palette.setColor(QPalette::HighlightedText, theme.onAccent);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(role, theme.text);
    return palette;
}

}  // namespace

const Theme& Theme::light() {
    static const Theme theme{false,     "#f6f5f1", "#ffffff", "#dedad0", "#1c2130", "#5f6577",
                             "#2b59c3", "#ffffff", "#efede6", "#1b7a43", "#9a5b00", "#b3261e"};
    return theme;
}

const Theme& Theme::dark() {
    static const Theme theme{true,      "#12151d", "#1a1f2b", "#343c4d", "#e8eaf0", "#9aa2b5",
                             "#8fb1ff", "#101828", "#262d3b", "#6fd39a", "#f0bd6a", "#ff9b91"};
    return theme;
}

const Theme& Theme::current() { return applied != nullptr ? *applied : light(); }

void Theme::apply() const {
    applied = this;
    QString style(kStyle);
    // The longer name first, of which the shorter one is a part.
    style.replace("%onAccent", onAccent.name());
    for (const auto& [name, colour] : {std::pair("%text", text),
                                       {"%page", page},
                                       {"%sheet", sheet},
                                       {"%line", line},
                                       {"%soft", soft},
                                       {"%accent", accent},
                                       {"%chip", chip}})
        style.replace(name, colour.name());
    QApplication::setPalette(paletteOf(*this));
    static_cast<QApplication*>(QCoreApplication::instance())->setStyleSheet(style);
}

}  // namespace demo

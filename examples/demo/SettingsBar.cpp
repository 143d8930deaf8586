#include "SettingsBar.h"

#include "CardGrid.h"

#include <utility>

#include <QCheckBox>
#include <QComboBox>

namespace demo {

using velmora::VLCacheType;
using velmora::VLOrientation;

namespace {

template <class Enumeration>
int number(Enumeration name) {
    return static_cast<int>(name);
}

}  // namespace

SettingsBar::SettingsBar(QWidget* parent)
    : QFrame(parent),
      fetched_(new QComboBox),
      orientation_(new QComboBox),
      backDisabled_(new QCheckBox("No exit button")),
      dialog_(new QCheckBox("Dialog on leaving")) {
    setObjectName("sheet");
    fetched_->addItem("Streamed", number(VLCacheType::streamed));
    fetched_->addItem("Cached", number(VLCacheType::cached));
    fetched_->setToolTip("Whether the video is played from its URL, or downloaded before the ad is offered");
    const std::pair<const char*, VLOrientation> orientations[]{
        {"Any orientation", VLOrientation::any},
        {"Portrait", VLOrientation::portrait},
        {"Portrait upside down", VLOrientation::portraitUpsideDown},
        {"Landscape left", VLOrientation::landscapeLeft},
        {"Landscape right", VLOrientation::landscapeRight},
    };
    for (const auto& [words, orientation] : orientations) orientation_->addItem(words, number(orientation));
    orientation_->setToolTip("Which orientations the ad allows; nothing is turned by the library");
    backDisabled_->setToolTip("The back-disabled option: a video has no exit button");
    dialog_->setToolTip("The dialog option: leaving a video before its end does not by itself end the show");

    auto* grid = new CardGrid(150, 10);
    grid->setContentsMargins(12, 10, 12, 10);
    for (QWidget* one : std::initializer_list<QWidget*>{fetched_, orientation_, backDisabled_, dialog_})
        grid->addWidget(one);
    setLayout(grid);
}

Settings SettingsBar::settings() const {
    return {.cacheType = static_cast<VLCacheType>(fetched_->currentData().toInt()),
            .orientation = static_cast<VLOrientation>(orientation_->currentData().toInt()),
            .backDisabled = backDisabled_->isChecked(),
            .dialog = dialog_->isChecked()};
}

}  // namespace demo

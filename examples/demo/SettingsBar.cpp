#include "SettingsBar.h"

#include "CardGrid.h"

#include <QCheckBox>
#include <QComboBox>

namespace demo {

SettingsBar::SettingsBar(QWidget* parent)
    : QFrame(parent),
      fetched_(new QComboBox),
      orientation_(new QComboBox),
      backDisabled_(new QCheckBox("No exit button")),
      dialog_(new QCheckBox("Dialog on leaving")) {
    setObjectName("sheet");
    fetched_->addItem("Streamed", 2);
    fetched_->addItem("Cached", 1);
    fetched_->setToolTip("Whether the video is played from its URL, or downloaded before the ad is offered");
    orientation_->addItem("Any orientation", 3);
    orientation_->addItem("Portrait", 1);
    orientation_->addItem("Portrait upside down", 5);
    orientation_->addItem("Landscape left", 2);
    orientation_->addItem("Landscape right", 4);
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
    return {.cacheType = fetched_->currentData().toInt(),
            .orientation = orientation_->currentData().toInt(),
            .backDisabled = backDisabled_->isChecked(),
            .dialog = dialog_->isChecked()};
}

}  // namespace demo

#pragma once

#include "AdDesk.h"

#include <QFrame>

class QCheckBox;
class QComboBox;

namespace demo {

/// The switches: how ads are fetched and shown.
class SettingsBar : public QFrame {
public:
    explicit SettingsBar(QWidget* parent = nullptr);

    [[nodiscard]] Settings settings() const;

private:
    QComboBox* fetched_;
    QComboBox* orientation_;
    QCheckBox* backDisabled_;
    QCheckBox* dialog_;
};

}  // namespace demo

#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace demo {

class DeviceFacts;

/// What the library finds out about this device, as a table that fills itself.
class DeviceView : public QWidget {
public:
    explicit DeviceView(DeviceFacts& facts, QWidget* parent = nullptr);

    void refresh();

private:
    DeviceFacts& facts_;
    QLabel* table_;
    QLabel* words_;
    QPushButton* again_;
};

}  // namespace demo

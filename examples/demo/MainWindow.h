#pragma once

#include "AdDesk.h"
#include "Arguments.h"

#include <QList>
#include <QMainWindow>

class QBoxLayout;
class QLabel;
class QPushButton;

namespace demo {

struct Theme;
class DeviceFacts;
class DeviceView;
class EventList;
class SettingsBar;
class StateView;
class VastView;
class ZoneCard;

/// The zones beside what happened and what the library keeps, and below them the device and VAST; on a narrow
/// screen all of it in one column.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    MainWindow(AdDesk& desk, DeviceFacts& facts, const Arguments& arguments);

    void wear(const Theme& theme);

    [[nodiscard]] VastView& vast() { return *vast_; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* makeHead();
    QWidget* makeZones();
    QWidget* makeNews();
    QWidget* makeBelow(DeviceFacts& facts);
    void arrange();

    AdDesk& desk_;
    SettingsBar* settings_;
    EventList* events_;
    StateView* state_;
    VastView* vast_;
    DeviceView* device_ = nullptr;
    QPushButton* theme_;
    QLabel* service_;
    const QString inspector_;
    QList<ZoneCard*> cards_;
    QBoxLayout* columns_ = nullptr;
    QBoxLayout* below_ = nullptr;
};

}  // namespace demo

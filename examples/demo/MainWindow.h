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
class EventList;
class SettingsBar;
class StateView;
class ZoneCard;

/// The zones beside what happened and what the library keeps; on a narrow screen above them.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    MainWindow(AdDesk& desk, const Arguments& arguments);

    void wear(const Theme& theme);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* makeHead();
    QWidget* makeZones();
    QWidget* makeNews();
    void arrange();

    AdDesk& desk_;
    SettingsBar* settings_;
    EventList* events_;
    StateView* state_;
    QPushButton* theme_;
    QLabel* service_;
    const QString inspector_;
    QList<ZoneCard*> cards_;
    QBoxLayout* columns_ = nullptr;
};

}  // namespace demo

#pragma once

#include "AdDesk.h"
#include "Zones.h"

#include <QFrame>

class QLabel;
class QPushButton;

namespace demo {

/// A test zone: what it shows, where it stands, and its two buttons.
class ZoneCard : public QFrame {
    Q_OBJECT

public:
    ZoneCard(const Zone& zone, const AdDesk& desk, QWidget* parent = nullptr);

    [[nodiscard]] QString zone() const;
    void refresh();

signals:
    void requestWanted(const QString& zone);
    void showWanted(const QString& zone);

private:
    const Zone& zone_;
    const AdDesk& desk_;
    QLabel* standing_;
    QPushButton* request_;
    QPushButton* show_;
};

}  // namespace demo

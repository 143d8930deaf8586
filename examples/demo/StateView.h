#pragma once

#include "RichLabel.h"
#include "StoredState.h"

#include <QTimer>

namespace demo {

/// What the library keeps, as it changes.
class StateView : public RichLabel {
public:
    explicit StateView(QString file, QWidget* parent = nullptr);

    void refresh();

private:
    const QString file_;
    QTimer often_;
};

}  // namespace demo

#pragma once

#include "Event.h"

#include <QListWidget>

namespace demo {

/// What happened, the newest first, with its time and its thread.
class EventList : public QListWidget {
public:
    explicit EventList(QWidget* parent = nullptr);

    void add(const Event& event);
};

}  // namespace demo

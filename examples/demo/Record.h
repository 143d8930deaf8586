#pragma once

#include "Event.h"
#include "Scenarios.h"

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

namespace demo {

struct Picture {
    QString file;
    QString words;
    qint64 time = 0;
};

/// How a scenario went.
struct Record {
    Scenario scenario;
    qint64 start = 0;
    qint64 end = 0;
    QString suggestionId = {};
    QList<Event> events = {};
    QList<Picture> pictures = {};
    /// The service's ledger of this time.
    QList<QJsonObject> received = {};
    /// What was not as planned, in words.
    QStringList wrong = {};
};

}  // namespace demo

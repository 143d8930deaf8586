#include "Event.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QStringList>
#include <QThread>

namespace demo {

Event eventNow(QString name, QString zone) {
    return {.name = std::move(name),
            .zone = std::move(zone),
            .onMainThread = QThread::currentThread() == QCoreApplication::instance()->thread(),
            .time = QDateTime::currentMSecsSinceEpoch()};
}

bool isCallback(const Event& event) { return event.name != "request" && event.name != "show"; }

QJsonObject toJson(const Event& event) {
    QJsonObject line{{"event", event.name},
                     {"zone", event.zone},
                     {"time", event.time},
                     {"thread", event.onMainThread ? "main" : "background"}};
    if (!event.suggestionId.isEmpty()) line["suggestionId"] = event.suggestionId;
    if (!event.detail.isEmpty()) line["detail"] = event.detail;
    if (event.completed) line["completed"] = *event.completed;
    return line;
}

QString describe(const Event& event) {
    QStringList words;
    words << (event.suggestionId.isEmpty() ? event.zone : event.suggestionId);
    if (event.completed) words << (*event.completed ? "completed" : "not completed");
    if (!event.detail.isEmpty()) words << event.detail;
    return words.join(", ");
}

QString clockText(qint64 time) { return QDateTime::fromMSecsSinceEpoch(time).toString("HH:mm:ss.zzz"); }

}  // namespace demo

#pragma once

#include <optional>

#include <QJsonObject>
#include <QString>

namespace demo {

/// One thing that was asked of the library, or that it told.
struct Event {
    /// "request" and "show" are ours; "adAvailable", "noAdAvailable", "error", "expiring" and
    /// "adShowFinished" are the library's callbacks.
    QString name;
    QString zone;
    QString suggestionId = {};
    QString detail = {};
    /// Of "adShowFinished" only.
    std::optional<bool> completed = {};
    bool onMainThread = true;
    /// Milliseconds since 1970.
    qint64 time = 0;
};

/// At this moment, and on the thread that calls.
[[nodiscard]] Event eventNow(QString name, QString zone);

[[nodiscard]] bool isCallback(const Event& event);

[[nodiscard]] QJsonObject toJson(const Event& event);

/// What a person reads behind the name.
[[nodiscard]] QString describe(const Event& event);

/// The time of day, to the millisecond.
[[nodiscard]] QString clockText(qint64 time);

}  // namespace demo

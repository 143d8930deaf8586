#include "StoredState.h"

#include <velmora/enumerations.h>

#include <QCoreApplication>
#include <QFileInfo>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>

namespace demo {

namespace {

/// The values in the file, by their keys. Another process reads them: two copies of SQLite in one process,
/// the library's and another, must not have one file open, or its locks go when either closes it.
class Reader {
public:
    explicit Reader(const QString& file) {
        QProcess reader;
        reader.start("sqlite3",
                     {"-readonly", "-json", file, "SELECT key, CAST(value AS TEXT) AS value FROM defaults"});
        if (!reader.waitForFinished()) return;
        for (const QJsonValue row : QJsonDocument::fromJson(reader.readAllStandardOutput()).array()) {
            // A bare string is JSON too, but no document.
            const QByteArray text = '[' + row["value"].toString().toUtf8() + ']';
            values_[row["key"].toString()] = QJsonDocument::fromJson(text).array().at(0);
        }
    }

    [[nodiscard]] QJsonValue value(const char* key) const { return values_.value(key); }

private:
    QHash<QString, QJsonValue> values_;
};

QList<QJsonObject> objects(const QJsonValue& list) {
    QList<QJsonObject> found;
    for (const auto element : list.toArray()) found.append(element.toObject());
    return found;
}

}  // namespace

StoredState StoredState::read(const QString& file) {
    if (!QFileInfo::exists(file)) return {};
    const Reader reader(file);
    StoredState state;
    state.user = reader.value("velmoraUserId").toString();
    for (const auto& one : objects(reader.value("finalstates")["states"]))
        state.finalStates.append({.suggestionId = one["suggestionId"].toString(),
                                  .state = one["state"].toInt(),
                                  .passedDuration = one["extraInfo"]["passedDuration"].toString()});
    for (const auto& one : objects(reader.value("cachedDoneAdSuggestions")["doneAdSuggestions"]))
        state.done.append({.suggestionId = one["suggestionId"].toString(),
                           .percentage = one["donePercentage"].toDouble(),
                           .seconds = one["doneSeconds"].toDouble()});
    for (const auto& one : objects(reader.value("cachedAds")["cachedVelmoraAds"]))
        state.ready.append(
            {.suggestionId = one["mAd"]["suggestionId"].toString(),
             .zone = one["zoneId"].toString(),
             .isCached = one["requestOptions"]["mCacheType"].toInt() == velmora::VLCacheType::cached,
             .since = static_cast<qint64>(one["cacheTime"].toDouble())});
    return state;
}

QString StoredState::usualFile() {
    const auto program = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + '/' + program +
           "/velmora/defaults.sqlite3";
}

}  // namespace demo

#include "StoredState.h"

#include <velmora/enumerations.h>

#include <memory>

#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <sqlite3.h>

namespace demo {

namespace {

struct Close {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

/// Looks only, so that whatever the library does with the file it does alone.
class Reader {
public:
    explicit Reader(const QString& file) {
        sqlite3* opened = nullptr;
        const int code = sqlite3_open_v2(file.toUtf8().constData(), &opened, SQLITE_OPEN_READONLY, nullptr);
        database_.reset(opened);
        if (code != SQLITE_OK) database_.reset();
        if (database_) sqlite3_busy_timeout(database_.get(), 50);
    }

    [[nodiscard]] QJsonValue value(const char* key) const {
        sqlite3_stmt* prepared = nullptr;
        if (!database_ || sqlite3_prepare_v2(database_.get(), "SELECT value FROM defaults WHERE key = ?", -1,
                                             &prepared, nullptr) != SQLITE_OK)
            return {};
        const std::unique_ptr<sqlite3_stmt, Close> statement(prepared);
        sqlite3_bind_text(prepared, 1, key, -1, SQLITE_STATIC);
        if (sqlite3_step(prepared) != SQLITE_ROW) return {};
        const auto* bytes = static_cast<const char*>(sqlite3_column_blob(prepared, 0));
        const QByteArray text(bytes, sqlite3_column_bytes(prepared, 0));
        // A bare string is JSON too, but no document.
        return QJsonDocument::fromJson('[' + text + ']').array().at(0);
    }

private:
    std::unique_ptr<sqlite3, Close> database_;
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

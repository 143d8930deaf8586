#include "platform/desktop/store/Database.h"

#include "platform/Log.h"
#include "platform/OneWait.h"

#include <optional>
#include <string>

namespace velmora::platform {

using sqlite::Code;

Database::Database(const std::filesystem::path& file) : path_(file), reading_(file), writing_(file) {}

bool Database::get(std::string_view key, const std::function<void(std::string_view value)>& take) {
    return read([&](const StoreFile::Opened& opened) {
        sqlite::bind(opened.get, 1, key);
        return sqlite::step(opened.get, [&] { take(sqlite::column(opened.get, 0)); });
    });
}

bool Database::has(std::string_view key) {
    bool found = false;
    read([&](const StoreFile::Opened& opened) {
        sqlite::bind(opened.has, 1, key);
        return sqlite::step(opened.has, [&] { found = true; });
    });
    return found;
}

void Database::set(std::string_view key, std::string_view value) {
    write([&](const StoreFile::Opened& opened) {
        sqlite::bind(opened.set, 1, key);
        sqlite::bind(opened.set, 2, value);
        return sqlite::step(opened.set);
    });
}

void Database::append(std::string_view key, std::string_view value, std::string_view path) {
    bool isAppended = false;
    const bool isDone = write([&](const StoreFile::Opened& opened) {
        sqlite::bind(opened.append, 1, key);
        sqlite::bind(opened.append, 2, value);
        sqlite::bind(opened.append, 3, path);
        const auto code = sqlite::step(opened.append);
        isAppended = sqlite3_changes(opened.connection.get()) > 0;
        return code;
    });
    if (isDone && !isAppended)
        log("The stored value of \"" + std::string(key) + "\" is damaged, and nothing is added to it");
}

void Database::remove(std::string_view key) {
    write([&](const StoreFile::Opened& opened) {
        sqlite::bind(opened.remove, 1, key);
        return sqlite::step(opened.remove);
    });
}

void Database::inOneTransaction(const std::function<void()>& changes) {
    if (transaction() != nullptr) return changes();
    const OneWait wait;
    const auto code = attempt(changes);
    if (code != SQLITE_OK) logFailure("written", code);
}

Code Database::attempt(const std::function<void()>& changes) {
    const SharedStoreFile::Turn turn(writing_, OneWait::end());
    if (!turn) return SQLITE_BUSY;
    const auto begin = [](const StoreFile::Opened& opened) {
        // SQLite refuses only the first change, and it is for `changes` to be made whole or not at all.
        return opened.forReadingOnly ? SQLITE_READONLY : sqlite::step(opened.begin);
    };
    auto code = turn->perform(OneWait::end(), begin);
    if (sqlite::isDamage(code)) code = turn->performMended(OneWait::end(), begin);
    if (code != SQLITE_OK) return code;

    Transaction transaction{*turn};
    transaction_ = &transaction;
    owner_ = std::this_thread::get_id();
    try {
        changes();
    } catch (...) {
        owner_ = std::thread::id();
        turn->rollBack(SQLITE_ABORT);
        throw;
    }
    owner_ = std::thread::id();

    code = transaction.failure;
    if (code == SQLITE_OK)
        code = turn->performOpen([](const StoreFile::Opened& opened) { return sqlite::step(opened.commit); });
    if (code != SQLITE_OK) turn->rollBack(code);
    return code;
}

Database::Transaction* Database::transaction() const {
    return owner_ == std::this_thread::get_id() ? transaction_ : nullptr;
}

Code Database::performAlone(SharedStoreFile& shared, const StoreFile::Operation& operation) {
    const auto end = OneWait::end();
    const SharedStoreFile::Turn turn(shared, end);
    if (!turn) return SQLITE_BUSY;
    const auto code = turn->perform(end, operation);
    if (!sqlite::isDamage(code)) return code;

    // In this order alone: whoever has the turn to write waits for no reader.
    std::optional<SharedStoreFile::Turn> writer;
    if (&shared == &reading_ && !writer.emplace(writing_, end)) return SQLITE_BUSY;
    return turn->performMended(end, operation);
}

bool Database::perform(SharedStoreFile& shared, std::string_view what,
                       const StoreFile::Operation& operation) {
    if (auto* const own = transaction()) {
        if (own->failure == SQLITE_OK) own->failure = own->file.performOpen(operation);
        return own->failure == SQLITE_OK;
    }
    const auto code = performAlone(shared, operation);
    if (code != SQLITE_OK) logFailure(what, code);
    return code == SQLITE_OK;
}

bool Database::read(const StoreFile::Operation& operation) { return perform(reading_, "read", operation); }

bool Database::write(const StoreFile::Operation& operation) {
    return perform(writing_, "written", operation);
}

void Database::logFailure(std::string_view what, Code code) const {
    log("The stored state cannot be " + std::string(what) + ": " + path_.string() + ": " +
        sqlite3_errstr(code));
}

}  // namespace velmora::platform

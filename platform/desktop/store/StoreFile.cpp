#include "platform/desktop/store/StoreFile.h"

#include "platform/Clock.h"
#include "platform/Log.h"
#include "platform/UrlText.h"

#include <algorithm>
#include <ctime>
#include <exception>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::platform {

namespace fs = std::filesystem;
using sqlite::Code;

namespace {

using Steady = std::chrono::steady_clock;

constexpr const char* kCreateTable =
    "CREATE TABLE IF NOT EXISTS defaults(key TEXT PRIMARY KEY NOT NULL, value TEXT NOT NULL)";

/// Nothing may be written there, or there is no room for what SQLite shares between processes; neither need
/// keep it from being read.
bool mayBeRead(Code code) {
    switch (code) {
    case SQLITE_IOERR_SHMOPEN:
    case SQLITE_IOERR_SHMSIZE:
    case SQLITE_IOERR_SHMMAP: return true;
    default: break;
    }
    switch (code & 0xff) {
    case SQLITE_CANTOPEN:
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_FULL: return true;
    default: return false;
    }
}

/// SQLite's own handler counts the waits that it asked for, not those that it got: on a busy machine it waits
/// far longer.
int waitAgain(void* end, int tries) {
    const auto left = *static_cast<const Steady::time_point*>(end) - Steady::now();
    if (left <= Steady::duration::zero()) return 0;
    const Steady::duration pause = std::chrono::milliseconds(std::min(tries + 1, 10));
    std::this_thread::sleep_for(std::min(pause, left));
    return 1;
}

/// Keeps other processes from opening or repairing the same file, for a scope. Goes on without the lock when
/// it cannot be had in time: it orders rare events, SQLite's own locks guard the data.
class OpeningLock {
public:
    OpeningLock(const fs::path& file, Steady::time_point end)
        : descriptor_(::open((file.string() + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
        while (descriptor_ >= 0 && ::flock(descriptor_, LOCK_EX | LOCK_NB) != 0 && Steady::now() < end) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    ~OpeningLock() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    OpeningLock(const OpeningLock&) = delete;
    OpeningLock& operator=(const OpeningLock&) = delete;

private:
    int descriptor_;
};

/// Makes the folder and an empty file that only the owner may read; SQLite's own default would let others.
void makePrivate(const fs::path& file) {
    std::error_code error;
    if (fs::create_directories(file.parent_path(), error)) {
        fs::permissions(file.parent_path(), fs::perms::owner_all, error);
    }
    // Only a file that was made here may be closed: closing a descriptor of one that SQLite has open drops
    // its locks.
    const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor >= 0) {
        ::close(descriptor);
    } else if (struct stat status{}; ::lstat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
        ::chmod(file.c_str(), 0600);
    }
}

/// Whether there are changes beside the file that are not in it yet.
bool hasJournal(const fs::path& file) {
    std::error_code error;
    const auto size = fs::file_size(file.string() + "-wal", error);
    return !error && size > 0;
}

/// `<file>.damaged-<time>`, with a number when that is taken.
fs::path nameAside(const fs::path& file) {
    const auto now = std::chrono::system_clock::to_time_t(platform::Clock::current()->now());
    std::tm utc{};
    gmtime_r(&now, &utc);
    std::string time(32, '\0');
    time.resize(std::strftime(time.data(), time.size(), "%Y%m%dT%H%M%SZ", &utc));

    const auto base = file.string() + ".damaged-" + time;
    std::error_code error;
    auto name = base;
    for (int number = 2; fs::exists(name, error); ++number) name = base + "-" + std::to_string(number);
    return name;
}

/// Copies what can be read: rows from the front until one fails, then from the back.
int salvage(const sqlite::Connection& from, const sqlite::Connection& into) {
    sqlite::Statement target;
    if (sqlite::prepare(into, "INSERT OR IGNORE INTO defaults(key, value) VALUES(?1, ?2)", target) !=
        SQLITE_OK) {
        return 0;
    }
    int copied = 0;
    for (const char* order : {"SELECT key, value FROM defaults ORDER BY rowid ASC",
                              "SELECT key, value FROM defaults ORDER BY rowid DESC"}) {
        sqlite::Statement source;
        if (sqlite::prepare(from, order, source) != SQLITE_OK) continue;
        while (sqlite3_step(source.get()) == SQLITE_ROW) {
            sqlite::bind(target, 1, sqlite::column(source, 0));
            sqlite::bind(target, 2, sqlite::column(source, 1));
            if (sqlite::step(target) == SQLITE_OK) copied += sqlite3_changes(into.get());
        }
    }
    return copied;
}

}  // namespace

StoreFile::StoreFile(fs::path path) : path_(std::move(path)) {}

Code StoreFile::perform(Time end, const Operation& operation) {
    return attempt(end, &StoreFile::ensureOpen, operation);
}

Code StoreFile::performMended(Time end, const Operation& operation) {
    return attempt(end, &StoreFile::repair, operation);
}

Code StoreFile::attempt(Time end, Code (StoreFile::*prepare)(), const Operation& operation) {
    end_ = end;
    auto code = SQLITE_NOMEM;
    try {
        code = (this->*prepare)();
        if (code == SQLITE_OK) code = operation(*opened_);
    } catch (const std::exception&) {
        // Only memory can run out on the way.
        code = SQLITE_NOMEM;
    }
    // What kept it from being written may have passed by the next call.
    if (opened_ && opened_->forReadingOnly) opened_.reset();
    return code;
}

Code StoreFile::performOpen(const Operation& operation) {
    try {
        return opened_ ? operation(*opened_) : SQLITE_ABORT;
    } catch (const std::exception&) {
        return SQLITE_NOMEM;
    }
}

void StoreFile::rollBack(Code reason) {
    // Some failures have ended the transaction already.
    if (opened_ && sqlite3_get_autocommit(opened_->connection.get()) == 0)
        static_cast<void>(sqlite::run(opened_->connection, "ROLLBACK"));
    if (!sqlite::isDamage(reason)) return;
    try {
        static_cast<void>(repair());
    } catch (const std::exception&) {
        // The next operation finds the damage again.
        opened_.reset();
    }
}

Code StoreFile::ensureOpen() {
    if (opened_ && identity() == tried_) return SQLITE_OK;
    opened_.reset();
    makePrivate(path_);
    const OpeningLock lock(path_, end_);
    return open();
}

Code StoreFile::repair() {
    opened_.reset();
    const OpeningLock lock(path_, end_);
    if (identity() != tried_) return open();  // Another process has done it.

    const auto aside = nameAside(path_);
    std::error_code error;
    fs::rename(path_, aside, error);
    if (error) {
        log("A damaged file cannot be moved aside: " + path_.string() + ": " + error.message());
        return SQLITE_CORRUPT;
    }
    for (const char* suffix : {"-wal", "-shm"})
        fs::rename(path_.string() + suffix, aside.string() + suffix, error);

    makePrivate(path_);
    const auto code = open();
    if (code == SQLITE_OK) carryOver(aside);
    return code;
}

void StoreFile::carryOver(const fs::path& damaged) {
    sqlite::Connection source;
    int copied = 0;
    if (sqlite::open(damaged.string(), SQLITE_OPEN_READWRITE, source) == SQLITE_OK) {
        sqlite3_busy_handler(source.get(), waitAgain, &end_);
        copied = salvage(source, opened_->connection);
    }
    log("The stored state was damaged: " + path_.string() + " was moved to " + damaged.filename().string() +
        ", and " + std::to_string(copied) + " values of it were carried over");
}

Code StoreFile::open() {
    tried_ = identity();
    Opened opened;
    auto code = connect(path_.string(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, opened);
    if (mayBeRead(code)) {
        const auto uri = "file:" + percentEncoded(path_.string(), UrlCharacters::hostAllowed);
        const int flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_URI;
        if (connect(uri + "?mode=ro", flags, opened) == SQLITE_OK) {
            code = SQLITE_OK;
        } else if (!hasJournal(path_) && connect(uri + "?immutable=1", flags, opened) == SQLITE_OK) {
            // Read as it lies, the file alone would show values that its journal has replaced.
            code = SQLITE_OK;
        }
    }
    if (code != SQLITE_OK) return code;

    // SQLite may have made do with it where it was asked for more.
    opened.forReadingOnly = sqlite3_db_readonly(opened.connection.get(), "main") == 1;
    opened_ = std::move(opened);
    tried_ = identity();
    return SQLITE_OK;
}

Code StoreFile::connect(const std::string& name, int flags, Opened& opened) {
    opened = Opened();
    auto code = sqlite::open(name, flags, opened.connection);
    if (code != SQLITE_OK) return code;

    const auto& connection = opened.connection;
    sqlite3_busy_handler(connection.get(), waitAgain, &end_);
    if ((flags & SQLITE_OPEN_READWRITE) != 0) {
        code = sqlite::run(connection, "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL");
        if (code == SQLITE_OK) code = sqlite::run(connection, kCreateTable);
    }
    const auto add = [&](const char* sql, sqlite::Statement& statement) {
        if (code == SQLITE_OK) code = sqlite::prepare(connection, sql, statement);
    };
    add("SELECT value FROM defaults WHERE key = ?1", opened.get);
    add("SELECT 1 FROM defaults WHERE key = ?1", opened.has);
    add("REPLACE INTO defaults(key, value) VALUES(?1, ?2)", opened.set);
    // The type is asked only of JSON; of anything else it would be an error of the statement.
    add("INSERT INTO defaults(key, value) VALUES(?1, ?2) ON CONFLICT(key) DO UPDATE "
        "SET value = json_insert(value, ?3 || '[#]', json_extract(excluded.value, ?3 || '[0]')) "
        "WHERE CASE WHEN json_valid(value) THEN json_type(value, ?3) = 'array' END",
        opened.append);
    add("DELETE FROM defaults WHERE key = ?1", opened.remove);
    add("BEGIN IMMEDIATE", opened.begin);
    add("COMMIT", opened.commit);
    return code;
}

StoreFile::Identity StoreFile::identity() const {
    struct stat status {};
    if (::stat(path_.c_str(), &status) != 0) return {};
    return {status.st_dev, status.st_ino};
}

}  // namespace velmora::platform

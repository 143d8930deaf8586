#include "platform/desktop/Database.h"

#include "platform/CallOut.h"
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

bool isDamage(Code code) {
    switch (code & 0xff) {
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
    case SQLITE_FORMAT:
    // The table is not the one that was made here.
    case SQLITE_ERROR:
    case SQLITE_SCHEMA: return true;
    default: return false;
    }
}

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

int leftUntil(Steady::time_point end) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Steady::now());
    return static_cast<int>(std::max<std::chrono::milliseconds::rep>(left.count(), 0));
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

class VELMORA_THREAD_ANNOTATION(scoped_lockable) Database::Turn {
public:
    explicit Turn(Database& database) VELMORA_THREAD_ANNOTATION(acquire_capability(database.mutex_))
        : database_(database) {
        database_.mutex_.lock();
        while (database_.owner_ && database_.owner_ != std::this_thread::get_id())
            database_.committed_.wait(database_.mutex_);
    }

    ~Turn() VELMORA_THREAD_ANNOTATION(release_capability()) { database_.mutex_.unlock(); }

    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

private:
    Database& database_;
};

Database::Database(fs::path file) : file_(std::move(file)) {}

void Database::begin() {
    const Turn turn(*this);
    owner_ = std::this_thread::get_id();
    // What fails here is told by the writes, each for itself then.
    try {
        const auto end = Steady::now() + kLongestWait;
        if (ensureOpen(end) != SQLITE_OK) return;
        sqlite3_busy_timeout(opened_->connection.get(), leftUntil(end));
        hasBegun_ = sqlite::step(opened_->begin) == SQLITE_OK;
    } catch (const std::exception&) {
        hasBegun_ = false;
    }
}

void Database::commit() {
    const Turn turn(*this);
    owner_.reset();
    committed_.notify_all();
    if (!std::exchange(hasBegun_, false)) return;
    // A file that was damaged or replaced meanwhile has taken the transaction with it.
    const bool isOpen = opened_ && sqlite3_get_autocommit(opened_->connection.get()) == 0;
    const auto code = isOpen ? sqlite::step(opened_->commit) : SQLITE_ABORT;
    if (code == SQLITE_OK) return;
    callOut("the store", [&] {
        log("The stored state cannot be written: " + file_.string() + ": " + sqlite3_errstr(code));
    });
    if (isOpen) static_cast<void>(sqlite::run(opened_->connection, "ROLLBACK"));
}

bool Database::get(std::string_view key, const std::function<void(std::string_view value)>& take) {
    const Turn turn(*this);
    return perform("read", [&](const Opened& opened) {
        sqlite::bind(opened.get, 1, key);
        return sqlite::step(opened.get, [&] { take(sqlite::column(opened.get, 0)); });
    });
}

bool Database::has(std::string_view key) {
    const Turn turn(*this);
    bool found = false;
    perform("read", [&](const Opened& opened) {
        sqlite::bind(opened.has, 1, key);
        return sqlite::step(opened.has, [&] { found = true; });
    });
    return found;
}

void Database::set(std::string_view key, std::string_view value) {
    const Turn turn(*this);
    perform("written", [&](const Opened& opened) {
        sqlite::bind(opened.set, 1, key);
        sqlite::bind(opened.set, 2, value);
        return sqlite::step(opened.set);
    });
}

void Database::remove(std::string_view key) {
    const Turn turn(*this);
    perform("written", [&](const Opened& opened) {
        sqlite::bind(opened.remove, 1, key);
        return sqlite::step(opened.remove);
    });
}

template <class Operation>
bool Database::perform(std::string_view what, Operation operation) {
    const auto end = Steady::now() + kLongestWait;
    const auto attempt = [&](Code (Database::*prepare)(Time)) VELMORA_REQUIRES(mutex_) {
        try {
            const auto code = (this->*prepare)(end);
            if (code != SQLITE_OK) return code;
            sqlite3_busy_timeout(opened_->connection.get(), leftUntil(end));
            return operation(*opened_);
        } catch (const std::exception&) {
            // Only memory can run out on the way.
            return SQLITE_NOMEM;
        }
    };
    auto code = attempt(&Database::ensureOpen);
    if (isDamage(code)) code = attempt(&Database::repair);
    // What kept it from being written may have passed by the next call.
    if (opened_ && opened_->forReadingOnly) opened_.reset();
    if (code == SQLITE_OK) return true;
    log("The stored state cannot be " + std::string(what) + ": " + file_.string() + ": " +
        sqlite3_errstr(code));
    return false;
}

Code Database::ensureOpen(Time end) {
    if (opened_ && identity() == tried_) return SQLITE_OK;
    opened_.reset();
    makePrivate(file_);
    const OpeningLock lock(file_, end);
    return open(end);
}

Code Database::repair(Time end) {
    opened_.reset();
    const OpeningLock lock(file_, end);
    if (identity() != tried_) return open(end);  // Another process has done it.

    const auto aside = nameAside(file_);
    std::error_code error;
    fs::rename(file_, aside, error);
    if (error) {
        log("A damaged file cannot be moved aside: " + file_.string() + ": " + error.message());
        return SQLITE_CORRUPT;
    }
    for (const char* suffix : {"-wal", "-shm"})
        fs::rename(file_.string() + suffix, aside.string() + suffix, error);

    makePrivate(file_);
    const auto code = open(end);
    if (code == SQLITE_OK) carryOver(aside, end);
    return code;
}

void Database::carryOver(const fs::path& damaged, Time end) {
    sqlite::Connection source;
    int copied = 0;
    if (sqlite::open(damaged.string(), SQLITE_OPEN_READWRITE, source) == SQLITE_OK) {
        sqlite3_busy_timeout(source.get(), leftUntil(end));
        copied = salvage(source, opened_->connection);
    }
    log("The stored state was damaged: " + file_.string() + " was moved to " + damaged.filename().string() +
        ", and " + std::to_string(copied) + " values of it were carried over");
}

Code Database::open(Time end) {
    tried_ = identity();
    Opened opened;
    auto code = connect(file_.string(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, end, opened);
    if (mayBeRead(code)) {
        const auto uri = "file:" + percentEncoded(file_.string(), UrlCharacters::hostAllowed);
        const int flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_URI;
        if (connect(uri + "?mode=ro", flags, end, opened) == SQLITE_OK) {
            code = SQLITE_OK;
        } else if (!hasJournal(file_) && connect(uri + "?immutable=1", flags, end, opened) == SQLITE_OK) {
            // Read as it lies, the file alone would show values that its journal has replaced.
            code = SQLITE_OK;
        }
        opened.forReadingOnly = true;
    }
    if (code != SQLITE_OK) return code;

    opened_ = std::move(opened);
    tried_ = identity();
    return SQLITE_OK;
}

Code Database::connect(const std::string& name, int flags, Time end, Opened& opened) {
    opened = Opened();
    auto code = sqlite::open(name, flags, opened.connection);
    if (code != SQLITE_OK) return code;

    const auto& connection = opened.connection;
    sqlite3_busy_timeout(connection.get(), leftUntil(end));
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
    add("DELETE FROM defaults WHERE key = ?1", opened.remove);
    add("BEGIN IMMEDIATE", opened.begin);
    add("COMMIT", opened.commit);
    return code;
}

Database::Identity Database::identity() const {
    struct stat status {};
    if (::stat(file_.c_str(), &status) != 0) return {};
    return {status.st_dev, status.st_ino};
}

}  // namespace velmora::platform

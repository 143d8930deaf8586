#pragma once

#include "platform/Mutex.h"
#include "platform/desktop/Sqlite.h"

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace velmora::platform {

/// One SQLite file with a row a key, opened at first use and kept open.
///
/// Every call is one statement, and waits for other processes at most `kLongestWait` in all. A file that
/// turns out damaged is moved aside, what can be read of it is copied into a new one, and the call is tried
/// once more. A file that was moved or deleted by others is opened anew; one that may only be read is opened
/// for each call. Any thread; nothing throws, and every call that fails is a log line.
class Database {
public:
    explicit Database(std::filesystem::path file);

    /// Calls `take` with the value, which is gone when it returns; not when the key is missing or the file
    /// cannot be read, for which the answer is false. `take` runs under the lock of this object.
    bool get(std::string_view key, const std::function<void(std::string_view value)>& take);
    [[nodiscard]] bool has(std::string_view key);
    void set(std::string_view key, std::string_view value);
    void remove(std::string_view key);

    /// From here to `commit` the writes of this thread are one: the file gets them at once. Other threads
    /// wait for the end. Where no transaction can begin, each write stands for itself. They do not nest.
    void begin();
    void commit();

    static constexpr std::chrono::milliseconds kLongestWait{250};

private:
    using Time = std::chrono::steady_clock::time_point;

    /// Which file a path named, to notice when it names another one.
    struct Identity {
        unsigned long long device = 0;
        unsigned long long number = 0;
        bool operator==(const Identity&) const = default;
    };

    /// The statements go before their connection.
    struct Opened {
        sqlite::Connection connection;
        sqlite::Statement get;
        sqlite::Statement has;
        sqlite::Statement set;
        sqlite::Statement remove;
        sqlite::Statement begin;
        sqlite::Statement commit;
        bool forReadingOnly = false;
    };

    /// Holds the mutex, once no other thread has a transaction open.
    class Turn;

    /// Runs one of the statements on the open file; `what` says in the past tense what was asked for. False
    /// when it failed.
    template <class Operation>
    bool perform(std::string_view what, Operation operation) VELMORA_REQUIRES(mutex_);
    [[nodiscard]] sqlite::Code ensureOpen(Time end) VELMORA_REQUIRES(mutex_);
    [[nodiscard]] sqlite::Code repair(Time end) VELMORA_REQUIRES(mutex_);
    [[nodiscard]] sqlite::Code open(Time end) VELMORA_REQUIRES(mutex_);
    void carryOver(const std::filesystem::path& damaged, Time end) VELMORA_REQUIRES(mutex_);
    [[nodiscard]] static sqlite::Code connect(const std::string& name, int flags, Time end, Opened& opened);
    [[nodiscard]] Identity identity() const;

    const std::filesystem::path file_;
    Mutex mutex_;
    std::condition_variable_any committed_;
    /// Who has a transaction open.
    std::optional<std::thread::id> owner_ VELMORA_GUARDED_BY(mutex_);
    bool hasBegun_ VELMORA_GUARDED_BY(mutex_) = false;
    std::optional<Opened> opened_ VELMORA_GUARDED_BY(mutex_);
    /// The file that was opened last, or was tried.
    Identity tried_ VELMORA_GUARDED_BY(mutex_);
};

}  // namespace velmora::platform

#pragma once

#include "platform/desktop/store/SharedStoreFile.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <string_view>
#include <thread>

namespace velmora::platform {

/// A SQLite file with a row a key, for all threads: one connection that reads and one that writes, so that no
/// reader waits for a transaction of another thread.
///
/// A call waits for other threads and processes until `OneWait::end()`. Nothing throws, and every call that
/// fails is a log line.
class Database {
public:
    explicit Database(const std::filesystem::path& file);

    /// Calls `take` with the value, which is gone when it returns; not when the key is missing or the file
    /// cannot be read, for which the answer is false. `take` must not use this object.
    bool get(std::string_view key, const std::function<void(std::string_view value)>& take);
    [[nodiscard]] bool has(std::string_view key);
    void set(std::string_view key, std::string_view value);
    /// Sets a missing key. A present value that is JSON and has an array at `path` gets the first element of
    /// that of `value` at its end; every other value stays as it is, which is a log line.
    void append(std::string_view key, std::string_view value, std::string_view path);
    void remove(std::string_view key);

    /// Makes one of what `changes` reads and writes on this thread: the file gets all of it or nothing. Where
    /// no transaction can begin in time, `changes` is not called. A transaction inside another is part of it;
    /// what `changes` throws ends it without a change.
    void inOneTransaction(const std::function<void()>& changes);

private:
    /// What the thread that has the turn to write is about.
    struct Transaction {
        StoreFile& file;
        /// The first operation of it that failed; what follows is not tried.
        sqlite::Code failure = SQLITE_OK;
    };

    /// That of this thread; null when it has none.
    [[nodiscard]] Transaction* transaction() const;
    [[nodiscard]] sqlite::Code attempt(const std::function<void()>& changes);
    bool read(const StoreFile::Operation& operation);
    bool write(const StoreFile::Operation& operation);
    [[nodiscard]] sqlite::Code performAlone(SharedStoreFile& shared, const StoreFile::Operation& operation);
    bool perform(SharedStoreFile& shared, std::string_view what, const StoreFile::Operation& operation);
    void logFailure(std::string_view what, sqlite::Code code) const;

    const std::filesystem::path path_;
    SharedStoreFile reading_;
    SharedStoreFile writing_;
    /// Whose transaction `transaction_` is; only that thread may look at it.
    std::atomic<std::thread::id> owner_;
    Transaction* transaction_ = nullptr;
};

}  // namespace velmora::platform

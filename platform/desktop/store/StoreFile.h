#pragma once

#include "platform/desktop/store/Sqlite.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace velmora::platform {

/// One connection to the SQLite file of a store, which has a row a key; opened at first use and kept open.
///
/// A file that turns out damaged is moved aside, and what can be read of it is copied into a new one. A file
/// that was moved or deleted by others is opened anew; one that may only be read is opened for each
/// operation. Not safe to use from two threads at once; nothing throws.
///
/// What another process commits to a damaged file while it is moved aside stays in that.
class StoreFile {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// The statements, and the connection that they go before.
    struct Opened {
        sqlite::Connection connection;
        sqlite::Statement get;
        sqlite::Statement has;
        sqlite::Statement set;
        sqlite::Statement append;
        sqlite::Statement remove;
        sqlite::Statement begin;
        sqlite::Statement commit;
        bool forReadingOnly = false;
    };
    using Operation = std::function<sqlite::Code(const Opened& opened)>;

    explicit StoreFile(std::filesystem::path path);

    /// Runs `operation` on the open file, and gives its result. Waits for other processes until `end`.
    [[nodiscard]] sqlite::Code perform(Time end, const Operation& operation);

    /// The same once more, on the file as it is after a repair. No other thread may have a transaction open
    /// on it: that would be committed to the file that is moved aside.
    [[nodiscard]] sqlite::Code performMended(Time end, const Operation& operation);

    /// The same for a file that has a transaction open, which neither damage nor a change of the file may
    /// take from under it.
    [[nodiscard]] sqlite::Code performOpen(const Operation& operation);

    /// Ends a transaction without its changes, and mends the file when damage is the reason.
    void rollBack(sqlite::Code reason);

private:
    /// Which file a path named, to notice when it names another one.
    struct Identity {
        unsigned long long device = 0;
        unsigned long long number = 0;
        bool operator==(const Identity&) const = default;
    };

    [[nodiscard]] sqlite::Code attempt(Time end, sqlite::Code (StoreFile::*prepare)(),
                                       const Operation& operation);
    [[nodiscard]] sqlite::Code ensureOpen();
    [[nodiscard]] sqlite::Code repair();
    [[nodiscard]] sqlite::Code open();
    [[nodiscard]] sqlite::Code connect(const std::string& name, int flags, Opened& opened);
    void carryOver(const std::filesystem::path& damaged);
    [[nodiscard]] Identity identity() const;

    const std::filesystem::path path_;
    /// When the operation that runs has to stop waiting.
    Time end_;
    std::optional<Opened> opened_;
    /// The file that was opened last, or was tried.
    Identity tried_;
};

}  // namespace velmora::platform

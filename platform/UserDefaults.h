#pragma once

#include "platform/Value.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace velmora::platform {

class Database;

/// A persistent map from key to value, one file for each application. Safe to use from any thread, and from
/// several processes at once. No value is kept in memory.
///
/// A `set` or `remove` that has returned survives the end of the process, however it ends; the last ones
/// before a loss of power may be lost, never torn. Nothing throws: what cannot be written leaves the old
/// value and a log line, what cannot be read is absent. A damaged file is moved aside under a name of its
/// own, never deleted, and what can be read of it is carried over. A call waits at most 250 ms, for other
/// threads and processes together, and those within an `OneWait` together; nobody waits to read what another
/// thread is writing.
class UserDefaults {
public:
    /// The application's own. Lives as long as the process.
    [[nodiscard]] static UserDefaults& standard();

    explicit UserDefaults(std::filesystem::path file);
    ~UserDefaults();
    UserDefaults(const UserDefaults&) = delete;
    UserDefaults& operator=(const UserDefaults&) = delete;

    /// The value; absent when the key is missing or holds what is not a value.
    [[nodiscard]] std::optional<Value> objectForKey(std::string_view key);

    /// The same, and whether the key is missing: what cannot be read, or is no value, is neither present nor
    /// missing, and must not be written over by what is made of it.
    struct Stored {
        std::optional<Value> value;
        bool isMissing = false;
    };
    [[nodiscard]] Stored lookUp(std::string_view key);

    /// The text; absent for every other kind.
    [[nodiscard]] std::optional<std::string> stringForKey(std::string_view key);

    /// A number other than 0, or one of the texts "YES", "true" and "1"; false for all else and for a missing
    /// key.
    [[nodiscard]] bool boolForKey(std::string_view key);

    [[nodiscard]] bool hasKey(std::string_view key);

    void setObject(const Value& value, std::string_view forKey);
    /// The same for a value that is JSON text already, as `JsonWriter` makes it; absent text cannot be
    /// written.
    void setJson(const std::optional<std::string>& json, std::string_view forKey);
    void setBool(bool value, std::string_view forKey);
    void removeObjectForKey(std::string_view key);

    /// Adds what a list of one element has to the stored list, without reading the others. `dictionary` is
    /// JSON text of a dictionary with this array under `list`, and is stored as it is when the key is
    /// missing. A stored value that has no such array stays as it is, which is a log line.
    void appendToList(std::string_view list, const std::optional<std::string>& dictionary,
                      std::string_view forKey);

    /// Makes one of what `changes` reads and writes here, on this thread: the file gets all of it at once, or
    /// none of it when something fails or the process ends in between. Where no transaction can begin,
    /// `changes` is not called. Other threads and processes wait with their writes until the end: to ask the
    /// disk for a file and to write a line of the log is the slowest that belongs in there. A transaction
    /// inside another is part of it; what `changes` throws ends it without a change.
    void inOneTransaction(const std::function<void()>& changes);

private:
    std::unique_ptr<Database> database_;
};

}  // namespace velmora::platform

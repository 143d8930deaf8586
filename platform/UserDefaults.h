#pragma once

#include "platform/Value.h"

#include <filesystem>
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
/// own, never deleted, and what can be read of it is carried over. A call waits at most 250 ms for another
/// process.
class UserDefaults {
public:
    /// The application's own. Lives as long as the process.
    [[nodiscard]] static UserDefaults& standard();

    explicit UserDefaults(std::filesystem::path file);
    ~UserDefaults();
    UserDefaults(const UserDefaults&) = delete;
    UserDefaults& operator=(const UserDefaults&) = delete;

    /// The value; absent when the key is missing or holds what is not a value. It lives in `storage`.
    [[nodiscard]] std::optional<Value> objectForKey(std::string_view key, Storage storage = {});

    /// The same, with whether the file could be read at all: what is to be changed and written back must not
    /// be taken for missing then.
    struct Stored {
        std::optional<Value> value;
        bool wasRead = false;
    };
    [[nodiscard]] Stored lookUp(std::string_view key, Storage storage = {});

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

    /// Makes one of the writes of this thread, from construction to destruction: the file gets all of them at
    /// once, or none when the process ends in between. The calls of other threads wait for the end, so that
    /// nothing slow and nothing foreign belongs in there, nor another batch.
    class Batch {
    public:
        explicit Batch(UserDefaults& defaults);
        ~Batch();
        Batch(const Batch&) = delete;
        Batch& operator=(const Batch&) = delete;

    private:
        Database& database_;
    };

private:
    std::unique_ptr<Database> database_;
};

}  // namespace velmora::platform

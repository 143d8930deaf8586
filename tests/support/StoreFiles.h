#pragma once

#include "platform/OneWait.h"
#include "platform/UserDefaults.h"

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace velmora::test {

/// Another program that has the same file open.
class Stranger {
public:
    explicit Stranger(const std::filesystem::path& file) {
        EXPECT_EQ(sqlite3_open(file.c_str(), &connection_), SQLITE_OK);
        sqlite3_busy_timeout(connection_, 10'000);
    }

    ~Stranger() { sqlite3_close(connection_); }

    Stranger(const Stranger&) = delete;
    Stranger& operator=(const Stranger&) = delete;

    void run(const std::string& sql) {
        EXPECT_EQ(sqlite3_exec(connection_, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sql << ": " << sqlite3_errmsg(connection_);
    }

    /// The first column of what it reads.
    std::vector<std::string> rows(const std::string& query) {
        std::vector<std::string> found;
        const auto add = [](void* rows, int, char** columns, char**) {
            static_cast<std::vector<std::string>*>(rows)->emplace_back(columns[0] != nullptr ? columns[0]
                                                                                             : "");
            return 0;
        };
        EXPECT_EQ(sqlite3_exec(connection_, query.c_str(), add, &found, nullptr), SQLITE_OK)
            << query << ": " << sqlite3_errmsg(connection_);
        return found;
    }

    /// The value of a key, as it is stored.
    std::optional<std::string> valueOf(const std::string& key) {
        const auto found = rows("SELECT value FROM defaults WHERE key = '" + key + "'");
        return found.empty() ? std::nullopt : std::optional(found.front());
    }

private:
    sqlite3* connection_ = nullptr;
};

/// How long SQLite alone waits in vain for a lock that others keep, where it may wait as long as one call: on
/// a busy machine both take longer.
inline std::chrono::nanoseconds bareWait(const std::filesystem::path& file) {
    sqlite3* connection = nullptr;
    EXPECT_EQ(sqlite3_open(file.c_str(), &connection), SQLITE_OK);
    sqlite3_busy_timeout(connection, static_cast<int>(platform::OneWait::kLongest.count()));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(sqlite3_exec(connection, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_BUSY);
    const auto took = std::chrono::steady_clock::now() - start;
    sqlite3_close(connection);
    return took;
}

/// The files that were moved aside, without their journals.
inline std::vector<std::filesystem::path> movedAside(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> found;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const auto name = entry.path().filename().string();
        if (name.find(".damaged-") != std::string::npos && !name.ends_with("-wal") && !name.ends_with("-shm"))
            found.push_back(entry.path());
    }
    return found;
}

/// An index as text of equal length, so that keys sort by it.
inline std::string numbered(int index) { return "key" + std::to_string(1000 + index); }

/// A file with this many values of 1000 bytes, all of them in the file proper, none in its journal.
inline void fill(const std::filesystem::path& file, int count) {
    platform::UserDefaults defaults(file);
    for (int i = 0; i < count; ++i) defaults.setObject(platform::Value(std::string(1000, 'v')), numbered(i));
    Stranger(file).run("PRAGMA wal_checkpoint(TRUNCATE)");
}

}  // namespace velmora::test

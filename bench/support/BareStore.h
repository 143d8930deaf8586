#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include <boost/json.hpp>
#include <sqlite3.h>

namespace velmora::bench {

/// SQLite as anyone would use it who wants the same safety.
class BareStore {
public:
    explicit BareStore(const std::filesystem::path& file) {
        sqlite3_open_v2(file.c_str(), &database_,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
        sqlite3_busy_timeout(database_, 250);
        sqlite3_exec(
            database_,
            "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL;"
            "CREATE TABLE IF NOT EXISTS defaults(key TEXT PRIMARY KEY NOT NULL, value TEXT NOT NULL)",
            nullptr, nullptr, nullptr);
        sqlite3_prepare_v2(database_, "SELECT value FROM defaults WHERE key = ?1", -1, &get_, nullptr);
        sqlite3_prepare_v2(database_, "REPLACE INTO defaults(key, value) VALUES(?1, ?2)", -1, &set_, nullptr);
        sqlite3_prepare_v2(database_,
                           "UPDATE defaults SET value = json_insert(value, ?3, json(?2)) WHERE key = ?1", -1,
                           &append_, nullptr);
    }

    ~BareStore() {
        sqlite3_finalize(get_);
        sqlite3_finalize(set_);
        sqlite3_finalize(append_);
        sqlite3_close(database_);
    }

    BareStore(const BareStore&) = delete;
    BareStore& operator=(const BareStore&) = delete;

    boost::json::value get(std::string_view key = kKey) {
        bind(get_, 1, key);
        sqlite3_step(get_);
        const auto* text = static_cast<const char*>(sqlite3_column_blob(get_, 0));
        auto value = boost::json::parse({text, static_cast<std::size_t>(sqlite3_column_bytes(get_, 0))});
        sqlite3_reset(get_);
        return value;
    }

    void set(const boost::json::value& value) { set(boost::json::serialize(value)); }

    void set(const std::string& text, std::string_view key = kKey) {
        bind(set_, 1, key);
        bind(set_, 2, text);
        sqlite3_step(set_);
        sqlite3_reset(set_);
    }

    /// Adds one element to the array at `path`, which ends in "[#]".
    void append(const std::string& element, const std::string& path, std::string_view key = kKey) {
        bind(append_, 1, key);
        bind(append_, 2, element);
        bind(append_, 3, path);
        sqlite3_step(append_);
        sqlite3_reset(append_);
    }

private:
    static constexpr std::string_view kKey = "key";

    static void bind(sqlite3_stmt* statement, int index, std::string_view text) {
        sqlite3_bind_text(statement, index, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
    }

    sqlite3* database_ = nullptr;
    sqlite3_stmt* get_ = nullptr;
    sqlite3_stmt* set_ = nullptr;
    sqlite3_stmt* append_ = nullptr;
};

}  // namespace velmora::bench

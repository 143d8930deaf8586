#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include <sqlite3.h>

/// SQLite's objects as owners, and the few calls that the store makes of it.
namespace velmora::platform::sqlite {

/// A result code of SQLite.
using Code = int;

struct Release {
    void operator()(sqlite3* connection) const noexcept { sqlite3_close_v2(connection); }
    void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
};
using Connection = std::unique_ptr<sqlite3, Release>;
using Statement = std::unique_ptr<sqlite3_stmt, Release>;

/// Whether the file is no database, or not the one that was made here.
[[nodiscard]] bool isDamage(Code code);

[[nodiscard]] Code open(const std::string& name, int flags, Connection& connection);
[[nodiscard]] Code run(const Connection& connection, const char* sql);
[[nodiscard]] Code prepare(const Connection& connection, const char* sql, Statement& statement);

/// The text must stay until the statement was stepped.
void bind(const Statement& statement, int index, std::string_view text);

/// The text of a column; it goes with the next step.
[[nodiscard]] std::string_view column(const Statement& statement, int index);

/// Runs a statement to its first row, if it has one, and leaves it ready for the next time, whatever `onRow`
/// does.
[[nodiscard]] Code step(const Statement& statement, const std::function<void()>& onRow = {});

}  // namespace velmora::platform::sqlite

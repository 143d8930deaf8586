#include "platform/desktop/store/Sqlite.h"

#include "platform/desktop/system/Origin.h"

namespace velmora::platform::sqlite {

namespace {

/// Ends the read of a row, which would otherwise keep a transaction open.
struct Ready {
    const Statement& statement;
    ~Ready() {
        sqlite3_reset(statement.get());
        sqlite3_clear_bindings(statement.get());
    }
};

}  // namespace

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

Code open(const std::string& name, int flags, Connection& connection) {
    [[maybe_unused]] static const bool isChecked = [] {
        warnOfForeign("libsqlite3", reinterpret_cast<const void*>(&sqlite3_open_v2));
        return true;
    }();
    sqlite3* opened = nullptr;
    const auto code =
        sqlite3_open_v2(name.c_str(), &opened, flags | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
    connection.reset(opened);
    // On closing, SQLite deletes the journal by its name, which may by then be that of another file's
    // journal.
    if (opened != nullptr) sqlite3_db_config(opened, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    return code;
}

Code run(const Connection& connection, const char* sql) {
    return sqlite3_exec(connection.get(), sql, nullptr, nullptr, nullptr);
}

Code prepare(const Connection& connection, const char* sql, Statement& statement) {
    sqlite3_stmt* prepared = nullptr;
    const auto code =
        sqlite3_prepare_v3(connection.get(), sql, -1, SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
    statement.reset(prepared);
    return code;
}

void bind(const Statement& statement, int index, std::string_view text) {
    sqlite3_bind_text64(statement.get(), index, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8);
}

std::string_view column(const Statement& statement, int index) {
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement.get(), index));
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement.get(), index));
    return bytes == nullptr ? std::string_view() : std::string_view(bytes, size);
}

Code step(const Statement& statement, const std::function<void()>& onRow) {
    const Ready ready{statement};
    const auto code = sqlite3_step(statement.get());
    if (code == SQLITE_ROW && onRow) onRow();
    return code == SQLITE_ROW || code == SQLITE_DONE ? SQLITE_OK : code;
}

}  // namespace velmora::platform::sqlite

#include "simulator/files/sqlite_file.h"

#include <stdexcept>

namespace lumosim {

namespace {

constexpr int PATIENCE_MILLISECONDS = 30000;

const char* SettingsOf(Journal journal) {
    switch (journal) {
        case Journal::NONE:
            return "pragma journal_mode = off; pragma synchronous = off;";
        case Journal::ROLLBACK:
            return "pragma journal_mode = delete;";
        case Journal::WAL:
            return "pragma journal_mode = wal;";
    }
    return "";
}

}  // namespace

SqliteFile::SqliteFile(const std::filesystem::path& file, Journal journal) : path(file) {
    sqlite3* opened = nullptr;
    const int result = sqlite3_open(path.c_str(), &opened);
    handle.reset(opened);
    Check(result, SQLITE_OK);
    sqlite3_busy_timeout(handle.get(), PATIENCE_MILLISECONDS);
    Execute(SettingsOf(journal));
}

void SqliteFile::Execute(const std::string& sql) {
    Check(sqlite3_exec(handle.get(), sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
}

bool SqliteFile::HasMoved() const {
    int moved = 0;
    sqlite3_file_control(handle.get(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
    return moved != 0;
}

void SqliteFile::Close() {
    Check(sqlite3_close(handle.get()), SQLITE_OK);
    static_cast<void>(handle.release());
}

void SqliteFile::Check(int result, int wanted) const {
    if (result != wanted) {
        throw std::runtime_error("cannot write " + path.string() + ": " + sqlite3_errmsg(handle.get()));
    }
}

void RecoverDatabase(const std::filesystem::path& path) {
    sqlite3* opened = nullptr;
    sqlite3_open_v2(path.c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
    sqlite3_busy_timeout(opened, PATIENCE_MILLISECONDS);
    // Either reads the file, and so looks into its journals first.
    sqlite3_exec(opened, "pragma schema_version; pragma wal_checkpoint(truncate);", nullptr, nullptr,
                 nullptr);
    sqlite3_close(opened);
}

SqliteStatement::SqliteStatement(SqliteFile& file, const std::string& sql) : database(file) {
    sqlite3_stmt* prepared = nullptr;
    const int result = sqlite3_prepare_v2(database.handle.get(), sql.c_str(), -1, &prepared, nullptr);
    handle.reset(prepared);
    database.Check(result, SQLITE_OK);
}

SqliteStatement& SqliteStatement::Bind(int64_t value) {
    database.Check(sqlite3_bind_int64(handle.get(), ++bound, value), SQLITE_OK);
    return *this;
}

SqliteStatement& SqliteStatement::Bind(std::string_view value) {
    database.Check(sqlite3_bind_text(handle.get(), ++bound, value.data(), static_cast<int>(value.size()),
                                     SQLITE_TRANSIENT),
                   SQLITE_OK);
    return *this;
}

void SqliteStatement::Run() {
    database.Check(sqlite3_step(handle.get()), SQLITE_DONE);
    sqlite3_reset(handle.get());
    bound = 0;
}

}  // namespace lumosim

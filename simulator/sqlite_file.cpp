#include "simulator/sqlite_file.h"

#include <stdexcept>

namespace lumosim {

SqliteFile::SqliteFile(const std::filesystem::path& file) : path(file) {
    sqlite3* opened = nullptr;
    const int result = sqlite3_open(path.c_str(), &opened);
    handle.reset(opened);
    Check(result, SQLITE_OK);
    Execute("pragma journal_mode = off; pragma synchronous = off;");
}

void SqliteFile::Execute(const std::string& sql) {
    Check(sqlite3_exec(handle.get(), sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
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

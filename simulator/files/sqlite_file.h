// The few SQLite calls that writing a new database takes. Every failure throws std::runtime_error with the
// file's name and SQLite's text.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace lumosim {

// How a database is kept whole while it is written.
enum class Journal {
    NONE,  // Not at all: no other connection may see the file before it is closed. Later in rollback mode.
    ROLLBACK,
    WAL,
};

class SqliteFile {
public:
    // Opens the database, or creates it. Waits up to half a minute for other connections' locks.
    explicit SqliteFile(const std::filesystem::path& path, Journal journal = Journal::NONE);

    // Runs one or more statements; results are dropped.
    void Execute(const std::string& sql);
    // Whether the file was deleted, or another one took its place.
    bool HasMoved() const;
    // Closes the file, and tells when that fails; the destructor closes without a word.
    void Close();

private:
    friend class SqliteStatement;
    void Check(int result, int wanted) const;

    struct Closer {
        void operator()(sqlite3* database) const { sqlite3_close(database); }
    };
    std::filesystem::path path;
    std::unique_ptr<sqlite3, Closer> handle;
};

// Undoes or completes what a killed writer left in the database's journals, which a reader alone may not do.
// Nothing happens when there is no database at `path`, or it cannot be written.
void RecoverDatabase(const std::filesystem::path& path);

// A prepared statement without results. The database must outlive it.
class SqliteStatement {
public:
    SqliteStatement(SqliteFile& database, const std::string& sql);

    // Sets the next parameter, from the first one on.
    SqliteStatement& Bind(int64_t value);
    SqliteStatement& Bind(std::string_view value);
    // Runs the statement, and is ready for the parameters of the next run.
    void Run();

private:
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    SqliteFile& database;
    std::unique_ptr<sqlite3_stmt, Finalizer> handle;
    int bound = 0;
};

}  // namespace lumosim

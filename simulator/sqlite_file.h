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

class SqliteFile {
public:
    // Creates the database; no other connection may see the file before this one is closed, as it is written
    // without journal and without waiting for the disk. Readers find it in rollback journal mode.
    explicit SqliteFile(const std::filesystem::path& path);

    // Runs one or more statements without results.
    void Execute(const std::string& sql);
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

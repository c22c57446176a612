// A database that comes from anywhere, opened by the host itself: nothing in it can make SQLite write
// elsewhere, or keep it busy. The plug-in guards its own connections.
#pragma once

#include <sqlite3.h>

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

namespace zorv {
// what() is SQLite's reason, or ours.
class DatabaseError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Confined to one thread; blocks on the file. Open it only where no plain file of the database is opened
// after.
class GuardedDatabase {
public:
    // With the flags of sqlite3_open_v2(). Throws DatabaseError.
    explicit GuardedDatabase(const std::string& path, int flags = SQLITE_OPEN_READONLY);
    GuardedDatabase(const GuardedDatabase&) = delete;
    GuardedDatabase& operator=(const GuardedDatabase&) = delete;

    // Runs statements of our own, one after the other. Throws DatabaseError.
    void Run(const std::string& statements);

    // Hands each row of some columns of a table to the function; `rest` of the statement, which may be empty,
    // says which and in what order. From then on the connection may only read. Throws DatabaseError, also
    // where the table is something that computes its rows, or takes more steps than any real one.
    void Read(const std::string& columns, const std::string& table, const std::string& rest,
              const std::function<void(sqlite3_stmt*)>& take);

    // The first row's value of a column, in order of another one where it is named; without rows none. Else
    // the same.
    std::optional<std::string> First(const std::string& column, const std::string& table,
                                     const std::string& order = "");

private:
    struct Close {
        void operator()(sqlite3* handle) const { sqlite3_close(handle); }
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    using Statement = std::unique_ptr<sqlite3_stmt, Close>;

    Statement Prepare(const std::string& sql);
    bool Step(const Statement& statement);
    void RefuseComputed(const std::string& table);
    void Check(int result) const;

    std::unique_ptr<sqlite3, Close> connection;
    int64_t steps = 0;  // of all statements
};
}  // namespace zorv

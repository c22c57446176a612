#include "host/process/guarded_database.h"

#include <cstring>
#include <utility>

#include "host/process/interrupt.h"

namespace zorv {
namespace {
constexpr int STEPS_BETWEEN_LOOKS = 1000;
// A second or two: a table of millions of rows is sorted within them.
constexpr int64_t MOST_STEPS = 100'000'000;

// What a schema may ask of the parser and of the stack.
constexpr std::pair<int, int> LIMITS[] = {
    {SQLITE_LIMIT_LENGTH, 1'000'000}, {SQLITE_LIMIT_SQL_LENGTH, 1'000'000}, {SQLITE_LIMIT_EXPR_DEPTH, 100},
    {SQLITE_LIMIT_ATTACHED, 0},       {SQLITE_LIMIT_COMPOUND_SELECT, 50},   {SQLITE_LIMIT_VDBE_OP, 25'000},
};

int AllowReading(void* /*user*/, int action, const char* name, const char* /*detail*/,
                 const char* /*database*/, const char* /*view*/) {
    const bool isOfColumns = action == SQLITE_PRAGMA && std::strcmp(name, "table_xinfo") == 0;
    return action == SQLITE_SELECT || action == SQLITE_READ || isOfColumns ? SQLITE_OK : SQLITE_DENY;
}

int StopIfInterruptedOrEndless(void* user) {
    int64_t& steps = *static_cast<int64_t*>(user);
    steps += STEPS_BETWEEN_LOOKS;
    return Interrupted() || steps > MOST_STEPS ? 1 : 0;
}

std::string TextOf(sqlite3_stmt* statement, int column) {
    const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    return text == nullptr ? "" : text;
}
}  // namespace

GuardedDatabase::GuardedDatabase(const std::string& path, int flags) {
    sqlite3* opened = nullptr;
    const int result = sqlite3_open_v2(path.c_str(), &opened, flags, nullptr);
    connection.reset(opened);
    Check(result);
    sqlite3_db_config(opened, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(opened, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    for (const auto& [limit, value] : LIMITS) {
        sqlite3_limit(opened, limit, value);
    }
    sqlite3_drop_modules(opened, nullptr);
    sqlite3_progress_handler(opened, STEPS_BETWEEN_LOOKS, &StopIfInterruptedOrEndless, &steps);
}

void GuardedDatabase::Run(const std::string& statements) {
    Check(sqlite3_exec(connection.get(), statements.c_str(), nullptr, nullptr, nullptr));
}

std::optional<std::string> GuardedDatabase::First(const std::string& column, const std::string& table,
                                                  const std::string& order) {
    std::optional<std::string> first;
    Read(column, table, (order.empty() ? "" : "order by " + order) + " limit 1",
         [&first](sqlite3_stmt* row) { first = TextOf(row, 0); });
    return first;
}

void GuardedDatabase::Read(const std::string& columns, const std::string& table, const std::string& rest,
                           const std::function<void(sqlite3_stmt*)>& take) {
    sqlite3_set_authorizer(connection.get(), &AllowReading, nullptr);
    RefuseComputed(table);
    const Statement statement = Prepare("select " + columns + " from " + table + " " + rest + ";");
    while (Step(statement)) {
        take(statement.get());
    }
}

// A view is not even asked for its columns: its text may keep the parser busy for minutes.
void GuardedDatabase::RefuseComputed(const std::string& table) {
    const Statement kind =
        Prepare("select type from sqlite_master where name = '" + table + "' collate nocase limit 1;");
    if (Step(kind) && TextOf(kind.get(), 0) != "table") {
        throw DatabaseError(table + " is no ordinary table");
    }
    const Statement columns = Prepare("pragma table_xinfo(" + table + ");");
    while (Step(columns)) {
        constexpr int HIDDEN = 6;
        if (sqlite3_column_int(columns.get(), HIDDEN) != 0) {
            throw DatabaseError(table + " has computed columns");
        }
    }
}

GuardedDatabase::Statement GuardedDatabase::Prepare(const std::string& sql) {
    sqlite3_stmt* prepared = nullptr;
    Check(sqlite3_prepare_v2(connection.get(), sql.c_str(), -1, &prepared, nullptr));
    return Statement(prepared);
}

// Whether there is a row more.
bool GuardedDatabase::Step(const Statement& statement) {
    const int result = sqlite3_step(statement.get());
    Check(result == SQLITE_ROW || result == SQLITE_DONE ? SQLITE_OK : result);
    return result == SQLITE_ROW;
}

void GuardedDatabase::Check(int result) const {
    if (result != SQLITE_OK) {
        throw DatabaseError(result == SQLITE_INTERRUPT && !Interrupted() ? "reading it does not end"
                                                                         : sqlite3_errmsg(connection.get()));
    }
}
}  // namespace zorv

#include "fault_database/fault_database_statement.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

namespace {

// Of one point in one table: a sample a second for eleven days, and what 13 long numbers a row take.
constexpr int32_t MOST_ROWS = 1'000'000;
constexpr size_t MOST_BYTES = size_t{256} * 1024 * 1024;

// Views are expanded before a statement runs, each in each: a long chain takes the stack and minutes, and one
// that names intermediate results takes all memory.
constexpr int32_t MOST_VIEWS = 20;

// What a schema and a statement may ask of the parser and of the stack. Our statements and the tables that
// they read stay far below.
constexpr std::pair<int, int> LIMITS[] = {
    {SQLITE_LIMIT_LENGTH, 1'000'000},        {SQLITE_LIMIT_SQL_LENGTH, 1'000'000},
    {SQLITE_LIMIT_EXPR_DEPTH, 100},          {SQLITE_LIMIT_COMPOUND_SELECT, 50},
    {SQLITE_LIMIT_VDBE_OP, 25'000},          {SQLITE_LIMIT_FUNCTION_ARG, 8},
    {SQLITE_LIMIT_LIKE_PATTERN_LENGTH, 100}, {SQLITE_LIMIT_ATTACHED, 0},
    {SQLITE_LIMIT_VARIABLE_NUMBER, 0},       {SQLITE_LIMIT_COLUMN, 100},
};

struct Finalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, Finalizer>;

// Our statements call no function, and none of them is recursive.
int Authorize(void* /*user*/, int action, const char* name, const char* /*detail*/, const char* /*database*/,
              const char* /*view*/) {
    const bool isCachePragma = action == SQLITE_PRAGMA && strcmp(name, "cache_size") == 0;
    return action == SQLITE_SELECT || action == SQLITE_READ || isCachePragma ? SQLITE_OK : SQLITE_DENY;
}

// Prepares the first statement of `sql`, and leaves what stands behind it there. Null without one.
int Prepare(sqlite3* handle, const char*& sql, Statement& statement) {
    sqlite3_stmt* prepared = nullptr;
    const int result = sqlite3_prepare_v2(handle, sql, -1, &prepared, &sql);
    statement.reset(prepared);
    return result;
}

// Whether more than blanks and comments stand at `sql`.
bool IsStatement(sqlite3* handle, const char* sql) {
    Statement statement;
    return *sql != '\0' && (Prepare(handle, sql, statement) != SQLITE_OK || statement != nullptr);
}

bool IsPartOfWord(char letter) {
    return letter == '_' || (letter >= '0' && letter <= '9') ||
           ((letter | 0x20) >= 'a' && (letter | 0x20) <= 'z');
}

// Where SQL text stands behind the word, in whatever case, which is given in lower case; also in a text or a
// comment. Looks from `start` on; npos without one.
size_t BehindWord(std::string_view sql, std::string_view word, size_t start = 0) {
    const auto isSame = [](char letter, char lower) { return (letter | 0x20) == lower; };
    for (auto found = sql.begin() + static_cast<std::ptrdiff_t>(start);; ++found) {
        found = std::search(found, sql.end(), word.begin(), word.end(), isSame);
        if (found == sql.end()) {
            return std::string_view::npos;
        }
        const auto end = found + static_cast<std::ptrdiff_t>(word.size());
        const bool begins = found == sql.begin() || !IsPartOfWord(*std::prev(found));
        if (begins && (end == sql.end() || !IsPartOfWord(*end))) {
            return static_cast<size_t>(end - sql.begin());
        }
    }
}

bool HasWord(std::string_view sql, std::string_view word) {
    return BehindWord(sql, word) != std::string_view::npos;
}

// Whether a table of the schema has columns that are computed: AS, and an expression in brackets. Each may
// hold the one before, and a call of any function.
bool HasComputedColumn(std::string_view sql) {
    constexpr std::string_view VIEW = "CREATE VIEW ";
    size_t behind = sql.substr(0, VIEW.size()) == VIEW ? std::string_view::npos : BehindWord(sql, "as");
    for (; behind != std::string_view::npos; behind = BehindWord(sql, "as", behind)) {
        const size_t next = sql.find_first_not_of(" \t\r\n\f", behind);
        if (next != std::string_view::npos &&
            std::string_view("(/-").find(sql[next]) != std::string_view::npos) {
            return true;
        }
    }
    return false;
}

// Whether a statement names intermediate results. A quoted text is none of its words, unless other quotes and
// comments leave open what is quoted.
bool NamesResults(const std::string& sql) {
    std::string bare;
    bool isQuoted = false;
    for (const char letter : sql) {
        isQuoted = isQuoted != (letter == '\'');
        bare.append(isQuoted ? 0 : 1, letter);
    }
    const bool isSure = bare.find_first_of("\"[`") == std::string::npos &&
                        bare.find("--") == std::string::npos && bare.find("/*") == std::string::npos;
    return HasWord(isSure ? bare : sql, "with");
}

// Copies the rows of a statement, within the bounds.
class RowReader {
public:
    RowReader(sqlite3_stmt* read, FaultResultTable& rows) : statement(read), table(rows) {
        table.texts = std::make_unique<std::pmr::monotonic_buffer_resource>();
    }

    // SQLite's result: SQLITE_DONE when all rows were read, SQLITE_ROW at the first one beyond the bounds.
    int Read() {
        int result = sqlite3_step(statement);
        for (; result == SQLITE_ROW && HasRoom(); result = sqlite3_step(statement)) {
            if (table.rowCount == 0) {
                AddNames();
            }
            if (!AddRow()) {
                return SQLITE_NOMEM;
            }
        }
        return result;
    }

private:
    bool HasRoom() const { return table.rowCount < MOST_ROWS && bytes < MOST_BYTES; }

    void AddNames() {
        table.columnCount = sqlite3_column_count(statement);
        for (int32_t column = 0; column < table.columnCount; ++column) {
            Add(sqlite3_column_name(statement, column));
        }
    }

    // False when SQLite has no memory left for a text.
    bool AddRow() {
        for (int32_t column = 0; column < table.columnCount; ++column) {
            const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
            if (text == nullptr && sqlite3_column_type(statement, column) != SQLITE_NULL) {
                return false;
            }
            Add(text);
        }
        table.rowCount += 1;
        return true;
    }

    // A text ends with its first zero, as everybody reads it.
    void Add(const char* text) {
        const size_t size = text != nullptr ? strlen(text) + 1 : 0;
        char* const copy = text != nullptr ? static_cast<char*>(table.texts->allocate(size, 1)) : nullptr;
        std::copy_n(text, size, copy);
        table.cells.push_back(copy);
        bytes += sizeof(copy) + size;
    }

    sqlite3_stmt* const statement;
    FaultResultTable& table;
    size_t bytes = 0;
};

}  // namespace

void FaultAllowReadingAlone(sqlite3* handle) {
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    for (const auto& [limit, value] : LIMITS) {
        sqlite3_limit(handle, limit, value);
    }
    sqlite3_drop_modules(handle, nullptr);  // without virtual tables
    sqlite3_set_authorizer(handle, &Authorize, nullptr);
}

FaultAttempt FaultPrepareToRead(sqlite3* handle, int32_t cacheKib) {
    FaultAttempt attempt =
        FaultRunStatement(handle, "PRAGMA cache_size = -" + std::to_string(cacheKib) + ";");
    if (attempt.ok) {
        attempt = FaultRunStatement(handle, "select sql from sqlite_master;");
    }
    int32_t views = 0;
    for (int32_t row = 1; attempt.ok && row <= attempt.table.rowCount; ++row) {
        const char* const text = attempt.table.cells[static_cast<size_t>(row)];
        const std::string_view sql = text != nullptr ? text : "";
        const bool isView = HasWord(sql, "view");
        views += isView ? 1 : 0;
        attempt.ok = views <= MOST_VIEWS && !(isView && HasWord(sql, "with")) && !HasComputedColumn(sql);
        attempt.error = attempt.ok ? "" : "schema refused";
    }
    return attempt;
}

FaultAttempt FaultRunStatement(sqlite3* handle, const std::string& sql) {
    FaultAttempt attempt;
    if (NamesResults(sql)) {
        attempt.error = "not authorized";
        return attempt;
    }
    Statement statement;
    const char* rest = sql.c_str();
    int result = Prepare(handle, rest, statement);
    if (result == SQLITE_OK && IsStatement(handle, rest)) {
        attempt.error = "more than one statement";
        return attempt;
    }
    if (result == SQLITE_OK) {
        result = statement != nullptr ? RowReader(statement.get(), attempt.table).Read() : SQLITE_DONE;
    }
    attempt.table.cells.push_back(nullptr);
    attempt.ok = result == SQLITE_DONE;
    if (!attempt.ok) {
        attempt.error = result == SQLITE_ROW ? "too large a result" : sqlite3_errmsg(handle);
    }
    return attempt;
}

#include "host/capture/table_spans.h"

#include <algorithm>
#include <optional>

#include "host/process/guarded_database.h"
#include "text/time_words.h"

namespace zorv {
namespace {
constexpr size_t PREFIX = 10;         // of a table's name, before its start
constexpr size_t COMPACT = 14;        // digits of that
constexpr size_t MOST_AT_AN_END = 3;  // tables that are looked at
constexpr const char* LETTERS = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_";
constexpr const char* DIGITS = "0123456789";

// The name goes into statements as it is.
bool IsNamedByTime(const std::string& name) {
    return name.size() == PREFIX + COMPACT && name.find_first_not_of(LETTERS) >= PREFIX &&
           name.find_first_not_of(DIGITS, PREFIX) == std::string::npos;
}

std::vector<std::string> OuterTables(GuardedDatabase& database) {
    std::vector<std::string> names;
    database.Read("tablename", "table_flag", "order by reporttime", [&](sqlite3_stmt* row) {
        const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(row, 0));
        if (text != nullptr && IsNamedByTime(text)) {
            names.emplace_back(text);
        }
    });
    if (names.size() > 2 * MOST_AT_AN_END) {
        names.erase(names.begin() + MOST_AT_AN_END, names.end() - MOST_AT_AN_END);
    }
    return names;
}

// By the row's number: there is no index on times alone, and a table may be large.
std::optional<int64_t> End(GuardedDatabase& database, const std::string& table, const char* order) {
    std::optional<int64_t> time;
    database.Read("curtime", table, std::string("order by rowid ") + order + " limit 1",
                  [&](sqlite3_stmt* row) { time = sqlite3_column_int64(row, 0); });
    return time;
}
}  // namespace

std::vector<TableSpan> TableSpansOf(const std::string& path) {
    GuardedDatabase database(path);
    std::vector<TableSpan> spans;
    for (const std::string& table : OuterTables(database)) {
        const std::optional<int64_t> first = End(database, table, "asc");
        const std::optional<int64_t> last = End(database, table, "desc");
        if (first && last) {
            spans.push_back({TimeOf(table.substr(PREFIX), {}), {*first, *last}});
        }
    }
    return spans;
}
}  // namespace zorv

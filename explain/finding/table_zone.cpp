#include "explain/finding/table_zone.h"

#include <algorithm>
#include <string>

#include "fault_common/fault_common.h"
#include "fault_common/fault_number.h"
#include "fault_database/fault_database.h"
#include "fault_database/fault_database_table.h"

namespace explain {
namespace {

constexpr size_t MOST_AT_AN_END = 3;  // tables that are looked at

// The catalogue's names, without those in the middle.
std::vector<std::string> OuterTables() {
    std::vector<std::string> names = FaultListTables(FaultGetQueryTableCallBack);
    if (names.size() > 2 * MOST_AT_AN_END) {
        names.erase(names.begin() + MOST_AT_AN_END, names.end() - MOST_AT_AN_END);
    }
    return names;
}

uint32_t TakeTime(char** result, int32_t rowCount, int32_t columnCount, std::vector<int64_t>& times,
                  std::vector<int64_t>& /*second*/, std::vector<std::string>& /*texts*/) {
    FaultCheckColumns(rowCount, columnCount, 1);
    if (rowCount > 0) {
        times.push_back(FaultToInt64(FaultCellText(result[columnCount])));
    }
    return 0;
}

// Appends the time of the first row or of the last one, in the order of time; nothing for a table without
// rows. Connections allow no functions, not even min(). Returns success.
bool TakeEnd(const std::string& table, const char* order, std::vector<int64_t>& times) {
    std::vector<int64_t> second;
    std::vector<std::string> texts;
    const std::string sql = "select curtime from " + table + " order by curtime " + order + " limit 1;";
    return FaultDataBaseExcuteSql(sql, TakeTime, times, second, texts) == 0;
}

// Seconds since 1970 of a compact local time, as if it were UTC.
int64_t AsUtc(const std::string& compact) {
    std::string seconds;
    std::string offset;
    TransDateToTime(compact, seconds);
    GetTimeZoneOffset(offset);
    return FaultToInt64(seconds) + FaultToInt64(offset);
}

}  // namespace

std::vector<TableSpan> TableSpans() {
    std::vector<TableSpan> tables;
    for (const std::string& name : OuterTables()) {
        std::vector<int64_t> ends;
        if (!TakeEnd(name, "asc", ends) || !TakeEnd(name, "desc", ends)) {
            return {};
        }
        if (ends.size() == 2) {
            tables.push_back({AsUtc(name.substr(FAULT_TABLE_PREFIX_LENGTH)), {ends[0], ends[1]}});
        }
    }
    return tables;
}

}  // namespace explain

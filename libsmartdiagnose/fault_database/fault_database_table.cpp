#define FAULT_UNIT_FILE "fault_database.cpp"
#include "fault_database/fault_database_table.h"

#include <algorithm>
#include <stdexcept>

#include "fault_common/fault_number.h"

namespace {

// The part of a statement that says which rows: one table, one point, one range of time.
std::string RowsOf(const FaultSqlInputParam& query) {
    return " from " + query.tableName +
           " where locateid = (select locateid from version_nmaps where locatename = '" + query.pointName +
           "') and curtime >= " + query.beginTime + " and curtime <= " + query.endTime + ";";
}

}  // namespace

uint32_t FaultConstructSql(const FaultSqlInputParam& query, std::string& sql) {
    const bool both = !query.selectColumn.empty() && !query.selectColumnExtra.empty();
    sql = "select " + query.selectColumn + (both ? ", " : "") + query.selectColumnExtra + RowsOf(query);
    return 0;
}

uint32_t FaultConstructFullSql(const FaultSqlInputParam& query, std::string& sql) {
    sql =
        "select curtime, acceptnum, successnum, failednum, retrynum, avgdelay, maxdelay, mindelay, "
        " errCode0, errCode1, errCode2, errCode3, errCode4 " +
        RowsOf(query);
    return 0;
}

uint32_t FaultGetQueryTable(const std::string& beginTime, const std::string& endTime,
                            std::vector<std::string>& tables) {
    const int64_t begin = FaultToInt64(beginTime);
    const int64_t end = FaultToInt64(endTime);
    const std::vector<std::string> names = FaultListTables(FaultGetQueryTableCallBack);
    if (names.empty()) {
        FAULT_LOG(FAULT_HERE, FAULT_INFO, "invalid lumodata table.");
        return 1;
    }
    std::vector<int64_t> times;
    std::transform(names.begin(), names.end(), std::back_inserter(times), FaultTableTime);
    const FaultTableCover cover = FaultCoverTables(times, begin, end, FAULT_IN("GetCoveredTime"));
    tables.insert(tables.end(), names.begin() + cover.first, names.begin() + cover.end);
    return 0;
}

uint32_t FaultGetQueryTableCallBack(char** result, int32_t rowCount, int32_t columnCount,
                                    std::vector<int64_t>& /*first*/, std::vector<int64_t>& /*second*/,
                                    std::vector<std::string>& tableNames) {
    return FaultCollectTexts(result, rowCount, columnCount, tableNames, FAULT_HERE);
}

std::vector<std::string> FaultListTables(FaultRowsCallBack callback) {
    std::vector<int64_t> first;
    std::vector<int64_t> second;
    std::vector<std::string> names;
    FaultDataBaseExcuteSql("select tablename from table_flag;", callback, first, second, names);
    return names;
}

uint32_t FaultCollectTexts(char** result, int32_t rowCount, int32_t columnCount,
                           std::vector<std::string>& texts, const FaultLogSite& site) {
    if (result == nullptr) {
        FAULT_LOG(site, FAULT_ERROR, "DB pointer pResult is null.");
        return 1;
    }
    char** const values = result + columnCount;  // behind the column names
    const int64_t count = rowCount > 0 ? int64_t{rowCount} * columnCount : 0;
    for (int64_t i = 0; i < count; ++i) {
        texts.emplace_back(FaultCellText(values[i]));
    }
    return 0;
}

void FaultCheckColumns(int32_t rowCount, int32_t columnCount, int32_t needed) {
    if (rowCount > 0 && columnCount < needed) {
        throw std::invalid_argument("result of " + std::to_string(columnCount) + " columns");
    }
}

int64_t FaultTableTime(const std::string& tableName) {
    return FaultToInt64(std::string_view(tableName).substr(FAULT_TABLE_PREFIX_LENGTH));
}

FaultTableCover FaultCoverTables(const std::vector<int64_t>& times, int64_t start, int64_t end,
                                 const FaultLogSite& site) {
    int32_t left = -1;
    int32_t right = -1;
    const auto count = static_cast<int32_t>(times.size());
    for (int32_t i = 0; i < count; ++i) {
        const int64_t time = times[static_cast<size_t>(i)];
        left = time <= start ? i : left;
        right = time <= end ? i : right;
    }
    if (left > right || right == -1) {
        FAULT_LOG(site, FAULT_WARNING, "GetCoveredTime index left:%d, right:%d.", left, right);
        return {};
    }
    return {std::max(left, 0), right + 1};
}

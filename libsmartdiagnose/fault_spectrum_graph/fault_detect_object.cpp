#include "fault_spectrum_graph/fault_detect_object.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>

#include "fault_algorithm/fault_correlation.h"
#include "fault_common/fault_common.h"
#include "fault_common/fault_log.h"
#include "fault_common/fault_number.h"
#include "fault_database/fault_database.h"
#include "fault_database/fault_database_table.h"

namespace {

constexpr const char* TIME_COLUMN = "curtime";
constexpr const char* DELAY_COLUMN = "avgdelay";

constexpr int64_t TEST_SECONDS_MAX = 2000000;  // four points of 16 bytes a second: 128 MB
constexpr int64_t TEST_DELAY = 10;
constexpr int64_t TEST_SPIKE = 20010;

}  // namespace

bool detectCmp(const AnomalyDetectResult& a, const AnomalyDetectResult& b) {
    return a.anomalyValue > b.anomalyValue;
}

void FaultDetectObject::InitObject() {
    ClearData();
    points = {"TGT_LUMO_HOST_READ", "TGT_LUMO_HOST_WRITE", "TGT_LUMO_HOST_CMD", "NAS_TRANS_ALL"};
}

void FaultDetectObject::ClearData() {
    points.clear();
    auxMap.clear();
    data.clear();
    tables.clear();
}

uint32_t FaultDetectObject::SelectTable(const std::string& startDate, const std::string& endDate) {
    const int64_t start = FaultToInt64(startDate);
    const int64_t end = FaultToInt64(endDate);
    const std::vector<std::string> names = FaultListTables(FaultSelectTableCallBack);
    if (names.empty()) {
        FAULT_LOG(FAULT_HERE, FAULT_INFO, "invalid lumodata table.");
        return 1;
    }
    std::vector<int64_t> times;
    AbstracTime(names, times);
    std::vector<int32_t> indexes;
    GetCoveredTime(times, start, end, indexes);
    for (const int32_t index : indexes) {
        tables.push_back(names[static_cast<size_t>(index)]);
    }
    return 0;
}

void FaultDetectObject::AbstracTime(const std::vector<std::string>& tableNames, std::vector<int64_t>& times) {
    for (const std::string& name : tableNames) {
        times.push_back(FaultTableTime(name));
    }
}

void FaultDetectObject::GetCoveredTime(const std::vector<int64_t>& times, int64_t start, int64_t end,
                                       std::vector<int32_t>& indexes) {
    const FaultTableCover cover = FaultCoverTables(times, start, end, FAULT_HERE);
    for (int32_t index = cover.first; index < cover.end; ++index) {
        indexes.push_back(index);
    }
}

void FaultDetectObject::GetData(const std::string& startDate, const std::string& endDate) {
    if (SelectTable(startDate, endDate) != 0) {
        FAULT_LOG(FAULT_HERE, FAULT_INFO, "select table name failed.");
        return;
    }
    FaultSqlInputParam query;
    query.selectColumn = TIME_COLUMN;
    query.selectColumnExtra = DELAY_COLUMN;
    if (TransDateToTime(startDate, query.beginTime) != 0 || TransDateToTime(endDate, query.endTime) != 0) {
        FAULT_LOG(FAULT_HERE, FAULT_INFO, "TransDateToTime failed.");
        return;
    }
    for (const std::string& point : points) {
        query.pointName = point;
        std::vector<int64_t> times;
        std::vector<int64_t> delays;
        std::vector<std::string> texts;
        std::string sql;
        for (const std::string& table : tables) {
            query.tableName = table;
            FaultConstructSql(query, sql);
            FaultDataBaseExcuteSql(sql, FaultDetectQueryCallBack, times, delays, texts);
        }
        data[point][TIME_COLUMN] = std::move(times);
        data[point][DELAY_COLUMN] = std::move(delays);
    }
}

std::vector<AnomalyDetectResult> FaultDetectObject::DoDetect(const std::string& /*startTime*/,
                                                             const std::string& /*endTime*/) {
    std::vector<AnomalyDetectResult> results;
    for (const std::string& point : points) {
        const std::vector<int64_t>& delays = data[point][DELAY_COLUMN];
        const std::vector<int64_t>& times = data[point][TIME_COLUMN];
        std::vector<AnomalyDetectResult> flagged;
        for (const size_t sample : SmartDiagnose::Outliers(delays)) {
            if (sample < times.size()) {
                flagged.push_back({{}, point, delays[sample], times[sample]});
            }
        }
        const auto worst = std::min_element(flagged.begin(), flagged.end(), detectCmp);
        if (worst != flagged.end()) {
            results.push_back(*worst);
        }
    }
    return results;
}

void FaultDetectObject::TestSqlData(const std::string& startTime, const std::string& endTime) {
    std::string offsetText;
    GetTimeZoneOffset(offsetText);
    const int64_t offset = FaultToInt64(offsetText);
    const int64_t start = FaultWrapSubtract(FaultToInt64(startTime), offset);
    const int64_t end = FaultWrapSubtract(FaultToInt64(endTime), offset);
    const int64_t length = start > end ? 0 : FaultWrapSubtract(end, start);
    if (length < 0 || length > TEST_SECONDS_MAX) {
        throw std::length_error("the range of the synthetic series is too long");
    }
    const auto count = static_cast<size_t>(length);
    std::vector<int64_t> times(count);
    std::iota(times.begin(), times.end(), start);
    std::vector<int64_t> delays(count, TEST_DELAY);
    if (count > 0) {
        delays[count / 2] = TEST_SPIKE;
        delays[count / 4] = TEST_SPIKE;
    }
    for (const std::string& point : points) {
        data[point][DELAY_COLUMN] = delays;
        data[point][TIME_COLUMN] = times;
    }
}

void FaultDetectObject::DisplayData(const std::string& pointName, int32_t /*count*/) {
    const auto entry = data.find(pointName);
    if (entry != data.end()) {
        entry->second[DELAY_COLUMN];
    }
}

uint32_t FaultDetectObject::FaultDetectQueryCallBack(char** result, int32_t rowCount, int32_t columnCount,
                                                     std::vector<int64_t>& times,
                                                     std::vector<int64_t>& delays,
                                                     std::vector<std::string>& /*texts*/) {
    if (result == nullptr) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "invalid input which pResult is null.");
        return 1;
    }
    FaultCheckColumns(rowCount, columnCount, 2);
    char** cells = result;
    for (int32_t row = 0; row < rowCount; ++row) {
        cells += columnCount;  // the first row holds the column names
        times.push_back(FaultToInt64(FaultCellText(cells[0])));
        delays.push_back(FaultToInt64(FaultCellText(cells[1])));
    }
    return 0;
}

uint32_t FaultDetectObject::FaultSelectTableCallBack(char** result, int32_t rowCount, int32_t columnCount,
                                                     std::vector<int64_t>& /*first*/,
                                                     std::vector<int64_t>& /*second*/,
                                                     std::vector<std::string>& tableNames) {
    return FaultCollectTexts(result, rowCount, columnCount, tableNames, FAULT_HERE);
}

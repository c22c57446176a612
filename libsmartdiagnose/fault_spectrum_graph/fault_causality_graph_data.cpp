#define FAULT_UNIT_FILE "fault_causality_graph.cpp"
#include <algorithm>
#include <array>

#include "fault_common/fault_common.h"
#include "fault_common/fault_log.h"
#include "fault_common/fault_number.h"
#include "fault_common/fault_rate_limiter.h"
#include "fault_database/fault_database.h"
#include "fault_database/fault_database_table.h"
#include "fault_spectrum_graph/fault_causality_graph.h"

namespace {

// The value columns of the full-row query, in its order; the first column of a row is its time.
constexpr std::array<const char*, 12> VALUE_COLUMNS = {"acceptnum", "successnum", "failednum", "retrynum",
                                                       "avgdelay",  "maxdelay",   "mindelay",  "errCode0",
                                                       "errCode1",  "errCode2",   "errCode3",  "errCode4"};
constexpr const char* DELAY_COLUMN = "avgdelay";

// Tables have about the same number of rows: what the first one had tells the room for all. To grow step by
// step costs nearly as much as to turn the cells into numbers. A first table out of all proportion gets no
// more than a mebibyte per column.
void MakeRoom(std::map<std::string, FaultSeries>& columns, size_t tableCount) {
    constexpr size_t MOST_ROWS = (1U << 20U) / sizeof(FaultSeriesRow);
    for (auto& column : columns) {
        column.second.reserve(std::min(column.second.size() * tableCount, MOST_ROWS));
    }
}

FaultSqlInputParam QueryOf(const std::string& beginTime, const std::string& endTime) {
    return {"curtime", DELAY_COLUMN, {}, {}, beginTime, endTime};
}

}  // namespace

uint32_t FaultCausalityGraph::GetData(const std::string& beginDate, const std::string& endDate) {
    std::string beginTime;
    std::string endTime;
    std::vector<std::string> tables;
    uint32_t result = TransDateToTime(beginDate, beginTime);
    result += TransDateToTime(endDate, endTime);
    result += FaultGetQueryTable(beginDate, endDate, tables);
    result += GetLumoData(beginTime, endTime, tables);
    if (result != 0) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "get data failed.");
        return 1;
    }
    GetObData(beginTime, endTime, tables);
    return 0;
}

uint32_t FaultCausalityGraph::GetLumoData(const std::string& beginTime, const std::string& endTime,
                                          const std::vector<std::string>& tables) {
    FaultSqlInputParam query = QueryOf(beginTime, endTime);
    for (const std::string& point : vecLumoLocName) {
        std::map<std::string, FaultSeries> columns;
        if (LoadPoint(query, point, tables, columns) != 0) {
            FAULT_LOG(FAULT_HERE, FAULT_ERROR, "get lumodata from database failed.");
            return 1;
        }
        mapLumoData[point] = std::move(columns);
    }
    return 0;
}

uint32_t FaultCausalityGraph::GetObData(const std::string& beginTime, const std::string& endTime,
                                        const std::vector<std::string>& tables) {
    FaultSqlInputParam query = QueryOf(beginTime, endTime);
    for (const std::string& point : vecObName) {
        std::map<std::string, FaultSeries> columns;
        if (LoadPoint(query, point, tables, columns) != 0) {
            FAULT_LOG(FAULT_HERE, FAULT_ERROR, "get obdata from database failed.");
            return 1;
        }
        mapObserveData[point] = std::move(columns[DELAY_COLUMN]);
    }
    return 0;
}

uint32_t FaultCausalityGraph::LoadPoint(FaultSqlInputParam& query, const std::string& point,
                                        const std::vector<std::string>& tables,
                                        std::map<std::string, FaultSeries>& columns) {
    query.pointName = point;
    std::string sql;
    for (const std::string& table : tables) {
        query.tableName = table;
        FaultConstructFullSql(query, sql);
        if (FaultDataBaseExcuteFullSql(sql, FaultCausalityGraph::QueryFullDataCb, columns) != 0) {
            return 1;
        }
        if (&table == &tables.front()) {
            MakeRoom(columns, tables.size());
        }
    }
    for (auto& column : columns) {
        column.second.shrink_to_fit();  // room that lies idle adds up over the points
    }
    return 0;
}

uint32_t FaultCausalityGraph::QueryFullDataCb(char** result, int32_t rowCount, int32_t columnCount,
                                              std::map<std::string, FaultSeries>& series) {
    if (result == nullptr) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "invalid input which pResult is null.");
        return 1;
    }
    if (rowCount <= 0) {
        return 0;
    }
    FaultCheckColumns(rowCount, columnCount, 1 + static_cast<int32_t>(VALUE_COLUMNS.size()));
    std::array<FaultSeries*, VALUE_COLUMNS.size()> columns{};
    for (size_t i = 0; i < columns.size(); ++i) {
        columns[i] = &series[VALUE_COLUMNS[i]];
    }
    char** cells = result;
    for (int32_t row = 0; row < rowCount; ++row) {
        cells += columnCount;  // the first row holds the column names
        const int64_t time = FaultToInt64(FaultCellText(cells[0]));
        for (size_t i = 0; i < columns.size(); ++i) {
            columns[i]->push_back({time, FaultToInt64(FaultCellText(cells[i + 1]))});
        }
    }
    return 0;
}

const FaultSeries* FaultCausalityGraph::FindSeries(int32_t nodeId, const std::string& statName) const {
    static FaultUsualLimiter nodeLimiter;
    static FaultUsualLimiter dataLimiter;
    const auto node = mapNodeInfo.find(nodeId);
    if (node == mapNodeInfo.end()) {
        FAULT_LOG_LIMITED(nodeLimiter, FAULT_IN("GetSeriesDataArray"), FAULT_ERROR,
                          "Fail to find sourcId:%d in mapNodeInfo.", nodeId);
        return nullptr;
    }
    const std::string& locName = node->second.locName;
    if (const auto point = mapLumoData.find(locName); point != mapLumoData.end()) {
        if (const auto column = point->second.find(statName); column != point->second.end()) {
            return &column->second;
        }
    }
    FAULT_LOG_LIMITED(dataLimiter, FAULT_IN("GetSeriesDataArray"), FAULT_ERROR,
                      "Fail to find srcLabel(%s) in mapLumoData.", locName.c_str());
    return nullptr;
}

uint32_t FaultCausalityGraph::GetSeriesDataArray(int32_t nodeId, const std::string& statName,
                                                 FaultSeries& series) const {
    const FaultSeries* found = FindSeries(nodeId, statName);
    if (found == nullptr) {
        return 1;
    }
    series = *found;
    return 0;
}

int64_t FaultCausalityGraph::SumTimeSeriesArray(const FaultSeries& series) {
    int64_t sum = 0;
    for (const FaultSeriesRow& row : series) {
        sum = FaultWrapAdd(sum, row[1]);
    }
    return sum;
}

int64_t FaultCausalityGraph::AvgSeriesArray(const FaultSeries& series) {
    const auto count = static_cast<int64_t>(series.size());
    int64_t average = 0;
    for (const FaultSeriesRow& row : series) {
        average = FaultWrapAdd(average, row[1] / count);
    }
    return average;
}

int64_t FaultCausalityGraph::MaxTimeSeriesArray(const FaultSeries& series) {
    int64_t maximum = 0;
    for (const FaultSeriesRow& row : series) {
        maximum = std::max(maximum, row[1]);
    }
    return maximum;
}

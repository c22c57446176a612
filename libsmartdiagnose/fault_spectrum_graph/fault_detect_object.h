// The delay detector: finds, in the series of a few fixed trace points, the worst sample that lies beyond
// three standard deviations.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "fault_common/fault_export.h"

// One anomaly of one trace point.
struct AnomalyDetectResult {
    std::string extraInfo;     // for consumers; the detector leaves it empty
    std::string lumoLocName;   // the trace point
    int64_t anomalyValue = 0;  // average delay of the sample, microseconds
    int64_t anomalyTime = 0;   // time of the sample, UTC seconds since 1970
};

// Orders by delay, largest first.
bool detectCmp(const AnomalyDetectResult& a, const AnomalyDetectResult& b);

// One run: InitObject(), then GetData() or TestSqlData(), then DoDetect(). Confined to the thread that made
// it. Dates are compact local times, times are UTC seconds since 1970, both as text; a text that is no number
// throws the standard conversion errors.
class FAULT_EXPORT FaultDetectObject {
public:
    // Empties the object and sets its points.
    void InitObject();
    void ClearData();

    // Appends the tables that cover the range of dates to `tables`. Returns 0, also when none does; 1 when
    // the database lists no tables or does not answer. Throws std::out_of_range for a table name that is
    // shorter than the prefix of table names.
    uint32_t SelectTable(const std::string& startDate, const std::string& endDate);

    // Appends the start time of each table, which its name tells, to `times`. Throws as SelectTable() does.
    void AbstracTime(const std::vector<std::string>& tableNames, std::vector<int64_t>& times);

    // Appends the positions of the tables that cover the range to `indexes`. Each table covers the time from
    // its own start to the next table's. Nothing is appended, and a line logged, when none does.
    void GetCoveredTime(const std::vector<int64_t>& times, int64_t start, int64_t end,
                        std::vector<int32_t>& indexes);

    // Loads `data` for all points; the range of dates includes both ends. A failure is logged and leaves the
    // points without data. Blocks on the database, for 70 s per query that keeps failing.
    void GetData(const std::string& startDate, const std::string& endDate);

    // At most one anomaly per point, the largest flagged delay (the earliest of equal ones), in point order.
    // The whole series is one sample set. Points without data get empty entries in `data`. The arguments are
    // not used.
    std::vector<AnomalyDetectResult> DoDetect(const std::string& startTime, const std::string& endTime);

    // Fills `data` with a synthetic series of one sample per second, two of them spikes, to try the rule
    // without a database. Throws std::length_error beyond 2,000,000 seconds.
    void TestSqlData(const std::string& startTime, const std::string& endTime);

    // Prints nothing; makes sure that a point which has data has an "avgdelay" series.
    void DisplayData(const std::string& pointName, int32_t count);

    // Row callbacks of the two queries, see fault_database.h: times and delays of samples, in two columns;
    // table names. They throw std::invalid_argument for a null cell or a missing column, and for a sample
    // that is no number the standard conversion errors.
    static uint32_t FaultDetectQueryCallBack(char** result, int32_t rowCount, int32_t columnCount,
                                             std::vector<int64_t>& times, std::vector<int64_t>& delays,
                                             std::vector<std::string>& texts);
    static uint32_t FaultSelectTableCallBack(char** result, int32_t rowCount, int32_t columnCount,
                                             std::vector<int64_t>& first, std::vector<int64_t>& second,
                                             std::vector<std::string>& tableNames);

    std::vector<std::string> points;
    std::map<std::string, std::vector<std::string>> auxMap;  // for consumers; the detector only empties it
    // By point, then by column, "curtime" and "avgdelay": position i of both was read from the same row.
    std::map<std::string, std::map<std::string, std::vector<int64_t>>> data;
    std::vector<std::string> tables;  // the tables that cover the range, in the database's order
};

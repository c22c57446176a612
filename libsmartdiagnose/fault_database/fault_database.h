// The two databases that the storage system writes and the plug-in reads: the statistics of the trace points
// (Lumo) and the healing events of the agent. Both connections are read-only.
//
// Unless said otherwise, results are 0 for success and 1 for failure, any thread may call, and failures are
// logged. A query that keeps failing blocks its caller for about 70 seconds: 35 attempts, two seconds after
// each. An answer counts only while the file that gave it is still the file at the database's path.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "fault_common/fault_export.h"
#include "fault_common/fault_series.h"

// What a query asks. Values go into the statement as they are, unquoted but for the point name.
struct FaultSqlInputParam {
    std::string selectColumn;       // first column or column list; may be empty
    std::string selectColumnExtra;  // a further column; may be empty
    std::string tableName;
    std::string pointName;  // trace point, as in version_nmaps.locatename
    std::string beginTime;  // bounds of curtime, both included: UTC seconds since 1970
    std::string endTime;
};

// A callback gets the rows of one query, also when there are none: cells row by row, the column names first.
// A cell may be null. The cells are valid for the call only. The result is not looked at; an exception goes
// through to the caller of the query.
using FaultRowsCallBack = uint32_t (*)(char** result, int32_t rowCount, int32_t columnCount,
                                       std::vector<int64_t>& first, std::vector<int64_t>& second,
                                       std::vector<std::string>& texts);
using FaultFullRowsCallBack = uint32_t (*)(char** result, int32_t rowCount, int32_t columnCount,
                                           std::map<std::string, FaultSeries>& series);

// Opens both databases, in place of what was open before. On failure both are closed.
FAULT_EXPORT uint32_t FaultDataBaseInit();

// Closes both databases. Waits for a query that is running.
FAULT_EXPORT uint32_t FaultDataBaseRelease();

// Starts the thread that opens both databases anew whenever the statistics file is created, deleted or
// renamed into place. Returns 0 always; a thread that does not start is logged. Called once; the thread never
// ends.
FAULT_EXPORT uint32_t FaultDataBaseInotifyHandleInit();

// Runs a statement on the statistics database and hands the rows, with the containers, to the callback, which
// may be null. Refuses at once while the database is not open.
FAULT_EXPORT uint32_t FaultDataBaseExcuteSql(const std::string& sql, FaultRowsCallBack callback,
                                             std::vector<int64_t>& first, std::vector<int64_t>& second,
                                             std::vector<std::string>& texts);
FAULT_EXPORT uint32_t FaultDataBaseExcuteFullSql(const std::string& sql, FaultFullRowsCallBack callback,
                                                 std::map<std::string, FaultSeries>& series);

// The same on the heal database, for programs beside the plug-in.
uint32_t FaultHealDataBaseExcuteSql(const std::string& sql, FaultRowsCallBack callback,
                                    std::vector<int64_t>& first, std::vector<int64_t>& second,
                                    std::vector<std::string>& texts);

// The earliest time for which there are statistics, compact local time. Unlike the queries above it waits for
// a database that is not open. Throws std::invalid_argument when the catalogue holds a null for a name.
FAULT_EXPORT uint32_t FaultGetDataTimeRange(std::string& earliest);

// Builds the statement that reads the selected columns of one point from one table, or all twelve values and
// the time of it (where the column fields do not count). Replaces `sql`; returns 0.
FAULT_EXPORT uint32_t FaultConstructSql(const FaultSqlInputParam& query, std::string& sql);
FAULT_EXPORT uint32_t FaultConstructFullSql(const FaultSqlInputParam& query, std::string& sql);

// Appends the names of the data tables that cover the range of compact local times to `tables`, in catalogue
// order. Success with none when the range ends before the first table; failure when the catalogue is empty or
// does not answer. Throws the standard conversion errors for a time that is no number, and for a table name
// without one or a null in its place; std::out_of_range for a table name that is shorter than the prefix of
// table names.
FAULT_EXPORT uint32_t FaultGetQueryTable(const std::string& beginTime, const std::string& endTime,
                                         std::vector<std::string>& tables);

// The row callback of that query: appends every cell to `tableNames`. Throws std::invalid_argument for a null
// cell.
FAULT_EXPORT uint32_t FaultGetQueryTableCallBack(char** result, int32_t rowCount, int32_t columnCount,
                                                 std::vector<int64_t>& first, std::vector<int64_t>& second,
                                                 std::vector<std::string>& tableNames);

// A healing action of the agent: time (compact local), module, cause, inferred cause. A null cell is empty
// text.
using FaultHealEvent = std::tuple<std::string, std::string, std::string, std::string>;

// Appends what was healed on this node for hanging or failed I/O in a range of compact local times, both
// included. Refuses at once while the database is not open; on failure `events` stays as it was.
FAULT_EXPORT uint32_t FaultQueryHealEvent(const std::string& beginTime, const std::string& endTime,
                                          std::vector<FaultHealEvent>& events);

#include "fault_database/fault_database.h"

#include <array>

#include "agent/agent_memory.h"
#include "agent/agent_message.h"
#include "agent/agent_time.h"
#include "fault_common/fault_boundary.h"
#include "fault_common/fault_log.h"
#include "fault_common/fault_number.h"
#include "fault_common/fault_rate_limiter.h"
#include "fault_database/fault_database_connection.h"
#include "fault_database/fault_database_table.h"

namespace {

constexpr int32_t ATTEMPTS = 35;
constexpr int32_t RETRY_SECONDS = 2;
constexpr int32_t TICKS_PER_SECOND = 100;  // of vopx_10msleep()

// Held while the databases are opened, so that an opening that failed early never closes what a later one
// has opened.
FaultMutex g_initMutex;

// Where a query path reports its failures: one site and limiter per line; no limiter lets every line pass.
struct FaultRetryReport {
    FaultLogSite attemptSite;
    FaultRateLimiter* attemptLimiter;
    FaultLogSite endSite;
    FaultRateLimiter* endLimiter;
};

bool Admits(FaultRateLimiter* limiter, const FaultLogSite& site) {
    return limiter == nullptr || limiter->Admit(site);
}

// The retry policy of every query: true with the rows in `table`, or false after the last attempt.
bool QueryWithRetry(FaultConnection& connection, const std::string& sql, const FaultRetryReport& report,
                    FaultResultTable& table) {
    for (int32_t number = 1; number <= ATTEMPTS; ++number) {
        FaultAttempt attempt = connection.Query(sql);
        if (attempt.ok) {
            table = std::move(attempt.table);
            return true;
        }
        attempt.table = {};
        if (attempt.moved) {
            FaultDataBaseInit();
        }
        if (Admits(report.attemptLimiter, report.attemptSite)) {
            FAULT_LOG(report.attemptSite, FAULT_ERROR,
                      "sqlite3 get table faild for %d time:%s, retry after %d sec.", number,
                      attempt.error.c_str(), RETRY_SECONDS);
        }
        vopx_10msleep(RETRY_SECONDS * TICKS_PER_SECOND);
    }
    if (Admits(report.endLimiter, report.endSite)) {
        FAULT_LOG(report.endSite, FAULT_ERROR, "sqlite3 get table faild for %d times, donot retry again.",
                  ATTEMPTS);
    }
    return false;
}

// What all executors do; they differ in the database and in the callback's containers.
template <typename CallBack, typename... Containers>
uint32_t Excute(FaultConnection& connection, const std::string& sql, const FaultRetryReport& report,
                CallBack callback, Containers&... containers) {
    if (!connection.IsOpen()) {
        FAULT_LOG(FAULT_IN(report.attemptSite.function), FAULT_WARNING, "%s is nullptr.", connection.Name());
        return 1;
    }
    FaultResultTable table;
    if (!QueryWithRetry(connection, sql, report, table)) {
        return 1;
    }
    if (callback != nullptr) {
        callback(table.cells.data(), table.rowCount, table.columnCount, containers...);
    }
    return 0;
}

std::string TextOrEmpty(const char* cell) {
    return cell != nullptr ? cell : "";
}

void FaultGetHealEventData(const FaultResultTable& table, std::vector<FaultHealEvent>& events) {
    if (table.cells.data() == nullptr) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "DB pointer pResult is null.");
        return;
    }
    FaultCheckColumns(table.rowCount, table.columnCount, 4);
    char* const* cells = table.cells.data();
    for (int32_t row = 0; row < table.rowCount; ++row) {
        cells += table.columnCount;
        events.emplace_back(TextOrEmpty(cells[0]), TextOrEmpty(cells[1]), TextOrEmpty(cells[2]),
                            TextOrEmpty(cells[3]));
    }
}

uint32_t OpenOrReleaseBoth(FaultConnection& connection) {
    // The opening may throw as well, and must not leave one of the two open.
    int32_t result = SQLITE_NOMEM;
    FaultRunGuarded(FAULT_IN("FaultDataBaseInit"), [&] { result = connection.Open(); });
    if (result == SQLITE_OK) {
        return 0;
    }
    FaultDataBaseRelease();
    FAULT_LOG(FAULT_IN("FaultDataBaseInit"), FAULT_ERROR, "sqlite3_open faild:%d", result);
    return 1;
}

}  // namespace

uint32_t FaultDataBaseInit() {
    FaultLock lock(g_initMutex);
    if (OpenOrReleaseBoth(FaultLumoDataBase()) != 0) {
        return 1;
    }
    return OpenOrReleaseBoth(FaultZorvHealDataBase());
}

uint32_t FaultDataBaseRelease() {
    FaultLumoDataBase().Close();
    FaultZorvHealDataBase().Close();
    return 0;
}

uint32_t FaultDataBaseExcuteSql(const std::string& sql, FaultRowsCallBack callback,
                                std::vector<int64_t>& first, std::vector<int64_t>& second,
                                std::vector<std::string>& texts) {
    static FaultUsualLimiter attemptLimiter;
    static FaultUsualLimiter endLimiter;
    return Excute(FaultLumoDataBase(), sql,
                  {FAULT_HERE, &attemptLimiter,  // each line has a number of its own
                   FAULT_HERE, &endLimiter},
                  callback, first, second, texts);
}

uint32_t FaultHealDataBaseExcuteSql(const std::string& sql, FaultRowsCallBack callback,
                                    std::vector<int64_t>& first, std::vector<int64_t>& second,
                                    std::vector<std::string>& texts) {
    static FaultUsualLimiter attemptLimiter;
    static FaultUsualLimiter endLimiter;
    return Excute(FaultZorvHealDataBase(), sql,
                  {FAULT_HERE, &attemptLimiter,  // each line has a number of its own
                   FAULT_HERE, &endLimiter},
                  callback, first, second, texts);
}

uint32_t FaultDataBaseExcuteFullSql(const std::string& sql, FaultFullRowsCallBack callback,
                                    std::map<std::string, FaultSeries>& series) {
    static FaultUsualLimiter attemptLimiter;
    static FaultUsualLimiter endLimiter;
    return Excute(FaultLumoDataBase(), sql,
                  {FAULT_HERE, &attemptLimiter,  // each line has a number of its own
                   FAULT_HERE, &endLimiter},
                  callback, series);
}

uint32_t FaultGetDataTimeRange(std::string& earliest) {
    FaultResultTable table;
    if (!QueryWithRetry(FaultLumoDataBase(),
                        "SELECT tablename FROM table_flag ORDER BY reporttime ASC LIMIT 1;",
                        {FAULT_HERE, nullptr,  // each line has a number of its own
                         FAULT_HERE, nullptr},
                        table)) {
        return 1;
    }
    if (table.cells.data() == nullptr || table.columnCount <= 0 || table.rowCount <= 0) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "Query from database failed, data(%s), dataCol(%d).",
                  table.cells.data() == nullptr ? "NULL" : "not NULL", table.columnCount);
        return 1;
    }
    const std::string name(FaultCellText(table.cells.data()[table.columnCount]));
    FAULT_LOG(FAULT_HERE, FAULT_DEBUG, "The tableName:%s", name.c_str());
    if (name.size() <= FAULT_TABLE_PREFIX_LENGTH) {
        FAULT_LOG(FAULT_HERE, FAULT_WARNING, "The tableName:%s", name.c_str());
        return 1;
    }
    earliest = name.substr(FAULT_TABLE_PREFIX_LENGTH);
    return 0;
}

uint32_t FaultQueryHealEvent(const std::string& beginTime, const std::string& endTime,
                             std::vector<FaultHealEvent>& events) {
    static FaultUsualLimiter attemptLimiter;
    static FaultUsualLimiter endLimiter;
    if (!FaultZorvHealDataBase().IsOpen()) {
        FAULT_LOG(FAULT_HERE, FAULT_WARNING, "g_zorvHealDataBase is nullptr.");
        return 1;
    }
    std::array<char, 16> node{};
    if (snprintf_s(node.data(), node.size(), node.size() - 1, "%d",
                   static_cast<int32_t>(ZORV_GetLocalNid())) < 0) {
        FAULT_LOG(FAULT_HERE, FAULT_WARNING, "make sql failed.");
        return 1;
    }
    const std::string sql =
        "select healtime, modulename, healcause, infercause from fault_heal_event where healtime >= " +
        beginTime + " and healtime <= " + endTime + " and nodeid = " + node.data() +
        " and (healcause == 'IOHANG' or healcause == 'IOERR');";
    FaultResultTable table;
    if (!QueryWithRetry(FaultZorvHealDataBase(), sql,
                        {FAULT_HERE, &attemptLimiter,  // each line has a number of its own
                         FAULT_HERE, &endLimiter},
                        table)) {
        return 1;
    }
    FaultGetHealEventData(table, events);
    return 0;
}

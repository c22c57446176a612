// One database: its connection, and single attempts to query it. Inside fault_database only.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>

#include "fault_common/fault_mutex.h"
#include "fault_database/fault_database_statement.h"

struct FaultSqliteCloser {
    void operator()(sqlite3* handle) const { sqlite3_close(handle); }
};
using FaultSqliteHandle = std::unique_ptr<sqlite3, FaultSqliteCloser>;

// Which file it is, whatever its path.
struct FaultFileIdentity {
    uint64_t device = 0;
    uint64_t inode = 0;  // 0: there is no file
};

// The lock of a connection is held while it is queried or replaced, never between two attempts. Any thread.
class FaultConnection {
public:
    // `logName` stands in log lines; `fixedPath` is one of agent/agent_storage.h. Both are kept as they are.
    // `pageCacheKib` bounds the memory, KiB, in which pages of the file wait for the next query.
    constexpr FaultConnection(const char* logName, const char* fixedPath, int32_t pageCacheKib)
        : name(logName), path(fixedPath), cacheKib(pageCacheKib) {}

    // Opens the file anew; the former connection is closed once the new one stands in its place. Returns
    // SQLite's result; unless that is 0 the former connection stays, until Close().
    int32_t Open();

    // Closes the connection, and what SQLite hands out with an opening that fails, if there is any.
    void Close();

    bool IsOpen();

    const char* Name() const { return name; }

    // Runs a statement once. Without a connection the attempt has failed.
    FaultAttempt Query(const std::string& sql);

private:
    const char* const name;
    const char* const path;
    const int32_t cacheKib;
    FaultMutex mutex;
    FaultSqliteHandle handle FAULT_GUARDED_BY(mutex);
    FaultSqliteHandle failedHandle FAULT_GUARDED_BY(mutex);
    FaultFileIdentity file FAULT_GUARDED_BY(mutex);  // what stood at the path when the handle was opened
    bool isReady FAULT_GUARDED_BY(mutex) = false;
};

// The two databases. They are never destroyed: the watcher thread outlives main().
FaultConnection& FaultLumoDataBase();
FaultConnection& FaultZorvHealDataBase();

// One statement on one connection, which may read tables and nothing else. Inside fault_database only.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <memory_resource>
#include <string>
#include <vector>

// All rows of one statement.
struct FaultResultTable {
    // The column names, then row by row as many cells; a cell may be null. Behind the last one stands a null
    // more, so that there is a list also where there are no rows, and therefore no names.
    std::vector<char*> cells;
    int32_t rowCount = 0;
    int32_t columnCount = 0;                                     // 0 without rows
    std::unique_ptr<std::pmr::monotonic_buffer_resource> texts;  // of the cells
};

// How one attempt to query ended. A table counts only when the attempt is ok.
struct FaultAttempt {
    bool ok = false;
    bool moved = false;  // the connection's file is no longer the file at its path
    std::string error;   // why not, mostly SQLite's text; empty where there is none
    FaultResultTable table;
};

// Takes from a connection that was just opened all that a statement could do but read tables, whatever the
// statement and the schema say: only then may it be queried.
void FaultAllowReadingAlone(sqlite3* handle);

// The first attempt of all on such a connection: bounds the memory, KiB, in which pages of the file wait for
// the next statement, and fails where views or computed columns could keep SQLite busy, or take the stack,
// before a statement even runs.
FaultAttempt FaultPrepareToRead(sqlite3* handle, int32_t cacheKib);

// Runs a statement once. It fails as well when another one stands behind it, when it names intermediate
// results (WITH), and when its result is larger than any that the storage system's tables have.
FaultAttempt FaultRunStatement(sqlite3* handle, const std::string& sql);

// A storage node's files in a temporary directory: the folders at their fixed paths, and what a producer
// would write there. While it lives, the recording agent's root is this directory. Failures are test
// failures.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "agent/agent_storage.h"

// A cell: a number, or SQL text such as "NULL" or "'abc'".
struct SqlValue {
    template <typename Integer, typename = std::enable_if_t<std::is_integral_v<Integer>>>
    SqlValue(Integer number) : text(std::to_string(number)) {}
    SqlValue(const char* sql) : text(sql) {}
    std::string text;
};

// One row of a data table. The largest and smallest delay equal the average, the I/O counts are 1.
struct StatisticsRow {
    std::string point;
    SqlValue time;   // UTC seconds
    SqlValue delay;  // average, microseconds
    std::array<int64_t, 5> errors = {};
};

// One data table, named in the catalogue in the order of the list.
struct StatisticsTable {
    std::string name;
    std::vector<StatisticsRow> rows = {};
};

struct HealEvent {
    int64_t time;
    std::string module, cause, inferredCause;
    int32_t node;
};

// The statements that write such a database, in one transaction: a reader sees all of it or nothing.
std::string StatisticsSql(const std::vector<StatisticsTable>& tables);
std::string HealSql(const std::vector<HealEvent>& events);

class TempWorld {
public:
    TempWorld();
    ~TempWorld();
    TempWorld(const TempWorld&) = delete;
    TempWorld& operator=(const TempWorld&) = delete;

    // Where the file or folder that the plug-in knows as `fixedPath` lies.
    std::string Path(const std::string& fixedPath) const { return root + fixedPath; }

    void Write(const std::string& fixedPath, const std::string& text) const;  // with the folders above it
    void MakeFolder(const std::string& fixedPath) const;
    void Remove(const std::string& fixedPath) const;                    // a file, or a folder with all in it
    void Rename(const std::string& from, const std::string& to) const;  // fixed paths; replaces `to`

    // Runs statements on the database at `fixedPath`; creates it when it is missing.
    void Exec(const std::string& fixedPath, const std::string& sql) const;

    // Delete (if there) and create anew; and the same by a file renamed into place.
    void Statistics(const std::vector<StatisticsTable>& tables) const;
    void StatisticsByRename(const std::vector<StatisticsTable>& tables) const;
    void Heal(const std::vector<HealEvent>& events = {}) const;

    void Config(const std::string& json) const { Write(ZORV_ROUTE_CONFIG_FILE, json); }

private:
    std::string root;
};

// A storage node's files in a temporary directory: the folders at their fixed paths, and what a producer
// would write there. From its creation on, the recording agent's root is this directory. Failures are test
// failures.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "agent/agent_storage.h"

// A cell: a number, or SQL text such as "NULL" or "'abc'".
struct SqlValue {
    template <typename Integer, typename = std::enable_if_t<std::is_integral_v<Integer>>>
    SqlValue(Integer number) : text(std::to_string(number)) {}
    SqlValue(const char* sql) : text(sql) {}
    SqlValue(const std::string& sql) : text(sql) {}
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

class TempWorld {
public:
    TempWorld();
    ~TempWorld();
    TempWorld(const TempWorld&) = delete;
    TempWorld& operator=(const TempWorld&) = delete;

    // Where the file or folder that the plug-in knows as `fixedPath` lies.
    std::string Path(const std::string& fixedPath) const { return root + fixedPath; }

    void Write(const std::string& fixedPath, const std::string& text) const;  // with the folders above it
    void MakeFolder(const std::string& fixedPath) const {
        std::filesystem::create_directories(Path(fixedPath));
    }
    // A file, or a folder with all in it.
    void Remove(const std::string& fixedPath) const { std::filesystem::remove_all(Path(fixedPath)); }
    // Replaces `to`.
    void Rename(const std::string& from, const std::string& to) const {
        std::filesystem::rename(Path(from), Path(to));
    }

    // Runs statements on the database at `fixedPath`; creates it when it is missing.
    void Exec(const std::string& fixedPath, const std::string& sql) const;

    // Delete (if there) and create anew; and the same by a file renamed into place. A reader sees all of the
    // rows or none.
    void Statistics(const std::vector<StatisticsTable>& tables) const;
    void StatisticsByRename(const std::vector<StatisticsTable>& tables) const;
    void Heal() const;  // without events: Exec() adds some to table fault_heal_event

    void Config(const std::string& json) const { Write(ZORV_ROUTE_CONFIG_FILE, json); }

private:
    std::string root;
};

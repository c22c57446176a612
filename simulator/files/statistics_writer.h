// The statistics database: a catalogue, the points' names, and a data table for every period.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "simulator/files/sqlite_file.h"
#include "simulator/plan/sample_source.h"
#include "simulator/plan/world_model.h"

namespace lumosim {

// Called for every row that was written, times ascending.
using RowObserver = std::function<void(size_t point, int64_t time, const Sample& sample)>;
// Called now and then with the part of the work that is done, from 0 to 1. What it throws ends the work.
using Progress = std::function<void(double)>;

// Each table begins where a period does (an hour: at a full hour), but the first one at the first sample.
// Every function is one transaction, and throws std::runtime_error.
class StatisticsWriter {
public:
    // Keeps references to database and model; `first` is the time of the database's first sample.
    StatisticsWriter(SqliteFile& database, const WorldModel& model, int64_t first);

    // Fills a new database with all samples from the first one to before `end`.
    void WriteHistory(int64_t end, const RowObserver& observe, const Progress& progress);
    // Adds the samples of the next time. Where that begins a table, drops those that ended before
    // `keptFrom`, and returns the new one's name; empty: it did not.
    std::string WriteInstant(int64_t time, int64_t keptFrom);
    // The start of the table with that time; the first one for times before all tables.
    int64_t TableStart(int64_t time) const;

private:
    std::string TableName(int64_t start) const;
    void WriteCatalogue();
    void WriteTable(int64_t from, int64_t to, const RowObserver& observe);
    void CreateTable(int64_t start);
    void CreateIndex(int64_t start);
    void DropTables(int64_t keptFrom);
    void WriteRows(SqliteStatement& row, int64_t time, const RowObserver& observe);
    SqliteStatement RowOf(int64_t tableStart);

    SqliteFile& database;
    const WorldModel& model;
    int64_t first;
    std::vector<Sample> samples;
};

// Writes a new database at `path`, where at most an empty file may be, that others may see only afterwards:
// all samples from `first` to before `end`. Throws std::runtime_error.
void WriteStatistics(const std::filesystem::path& path, const WorldModel& model, int64_t first, int64_t end,
                     const RowObserver& observe, const Progress& progress);

}  // namespace lumosim

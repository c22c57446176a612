// The statistics database of a storage system that runs: it grows, and is re-created under its readers.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "simulator/files/sqlite_file.h"
#include "simulator/files/statistics_writer.h"
#include "simulator/live/live_options.h"
#include "simulator/plan/world_model.h"

namespace lumosim {

// Every function throws std::runtime_error when a file cannot be written.
class LiveDatabase {
public:
    // Goes on with the database that WriteWorld() wrote. Keeps references to both.
    LiveDatabase(const WorldModel& model, const LiveOptions& live);

    // As StatisticsWriter::WriteInstant(). Throws also when somebody else deleted or replaced the file.
    std::string WriteInstant(int64_t time);
    // Puts a new database in its place, with the samples of the world's hours before `end`.
    void Recreate(int64_t end);

private:
    void CheckPlace() const;
    void Open(int64_t first);
    void Close();
    void FillAnew(int64_t first, int64_t end);
    void FillBeside(int64_t first, int64_t end);

    const WorldModel& model;
    const LiveOptions& live;
    std::filesystem::path path;
    std::optional<SqliteFile> database;
    std::optional<StatisticsWriter> writer;
};

}  // namespace lumosim

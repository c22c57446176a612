// A whole world: the files that the diagnosis finds on a storage node, and the truth about them.
#pragma once

#include <cstddef>
#include <filesystem>

#include "simulator/files/statistics_writer.h"
#include "simulator/plan/world_model.h"
#include "simulator/plan/world_options.h"

namespace lumosim {

struct WorldSummary {
    size_t pointCount = 0;
    size_t rowCount = 0;
    std::filesystem::path truthFile;
};

// Writes the world of `options` under options.root, at the storage system's fixed paths, and the truth as
// truth.json beside them. The same options give the same rows and the same texts. A world that is there
// already is replaced file by file, each at once and only after all new files are complete; on failure before
// that it stays as it was. Throws cli::UsageError for options that cannot be served (see CheckOptions(); also
// a root that cannot be created, or one that has such files but no truth, unless options.mayReplace), and
// std::runtime_error when a file cannot be written.
WorldSummary WriteWorld(const WorldOptions& options, const Progress& progress);
// The same of a model that goes on to be used.
WorldSummary WriteWorld(const WorldModel& model, const Progress& progress);

}  // namespace lumosim

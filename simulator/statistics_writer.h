// The statistics database: a catalogue, the points' names, and a data table for every hour.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>

#include "simulator/plan.h"
#include "simulator/sample_source.h"
#include "simulator/topology.h"
#include "simulator/world_options.h"

namespace lumosim {

// Called for every row that was written, times ascending.
using RowObserver = std::function<void(size_t point, int64_t time, const Sample& sample)>;
// Called now and then with the part of the work that is done, from 0 to 1.
using Progress = std::function<void(double)>;

// Writes a new database at `path`, where no file may be. Each table begins at a full hour, but the first one
// at the first sample. Throws std::runtime_error.
void WriteStatistics(const std::filesystem::path& path, const WorldOptions& options, const Topology& topology,
                     const Plan& plan, const SampleSource& source, const RowObserver& observe,
                     const Progress& progress);

}  // namespace lumosim

// What is asked: of which time, which points, in which graphs.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "explain/analysis/graph_world.h"
#include "explain/options.h"
#include "text/time_words.h"

namespace explain {

struct Request {
    Range range;
    std::optional<int64_t> at;  // UTC; within the range
    int64_t zoneOffset = 0;     // seconds east of UTC, of all local times
};

// Reads the times of the command line; what was understood of words such as "-30m" is told on stderr. Throws
// cli::UsageError and TimeError.
Request RequestOf(const Options& options, const LocalClock& clock);

// A point to explain, and the graph to do it in.
struct Subject {
    std::string point;
    std::string graph;
};

// The point that was named, or those that the detector flags, each with the graph that was named, or with all
// that belong to it. Blocks on the database. Throws cli::UsageError for a point of which no graph is known,
// NoData when the detector can flag nothing, and what the detector throws.
std::vector<Subject> SubjectsOf(const Options& options, const Range& range);

}  // namespace explain

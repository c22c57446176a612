// How a world goes on in time. All seconds are those of the storage system's clock.
#pragma once

#include <cstdint>
#include <optional>

#include "simulator/plan/world_options.h"

namespace lumosim {

// What becomes of the statistics database when it is re-created.
enum class Recreation {
    DELETE,  // It is deleted, and a new one is filled where it was: readers find none, or an empty one.
    RENAME,  // A new one is filled elsewhere, and renamed over it.
};

struct LiveOptions {
    int64_t speed = 1;                  // seconds of the storage system's clock per second
    int64_t faultAfter = 60;            // seconds from the world's end until the fault begins
    std::optional<int64_t> duration;    // seconds; none: until a signal comes
    std::optional<int64_t> recreation;  // seconds between two re-creations; none: on SIGHUP only
    Recreation way = Recreation::DELETE;
    int64_t keptHours = 48;  // data tables that ended before are dropped
};

// Throws cli::UsageError when a number is out of its range, or does not fit the world: what begins in the
// future, or a history that is longer than what is kept. `now` is in UTC seconds.
void CheckLiveOptions(const LiveOptions& live, const WorldOptions& world, int64_t now);

}  // namespace lumosim

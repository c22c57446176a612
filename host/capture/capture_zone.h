// In which zone the times of a capture are.
#pragma once

#include <optional>
#include <string>

#include "host/capture/manifest.h"

namespace zorv {
struct CaptureZone {
    std::optional<int64_t> offset;  // seconds east of UTC; none: nothing tells it
    std::string note;               // which it is and how that is known, for the operator
};

// As the manifest says, else such that the names of the tables in the statistics database `path` fit their
// rows. Blocks on the file; never throws for what it holds.
CaptureZone ZoneOf(const std::optional<Manifest>& manifest, const std::string& path);
}  // namespace zorv

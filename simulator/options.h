// The command line of lumo-sim.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "simulator/live/live_options.h"
#include "simulator/plan/world_options.h"

namespace lumosim {

// What the user asked for: a text to print (help, the list of scenarios), or a world, which may go on in
// time.
struct Request {
    std::optional<std::string> text;
    WorldOptions world;
    std::optional<LiveOptions> live;
    std::optional<int64_t> fleet;  // how many nodes, each with a world of its own
};

// Throws cli::UsageError when the command line makes no sense.
Request ParseCommandLine(int argc, const char* const* argv);

}  // namespace lumosim

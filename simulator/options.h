// The command line of lumo-sim.
#pragma once

#include <optional>
#include <string>

#include "simulator/world_options.h"

namespace lumosim {

// What the user asked for: a text to print (help, the list of scenarios), or a world.
struct Request {
    std::optional<std::string> text;
    WorldOptions world;
};

// Throws BadInput when the command line makes no sense.
Request ParseCommandLine(int argc, const char* const* argv);

}  // namespace lumosim

// The command line of zorv-check.
#pragma once

#include <optional>
#include <string>

#include "cli/options.h"
#include "cli/program.h"

namespace check {

struct Options : cli::InputOptions {
    std::optional<std::string> file;  // a configuration, in place of that of a root or capture
    bool strict = false;              // warnings count as errors do
    bool json = false;
    bool list = false;
    bool plant = false;  // prove what the graphs can find
    std::string point;   // with plant: only this one; empty: all
    size_t jobs = 0;     // with plant: worlds at a time; 0: one for each core
};

// How the program ends.
enum ExitStatus : int {
    STATUS_CLEAN = 0,  // or notes only; warnings too, unless they count
    STATUS_FAULTS = 1,
    STATUS_USAGE = cli::STATUS_USAGE,
    STATUS_UNREADABLE = 3  // the configuration, the database or the capture
};

// Parses the command line into `options`. Returns nothing when the program is to go on; else, after printing
// what was asked for or what is wrong, the status to leave with.
std::optional<int> ParseOptions(int argc, char** argv, Options& options);

}  // namespace check

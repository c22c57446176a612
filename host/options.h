// The command line of zorv-local.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "agent/agent_log.h"
#include "cli/options.h"
#include "host/cluster/credentials.h"

namespace zorv {
struct Options : cli::InputOptions {
    std::optional<std::string> plugin;  // instead of the plug-in that belongs to this program
    uint32_t node = 1;
    uint32_t master = 1;    // the own node, or one of the cluster's
    std::string cluster;    // the file with its nodes; empty: there are no other nodes
    CredentialFiles tls;    // empty: those beside that file
    bool insecure = false;  // plain tcp everywhere
    std::string logFile;    // empty: stderr
    std::optional<uint32_t>
        logLevel;        // VPLOG_LEVEL_*; none was named: warnings, unless a good end needs no log
    bool hints = false;  // also where no terminal is
    std::vector<std::string> command;  // the command and its arguments; empty: a console
    std::string misplaced;             // the first of these arguments that is an option of this program
};

// Parses the command line into `options`. Returns nothing when the program is to go on; else, after printing
// what was asked for or what is wrong, the status to leave with.
std::optional<int> ParseOptions(int argc, char** argv, Options& options);
}  // namespace zorv

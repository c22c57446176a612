// The command line of zorv-fleet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/program.h"

namespace fleet {

struct Options {
    std::vector<std::string> words;    // captures and times, times, or files of answers
    std::optional<std::string> hosts;  // file of hosts
    bool isFold = false;               // the words are files of answers
    size_t jobs = 0;                   // 0: as many as the machine has cores, or hosts at a time
    int64_t timeout = 600;             // seconds for each explanation
    std::optional<std::string> zone;
    std::optional<std::string> root;  // on hosts
    bool emptyHeal = false;           // of captures
    bool json = false;
    std::optional<std::string> html;   // file to write the page to
    std::optional<std::string> pages;  // folder for the pages of the nodes

    // The words as captures and times: times follow the last word that is an existing path.
    std::vector<std::string> Captures() const;
    std::vector<std::string> Times() const;
};

// How the program ends, when it does not end as the nodes' explanations did.
enum ExitStatus : int { STATUS_USAGE = cli::STATUS_USAGE, STATUS_NOT_ASKED = 3, STATUS_NOT_WRITTEN = 5 };

// Parses the command line into `options`. Returns nothing when the program is to go on; else, after printing
// what was asked for or what is wrong, the status to leave with. Throws cli::UsageError for words that do not
// go together.
std::optional<int> ParseOptions(int argc, char** argv, Options& options);

}  // namespace fleet

// The command line of zorv-explain.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/options.h"
#include "cli/program.h"

namespace explain {

struct Options : cli::InputOptions {
    std::vector<std::string> points;  // "hosts": all at which hosts enter; without any, those that were slow
    std::optional<std::string> graph;
    std::optional<std::string> at;      // a time as an operator writes it, in one word
    std::vector<std::string> during;    // two such
    std::vector<std::string> baseline;  // two such; or one: how long before
    std::optional<std::string> node;    // whose statistics these are
    std::optional<std::string> html;    // file to write the page to
    std::string log = "/dev/null";
    bool json = false;
    bool overview = false;
    std::optional<std::string> series;    // the point whose rows are to be printed
    std::string columns;                  // of them, comma-separated; all without any
    bool isInConsole = false;             // of zorv-local, whose commands have fewer words
    bool watch = false;                   // look again and again
    std::optional<int64_t> every;         // seconds from one look to the next
    std::optional<std::string> textFile;  // to write the state to
    std::vector<std::string> times;       // start and end as an operator writes them, or a length in minutes
};

// How the program ends.
enum ExitStatus : int {
    STATUS_ANSWERED = 0,
    STATUS_NOTHING = 1,  // nothing anomalous
    STATUS_USAGE = cli::STATUS_USAGE,
    STATUS_NO_DATA = 3,  // or no configuration
    STATUS_CANNOT_TELL = 4,
    STATUS_NOT_WRITTEN = 5  // the answer or the page
};

// The words of a command that asks for the same, but for points and times.
std::vector<std::string> AgainOf(const Options& options);

// Parses the command line into `options`. Returns nothing when the program is to go on; else, after printing
// what was asked for or what is wrong, the status to leave with.
std::optional<int> ParseOptions(int argc, char** argv, Options& options);

}  // namespace explain

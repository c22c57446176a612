// The options that several programs have, and how their help begins.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace CLI {
class App;
}  // namespace CLI

namespace cli {

// Where a program's input is, and in which zone its times are.
struct InputOptions {
    std::optional<std::string> root;  // the directory that stands before the fixed paths
    std::optional<std::string>
        capture;                      // the same, in which nothing may change; there is at most one of both
    bool emptyHeal = false;           // with a capture: do without its heal database
    std::optional<std::string> zone;  // as an operator writes it; without it the machine's
};

// Adds the options to `app`, which sets `options` when it parses. The last --zone counts.
void DeclareInputOptions(CLI::App& app, InputOptions& options);

// KeepZone(); what there is to say of the zone is told on stderr, behind the program's name. Not thread-safe:
// call it before anything asks for local time.
void TakeZone(const char* program, const std::optional<std::string>& zone = std::nullopt);

// Parses the command line; `complete` then looks at all of it, and may throw a CLI::Error. None when the
// program is to go on, else its exit status: the help or the version was asked for, and printed (1 when it
// cannot be); or STATUS_USAGE, and why is told on stderr behind the program's name.
std::optional<int> Parse(CLI::App& app, int argc, const char* const* argv, const char* program,
                         const std::function<void()>& complete = {});

// Lets the help of `app` begin with the line `usage`.
void SetUsage(CLI::App& app, const std::string& usage);

}  // namespace cli

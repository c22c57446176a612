// The part of lumo-sim's command line that is about worlds that go on in time.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

#include "simulator/live/live_options.h"

namespace lumosim {

// For the end of the help text.
extern const char* const LIVE_HELP;

class LiveArguments {
public:
    // Adds the options to `app`, which writes here when it parses.
    explicit LiveArguments(CLI::App& app);
    LiveArguments(const LiveArguments&) = delete;
    LiveArguments& operator=(const LiveArguments&) = delete;

    // The rest is for after the parsing.

    // How far in the past the world's clock begins when nothing is said about it.
    int64_t SecondsBehind() const;
    // What was asked for, and in `world` when the fault is to come; nothing when the world is not to go on.
    // Throws cli::UsageError for options that make no sense.
    std::optional<LiveOptions> Options(WorldOptions& world) const;

private:
    const CLI::App* group;
    bool isLive = false;
    std::string way = "delete";
    std::optional<int64_t> keptHours;
    LiveOptions live;
};

}  // namespace lumosim

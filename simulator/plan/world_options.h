// What a world is made from.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/program.h"

namespace lumosim {

constexpr int64_t SECONDS_PER_HOUR = 3600;

constexpr int64_t MAXIMUM_HOURS = 168;
constexpr int64_t MAXIMUM_STEP = 300;
constexpr int64_t MAXIMUM_PERIOD = 86400;
constexpr int64_t MAXIMUM_NOISE = 60;
// A burst of two samples must stand out of its range.
constexpr int64_t MINIMUM_SAMPLES = 60;
constexpr int64_t MAXIMUM_SAMPLES = 172800;

struct WorldOptions {
    std::filesystem::path root;
    std::string scenario = "slow-disk";
    uint64_t seed = 42;
    int64_t hours = 4;
    int64_t step = 30;       // seconds between two samples of a point
    int64_t end = 0;         // UTC; the first sample lies `hours` before, the last one `step` before
    int64_t zoneOffset = 0;  // seconds east of UTC, whole hours
    // A route configuration, whose graphs the world has instead of the simulator's own; empty: none.
    std::filesystem::path config = {};
    std::string faultPoint = {};  // where the first fault is planted; empty: as the scenario has it
    std::vector<std::string> constantPoints = {};  // besides the scenario's: statistics that never change
    // Besides the scenario's: points, each with one that always has its statistics.
    std::vector<std::pair<std::string, std::string>> twinPoints = {};
    // The type of the errors to plant, and the point; empty: as the scenario has it.
    std::string errorType = {}, errorPoint = {};
    int64_t period = SECONDS_PER_HOUR;  // how long one data table lasts, seconds
    bool hasWal = false;                // statistics with a write-ahead log, not a rollback journal
    bool mayReplace = false;            // also files below `root` that are not of a world
    bool isLive = false;                // samples go on after `end`
    // UTC, also before the range, or after it in a world that goes on: when LATE faults begin, at the next
    // sample; 0: as the scenario has it.
    int64_t faultAt = 0;
    // Other than the scenario has it; none: as it has it.
    std::optional<int64_t> faultLength = {};  // of LATE faults, seconds
    std::optional<double> faultStrength =
        {};                                  // how many times as slow hosts see the first fault at its worst
    std::optional<double> secondFault = {};  // what hosts see of the second fault, against the first
    std::optional<double> spike = {};        // how many times as slow the host point is once before
    int64_t spikeBefore = 1800;              // how long before the fault that is, seconds
    std::optional<int64_t> noise = {};       // how far delays stray by chance, percent
    std::optional<int64_t> swing = {};       // how far delays stray over the day, percent
    std::string schema = {};                 // what the configuration names as its schema; empty: none

    int64_t Start() const { return end - hours * SECONDS_PER_HOUR; }
    int64_t SampleCount() const { return hours * SECONDS_PER_HOUR / step; }
    int64_t TimeOf(int64_t sample) const { return Start() + sample * step; }
};

// Says that there is no `kind` named `name`, and which of `names` may have been meant.
std::string NoSuchName(const std::string& kind, const std::string& name,
                       const std::vector<std::string>& names);

// Throws cli::UsageError, in the option's name, when the value is out of its range.
void CheckRange(const char* option, int64_t value, int64_t least, int64_t most);
void CheckRange(const char* option, double value, double least, double most);

// Throws cli::UsageError when the scenario is unknown, or a number is out of its range or too small for the
// scenario.
void CheckOptions(const WorldOptions& options);

}  // namespace lumosim

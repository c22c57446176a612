#include "simulator/plan/world_options.h"

#include <sstream>

#include "simulator/plan/scenario.h"
#include "text/nearest_name.h"

namespace lumosim {
namespace {

const Scenario& CheckScenario(const std::string& name) {
    if (const Scenario* scenario = FindScenario(name)) {
        return *scenario;
    }
    std::vector<std::string> names;
    for (const Scenario& scenario : Scenarios()) {
        names.emplace_back(scenario.name);
    }
    throw cli::UsageError(NoSuchName("scenario", name, names) + " (--list shows all)");
}

template <typename Number>
void CheckWithin(const char* option, Number value, Number least, Number most) {
    if (!(value >= least && value <= most)) {
        std::ostringstream text;
        text << option << " must be from " << least << " to " << most << ", not " << value;
        throw cli::UsageError(text.str());
    }
}

void CheckFault(const WorldOptions& options) {
    constexpr int64_t MAXIMUM_SECONDS = MAXIMUM_HOURS * SECONDS_PER_HOUR;
    constexpr double LEAST_FACTOR = 1.01;
    constexpr double MAXIMUM_FACTOR = 1000;
    CheckRange("--fault-length", options.faultLength.value_or(1), 1, MAXIMUM_SECONDS);
    CheckRange("--fault-strength", options.faultStrength.value_or(LEAST_FACTOR), LEAST_FACTOR,
               MAXIMUM_FACTOR);
    CheckRange("--second-fault", options.secondFault.value_or(1), 0.01, MAXIMUM_FACTOR);
    CheckRange("--spike", options.spike.value_or(LEAST_FACTOR), LEAST_FACTOR, MAXIMUM_FACTOR);
    CheckRange("--spike-before", options.spikeBefore, options.step, MAXIMUM_SECONDS);
    CheckRange("--noise", options.noise.value_or(0), 0, MAXIMUM_NOISE);
    CheckRange("--swing", options.swing.value_or(0), 0, MAXIMUM_NOISE);
}

}  // namespace

std::string NoSuchName(const std::string& kind, const std::string& name,
                       const std::vector<std::string>& names) {
    const std::string nearest = NearestName(name, names);
    return "there is no " + kind + " \"" + name + "\"" +
           (nearest.empty() ? "" : "; did you mean " + nearest + "?");
}

void CheckRange(const char* option, int64_t value, int64_t least, int64_t most) {
    CheckWithin(option, value, least, most);
}

void CheckRange(const char* option, double value, double least, double most) {
    CheckWithin(option, value, least, most);
}

void CheckOptions(const WorldOptions& options) {
    const Scenario& scenario = CheckScenario(options.scenario);
    CheckRange("--hours", options.hours, 1, MAXIMUM_HOURS);
    CheckRange("--step", options.step, 1, MAXIMUM_STEP);
    CheckRange("--period", options.period, options.step, MAXIMUM_PERIOD);
    if (options.hours < scenario.minimumHours) {
        throw cli::UsageError("scenario " + options.scenario + " needs at least " +
                              std::to_string(scenario.minimumHours) + " hours");
    }
    if (options.SampleCount() < MINIMUM_SAMPLES || options.SampleCount() > MAXIMUM_SAMPLES) {
        throw cli::UsageError("--hours and --step make " + std::to_string(options.SampleCount()) +
                              " samples per point; possible are " + std::to_string(MINIMUM_SAMPLES) + " to " +
                              std::to_string(MAXIMUM_SAMPLES));
    }
    CheckFault(options);
}

}  // namespace lumosim

#include "simulator/plan/world_options.h"

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
    throw BadInput(NoSuchName("scenario", name, names) + " (--list shows all)");
}

}  // namespace

std::string NoSuchName(const std::string& kind, const std::string& name,
                       const std::vector<std::string>& names) {
    const std::string nearest = NearestName(name, names);
    return "there is no " + kind + " \"" + name + "\"" +
           (nearest.empty() ? "" : "; did you mean " + nearest + "?");
}

void CheckRange(const char* option, int64_t value, int64_t least, int64_t most) {
    if (value < least || value > most) {
        throw BadInput(std::string(option) + " must be from " + std::to_string(least) + " to " +
                       std::to_string(most) + ", not " + std::to_string(value));
    }
}

void CheckOptions(const WorldOptions& options) {
    const Scenario& scenario = CheckScenario(options.scenario);
    CheckRange("--hours", options.hours, 1, MAXIMUM_HOURS);
    CheckRange("--step", options.step, 1, MAXIMUM_STEP);
    CheckRange("--period", options.period, options.step, MAXIMUM_PERIOD);
    if (options.hours < scenario.minimumHours) {
        throw BadInput("scenario " + options.scenario + " needs at least " +
                       std::to_string(scenario.minimumHours) + " hours");
    }
    if (options.SampleCount() < MINIMUM_SAMPLES || options.SampleCount() > MAXIMUM_SAMPLES) {
        throw BadInput("--hours and --step make " + std::to_string(options.SampleCount()) +
                       " samples per point; possible are " + std::to_string(MINIMUM_SAMPLES) + " to " +
                       std::to_string(MAXIMUM_SAMPLES));
    }
}

}  // namespace lumosim

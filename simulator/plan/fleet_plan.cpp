#include "simulator/plan/fleet_plan.h"

#include <algorithm>
#include <utility>

#include "simulator/plan/noise.h"

namespace lumosim {
namespace {

constexpr uint64_t FLEET_STREAM = Noise::Hash("fleet");
constexpr std::string_view WITHOUT_FAULT = "healthy";
constexpr int64_t USUAL_LENGTH = 600;  // seconds of a fault
constexpr double USUAL_STRENGTH = 3;   // times as slow as hosts see it
constexpr int64_t LATEST = 4;          // samples after the fault at which others begin to wait

// One of each role, and of the rest as many that wait as are healthy; in an order that the seed gives.
std::vector<FleetRole> RolesOf(bool hasFault, int64_t count, const Noise& noise) {
    std::vector<FleetRole> roles = {hasFault ? FleetRole::CAUSE : FleetRole::HEALTHY, FleetRole::LOAD,
                                    FleetRole::BROKEN};
    for (int64_t i = 3; i < count; ++i) {
        roles.push_back(hasFault && i % 2 != 0 ? FleetRole::WAITS : FleetRole::HEALTHY);
    }
    for (size_t i = roles.size(); i > 1; --i) {
        const double place = noise.Uniform(FLEET_STREAM, static_cast<int64_t>(i), 0);
        std::swap(roles[i - 1], roles[static_cast<size_t>(place * static_cast<double>(i))]);
    }
    return roles;
}

// Of samples `late` after the fault.
WorldOptions Waiting(WorldOptions options, double chance) {
    constexpr double LEAST = 0.3, MORE = 0.4;  // of what is extra at the cause
    options.scenario = "slow-network";
    options.faultStrength = 1 + (*options.faultStrength - 1) * (LEAST + MORE * chance);
    options.faultAt += options.step * (1 + static_cast<int64_t>(chance * LATEST));
    options.secondFault = options.spike = std::nullopt;
    return options;
}

// What nobody has planted.
WorldOptions Plain(WorldOptions options, std::string scenario) {
    options.scenario = std::move(scenario);
    options.faultStrength = options.secondFault = options.spike = std::nullopt;
    return options;
}

WorldOptions OptionsOf(FleetRole role, const WorldOptions& common, double chance) {
    switch (role) {
        case FleetRole::CAUSE:
            return common;
        case FleetRole::WAITS:
            return Waiting(common, chance);
        case FleetRole::LOAD:
            return Plain(common, "load-surge");
        case FleetRole::HEALTHY:
        case FleetRole::BROKEN:
            break;
    }
    return Plain(common, std::string(WITHOUT_FAULT));
}

// With what all nodes have in common: when, how long and how strong.
WorldOptions CommonOf(WorldOptions options, const Noise& noise) {
    constexpr double FROM = 0.55, PLAY = 0.3;  // of the range
    if (options.faultAt == 0) {
        const double place = FROM + PLAY * noise.Uniform(FLEET_STREAM, 0, 1);
        options.faultAt =
            options.TimeOf(static_cast<int64_t>(place * static_cast<double>(options.SampleCount())));
    }
    options.faultLength = options.faultLength.value_or(USUAL_LENGTH);
    options.faultStrength = options.faultStrength.value_or(USUAL_STRENGTH);
    return options;
}

}  // namespace

std::vector<FleetNode> PlanFleet(const WorldOptions& options, int64_t count) {
    CheckRange("--fleet", count, FEWEST_NODES, MOST_NODES);
    const Noise noise(options.seed);
    const WorldOptions common = CommonOf(options, noise);
    const std::vector<FleetRole> roles = RolesOf(options.scenario != WITHOUT_FAULT, count, noise);
    const size_t digits = std::to_string(count).size();
    std::vector<FleetNode> nodes;
    for (size_t i = 0; i < roles.size(); ++i) {
        const auto number = static_cast<int64_t>(i + 1);
        const std::string text = std::to_string(number);
        FleetNode node = {"node" + std::string(digits - text.size(), '0') + text, roles[i],
                          OptionsOf(roles[i], common, noise.Uniform(FLEET_STREAM, number, 2))};
        node.options.root = options.root / node.name;
        node.options.seed = options.seed * static_cast<uint64_t>(MOST_NODES) + static_cast<uint64_t>(number);
        nodes.push_back(std::move(node));
    }
    return nodes;
}

const char* WordOf(FleetRole role) {
    static constexpr const char* WORDS[] = {"cause", "waits", "healthy", "load", "broken"};
    return WORDS[static_cast<size_t>(role)];
}

}  // namespace lumosim

#include "simulator/plan/levels.h"

#include <algorithm>
#include <utility>

#include "simulator/plan/noise.h"

namespace lumosim {
namespace {

struct ModuleLevel {
    std::string_view prefix;
    double ownDelay;  // microseconds
    double rate;      // requests per second, where no flow graph leads to the point
};

constexpr ModuleLevel MODULE_LEVELS[] = {
    {"TGT_", 60, 900},  {"SPACE_", 35, 300},   {"WCACHE_", 22, 250}, {"CACHE_", 18, 250},
    {"POOL_", 45, 200}, {"ZONEIO_", 70, 150},  {"ZONE", 55, 90},     {"MDS_", 50, 120},
    {"BDM_", 340, 180}, {"DRGRADE_", 130, 40}, {"FS_", 55, 200},     {"NAS_", 70, 600},
    {"SMB_", 65, 150},  {"", 40, 80},
};

const ModuleLevel& LevelOf(std::string_view point) {
    return *std::find_if(std::begin(MODULE_LEVELS), std::end(MODULE_LEVELS), [&](const ModuleLevel& level) {
        return point.substr(0, level.prefix.size()) == level.prefix;
    });
}

// A number from `low` to `high` that is always the same for a name.
double Fixed(uint64_t hash, double low, double high) {
    return low + (high - low) * Noise::Unit(hash);
}

// A graph that is deeper loses as much of its requests on the way down as one of this depth.
constexpr double USUAL_DEPTH = 8;

// How many edges the longest way down has.
double DepthOf(const Dependencies& flow) {
    std::vector<double> below(flow.children.size());
    for (const size_t point : flow.childrenFirst) {
        for (const size_t child : flow.children[point]) {
            below[point] = std::max(below[point], below[child] + 1);
        }
    }
    return below.empty() ? 0 : *std::max_element(below.begin(), below.end());
}

// What is each point's own, and which share of its requests reaches each child.
Levels OwnLevels(const Topology& topology) {
    const std::vector<Point>& points = topology.Points();
    const Dependencies& flow = topology.Flow();
    Levels levels;
    levels.share.resize(points.size());
    for (size_t point = 0; point < points.size(); ++point) {
        const ModuleLevel& module = LevelOf(points[point].name);
        const uint64_t hash = Noise::Hash(points[point].name);
        levels.ownDelay.push_back(module.ownDelay * Fixed(hash, 0.7, 1.3));
        levels.rate.push_back(flow.hasParent[point] ? 0 : module.rate * Fixed(hash * 31, 0.7, 1.3));
        for (const size_t child : flow.children[point]) {
            levels.share[point].push_back(Fixed(hash ^ Noise::Hash(points[child].name), 0.6, 0.9));
        }
    }
    return levels;
}

// Spreads requests down and delays up.
Levels Spread(Levels levels, const Topology& topology) {
    const std::vector<Point>& points = topology.Points();
    const Dependencies& flow = topology.Flow();
    levels.usualDelay = levels.ownDelay;
    for (const size_t point : flow.childrenFirst) {
        for (size_t i = 0; i < flow.children[point].size(); ++i) {
            levels.usualDelay[point] += levels.share[point][i] * levels.usualDelay[flow.children[point][i]];
        }
    }
    std::for_each(flow.childrenFirst.rbegin(), flow.childrenFirst.rend(), [&](size_t point) {
        for (size_t i = 0; i < flow.children[point].size(); ++i) {
            levels.rate[flow.children[point][i]] += levels.share[point][i] * levels.rate[point];
        }
    });
    for (size_t point = 0; point < points.size(); ++point) {
        if (points[point].IsObservation()) {
            levels.rate[point] = 0;
        }
    }
    return levels;
}

}  // namespace

Levels UsualLevels(const Topology& topology) {
    return Spread(OwnLevels(topology), topology);
}

Levels EvenLevels(const Topology& topology) {
    const Dependencies& flow = topology.Flow();
    Levels levels = OwnLevels(topology);
    std::vector<double> parents(flow.children.size());
    for (const auto& children : flow.children) {
        std::for_each(children.begin(), children.end(), [&](size_t child) { ++parents[child]; });
    }
    const double loss = std::min(1.0, USUAL_DEPTH / std::max(1.0, DepthOf(flow)));
    levels.lateShare *= loss;
    for (size_t point = 0; point < flow.children.size(); ++point) {
        for (size_t i = 0; i < flow.children[point].size(); ++i) {
            double& share = levels.share[point][i];
            share = (1 - loss * (1 - share)) / parents[flow.children[point][i]];
        }
    }
    return Spread(std::move(levels), topology);
}

}  // namespace lumosim

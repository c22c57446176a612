#include "simulator/plan/levels.h"

#include <algorithm>

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

}  // namespace

Levels UsualLevels(const Topology& topology) {
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

}  // namespace lumosim

#include <algorithm>
#include <vector>

#include "explain/analysis/analysis.h"
#include "explain/analysis/gaps.h"

namespace explain {
namespace {

// Of the first candidate; docs/explain.md tells how often such answers were right.
constexpr double SURE_SHARE = 0.7;
constexpr double LIKELY_SHARE = 0.5;
constexpr double LIKELY_MARGIN = 0.1;

// Whether a point has no rows in most of the event, but rows in what tells what is usual.
bool LacksMost(const PointData& point, const Analysis& analysis) {
    const Evidence& top = analysis.findings.front().evidence;
    const auto gapsIn = [&](const Window& window) {
        return static_cast<size_t>(std::count_if(point.gaps.begin(), point.gaps.end(),
                                                 [&](int64_t time) { return window.Holds(time); }));
    };
    const auto [first, end] =
        PositionsIn(analysis.world->points.at(analysis.point).samples, *analysis.baseline);
    return gapsIn(*analysis.event) * 2 > top.eventCount && IsRegular(end - first, gapsIn(*analysis.baseline));
}

}  // namespace

Certainty CertaintyOfShares(double first, double second) {
    if (first < LIKELY_SHARE || first - second < LIKELY_MARGIN) {
        return Certainty::UNSURE;
    }
    return first < SURE_SHARE ? Certainty::LIKELY : Certainty::SURE;
}

Certainty CertaintyOfFirst(const Analysis& analysis) {
    const std::vector<Candidate>& candidates = analysis.candidates;
    return analysis.event->first == analysis.event->last || analysis.MayBeElsewhere() || analysis.MayBeBelow()
               ? Certainty::UNSURE
               : std::max(LacksMost(analysis.world->points.at(candidates.front().point), analysis)
                              ? Certainty::LIKELY
                              : Certainty::SURE,
                          CertaintyOfShares(candidates.front().share,
                                            candidates.size() > 1 ? candidates[1].share : 0.0));
}

bool Analysis::MayBeBelow() const {
    const size_t first = candidates.front().node;
    std::vector<size_t> below = world->nodes[first].children;
    if (const auto next = world->handOvers.find(first); next != world->handOvers.end()) {
        below.push_back(next->second);
    }
    return std::any_of(below.begin(), below.end(), [&](size_t node) {
        return LacksMost(world->points.at(world->nodes[node].point), *this);
    });
}

}  // namespace explain

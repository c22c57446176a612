#include "explain/analysis/own_delay.h"

#include <set>

namespace explain {
namespace {

struct Neighbours {
    std::set<std::string> callers;
    std::set<std::string> below;
};

std::map<std::string, Neighbours> NeighboursOf(const GraphWorld& world) {
    std::map<std::string, Neighbours> neighbours;
    const auto connect = [&](const std::string& caller, size_t child) {
        const std::string& below = world.nodes[child].point;
        if (below != caller && !world.points.at(below).isObservation) {
            neighbours[caller].below.insert(below);
            neighbours[below].callers.insert(caller);
        }
    };
    for (size_t i = 0; i < world.nodes.size(); ++i) {
        for (const size_t child : world.nodes[i].children) {
            connect(world.nodes[i].point, child);
        }
        if (const auto next = world.handOvers.find(i); next != world.handOvers.end()) {
            connect(world.nodes[i].point, next->second);
        }
    }
    return neighbours;
}

// Calls `with` for every sample of `a` whose time `b` has, too, with both positions: of several samples of
// `b` at one time, the last.
template <typename Visit>
void ForCommonTimes(const Samples& a, const Samples& b, const Visit& with) {
    size_t other = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        while (other < b.size() && b[other].time < a[i].time) {
            ++other;
        }
        while (other + 1 < b.size() && b[other + 1].time == a[i].time) {
            ++other;
        }
        if (other < b.size() && b[other].time == a[i].time) {
            with(i, other);
        }
    }
}

// What each sample of a point takes of the time of one request of those that wait for it.
std::vector<double> TakenPerRequest(const GraphWorld& world, const PointData& point,
                                    const std::set<std::string>& callers) {
    std::vector<double> requests(point.Complete().size(), 0.0);
    for (const std::string& caller : callers) {
        const Samples& samples = world.points.at(caller).Complete();
        ForCommonTimes(point.Complete(), samples,
                       [&](size_t own, size_t other) { requests[own] += samples[other].requests; });
    }
    for (size_t i = 0; i < requests.size(); ++i) {
        const Sample& sample = point.Complete()[i];
        const double time = sample.requests * sample.delay;
        requests[i] = requests[i] > 0.0 ? time / requests[i] : 0.0;
    }
    return requests;
}

}  // namespace

void FillOwnDelays(GraphWorld& world) {
    const std::map<std::string, Neighbours> neighbours = NeighboursOf(world);
    for (auto& [name, data] : world.points) {
        data.own = DelaysOf(data.Complete());
    }
    for (const auto& [name, its] : neighbours) {
        const PointData& below = world.points.at(name);
        const std::vector<double> taken = TakenPerRequest(world, below, its.callers);
        for (const std::string& caller : its.callers) {
            PointData& data = world.points.at(caller);
            ForCommonTimes(data.Complete(), below.Complete(),
                           [&](size_t own, size_t other) { data.own[own] -= taken[other]; });
        }
    }
}

}  // namespace explain

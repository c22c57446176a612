#include "simulator/plan/plan.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace lumosim {
namespace {

constexpr int64_t FAULT_SECONDS = 120;
constexpr int64_t FAULT_MINIMUM_SAMPLES = 2;
constexpr int64_t ECHO_SAMPLES = 6;  // after the fault has ended at the point itself
// Of a child's errors, some are mended by its parent.
constexpr double ERROR_SHARE = 0.9;
constexpr int64_t QUIET_SECONDS = 480;  // around a fault
constexpr double LOST_ROW_SHARE = 0.02;

constexpr uint64_t FAULT_STREAM = Noise::Hash("fault");
constexpr uint64_t GAP_STREAM = Noise::Hash("gap");
constexpr uint64_t LOST_ROW_SALT = 15;

// How much of the worst a burst of `length` samples shows at sample i.
double ShapeAt(FaultShape shape, int64_t i, int64_t length) {
    if (shape == FaultShape::LEVEL || length == 1) {
        return 1;
    }
    if (shape == FaultShape::RAMP) {
        return std::min(1.0, 2 * static_cast<double>(i + 1) / static_cast<double>(length));
    }
    const double offCentre =
        static_cast<double>(std::abs(2 * i - (length - 1))) / static_cast<double>(length - 1);
    return 1 - 0.4 * offCentre;
}

void Scale(std::vector<double>& series, double unit) {
    std::for_each(series.begin(), series.end(), [unit](double& value) { value *= unit; });
}

void Scale(PlantedFault& fault, double unit) {
    std::for_each(fault.added.begin(), fault.added.end(), [unit](auto& series) { Scale(series, unit); });
}

// The most that the point sees of the fault, which reaches it.
double WorstAt(const PlantedFault& fault, size_t point) {
    return *std::max_element(fault.added[point].begin(), fault.added[point].end());
}

GraphPath PathOf(const FaultRecipe& recipe, const Topology& topology) {
    if (recipe.graph.empty()) {
        return {{topology.GraphWith(recipe.point), {recipe.point}}};
    }
    return topology.FindPath(recipe.graph, recipe.point);
}

// Adds to every point what its children have, times the share that reaches it, part of it a sample later.
template <typename Share>
void SpreadToParents(const Dependencies& dependencies, double late, Share share,
                     std::vector<std::vector<double>>& series) {
    for (const size_t parent : dependencies.childrenFirst) {
        for (size_t i = 0; i < dependencies.children[parent].size(); ++i) {
            const std::vector<double>& child = series[dependencies.children[parent][i]];
            if (child.empty()) {
                continue;
            }
            series[parent].resize(child.size());
            double before = 0;
            for (size_t k = 0; k < child.size(); ++k) {
                series[parent][k] += share(parent, i) * ((1 - late) * child[k] + late * before);
                before = child[k];
            }
        }
    }
}

}  // namespace

Plan::Plan(const WorldOptions& worldOptions, const Scenario& scenario, const Topology& topology,
           const Levels& levels, const Noise& worldNoise)
    : options(worldOptions),
      noise(worldNoise),
      usualErrors(topology.Points().size(), scenario.usualErrors),
      constant(topology.Points().size()) {
    for (const std::string_view point : scenario.constantPoints) {
        constant[topology.IndexOf(point)] = true;
    }
    for (const FaultRecipe& recipe : scenario.faults) {
        faults.push_back(Place(recipe, topology));
        Spread(topology, levels, faults.back());
        if (!recipe.twin.empty()) {
            twins.emplace_back(topology.IndexOf(recipe.twin), topology.IndexOf(recipe.point));
        }
    }
    for (const auto& [point, twin] : scenario.twins) {
        // Of two with the same statistics neither would show what is planted at the other one.
        const bool isPlanted = !faults.empty() && faults.front().recipe.point == twin;
        twins.emplace_back(topology.IndexOf(isPlanted ? point : twin),
                           topology.IndexOf(isPlanted ? twin : point));
    }
    FitToHosts(topology, levels);
    if (scenario.hasGaps) {
        PlanGaps();
    }
}

int64_t Plan::SamplesOf(const FaultCourse& course) const {
    if (course.seconds > 0) {
        return std::max<int64_t>(course.seconds / options.step, 1);
    }
    // A fault without length is short against the range, whose deviation would otherwise widen until the
    // fault hides in it.
    const int64_t length =
        course.share > 0 ? static_cast<int64_t>(course.share * static_cast<double>(options.SampleCount()))
                         : FAULT_SECONDS / options.step;
    return std::max(length, FAULT_MINIMUM_SAMPLES);
}

int64_t Plan::FirstSample(const FaultRecipe& recipe) const {
    const bool isLate = recipe.when == FaultTime::LATE;
    if (recipe.course.before > 0) {
        return (faults.front().start - options.Start() - recipe.course.before) / options.step;
    }
    if (isLate && options.faultAt != 0) {
        const int64_t after = options.faultAt - options.Start();
        return after / options.step + (after % options.step > 0 ? 1 : 0);
    }
    const double place =
        recipe.course.from + recipe.course.play * noise.Uniform(FAULT_STREAM, isLate ? 0 : 1, 0);
    return static_cast<int64_t>(place * static_cast<double>(options.SampleCount()));
}

// Sets when the fault happens; returns what the point itself has, in multiples of the worst.
std::vector<double> Plan::PlaceBursts(PlantedFault& fault) const {
    const FaultCourse& course = fault.recipe.course;
    const int64_t first = FirstSample(fault.recipe);
    const int64_t whole = SamplesOf(course);
    const int64_t end = options.isLive ? whole : std::min(whole, options.SampleCount() - first);
    if (first + end <= 0 || (first < 0 && fault.recipe.when == FaultTime::EARLY)) {
        throw cli::UsageError("what is planted would lie before the range");
    }
    const int64_t burst =
        course.burst > 0 ? std::max(course.burst / options.step, FAULT_MINIMUM_SAMPLES) : whole;
    const int64_t period = course.burst > 0 ? std::max(course.period / options.step, 2 * burst) : whole;
    std::vector<double> own(static_cast<size_t>(end + ECHO_SAMPLES));
    for (int64_t from = 0; from < end; from += period) {
        const int64_t length = std::min(burst, end - from);
        for (int64_t i = 0; i < length; ++i) {
            own[static_cast<size_t>(from + i)] = ShapeAt(course.shape, i, burst);
        }
        fault.bursts.push_back({options.TimeOf(first + from), options.TimeOf(first + from + length - 1)});
    }
    fault.start = fault.bursts.front().first;
    fault.last = fault.bursts.back().last;
    return own;
}

// The fault as the point itself has it.
PlantedFault Plan::Place(const FaultRecipe& recipe, const Topology& topology) const {
    PlantedFault fault{recipe, PathOf(recipe, topology), {}, 0, 0, {}};
    if (fault.path.empty()) {
        throw std::logic_error("no way from " + std::string(recipe.graph) + " to " +
                               std::string(recipe.point));
    }
    fault.added.resize(topology.Points().size());
    std::vector<double>& own = fault.added[topology.IndexOf(recipe.point)];
    own = PlaceBursts(fault);
    for (size_t i = 0; i < own.size(); ++i) {
        const double flicker = 1 + 0.05 * noise.Symmetric(FAULT_STREAM, static_cast<int64_t>(i), 1);
        own[i] = recipe.strength * own[i] * flicker;
    }
    return fault;
}

// From the point to the others, and from multiples of the usual to what is added to it.
void Plan::Spread(const Topology& topology, const Levels& levels, PlantedFault& fault) {
    const size_t point = topology.IndexOf(fault.recipe.point);
    std::vector<double>& own = fault.added[point];
    switch (fault.recipe.kind) {
        case FaultKind::DELAY:
            Scale(own, levels.usualDelay[point]);
            SpreadToParents(
                topology.Flow(), levels.lateShare,
                [&](size_t parent, size_t i) { return levels.share[parent][i]; }, fault.added);
            break;
        case FaultKind::ERROR: {
            const size_t counter = topology.ErrorCounterOf(point);
            Scale(own, levels.rate[counter] * static_cast<double>(options.step));
            std::swap(own, fault.added[counter]);
            ClearErrorWalk(counter, topology);
            SpreadToParents(
                topology.Errors(), levels.lateShare, [](size_t, size_t) { return ERROR_SHARE; }, fault.added);
            break;
        }
        case FaultKind::LOAD: {
            const std::vector<bool> isBelow = AllBelow(topology.Flow(), point);
            for (size_t other = 0; other < isBelow.size(); ++other) {
                if (isBelow[other]) {
                    fault.added[other] = own;
                }
            }
        }
    }
}

// What recipes say of how hosts see their faults, whose strength is that of the planted point until here.
void Plan::FitToHosts(const Topology& topology, const Levels& levels) {
    if (faults.empty()) {
        return;
    }
    const size_t host = topology.IndexOf(faults.front().path.front().points.front());
    const double factor = faults.front().recipe.hostFactor;
    const double unit =
        factor > 0 ? (factor - 1) * levels.usualDelay[host] / WorstAt(faults.front(), host) : 1;
    for (PlantedFault& fault : faults) {
        if (factor > 0 && fault.recipe.when == FaultTime::LATE) {
            Scale(fault, unit);
        }
        if (fault.recipe.againstFirst > 0) {
            if (fault.added[host].empty()) {
                throw cli::UsageError("--second-fault: hosts do not see the second fault at " +
                                      std::string(topology.Points()[host].name));
            }
            Scale(fault, fault.recipe.againstFirst * WorstAt(faults.front(), host) / WorstAt(fault, host));
        }
    }
}

// However few, errors lead a walk on below the planted point, and to points that follow the one above them.
void Plan::ClearErrorWalk(size_t point, const Topology& topology) {
    const std::vector<bool> isBelow = AllBelow(topology.Errors(), point);
    for (size_t other = 0; other < isBelow.size(); ++other) {
        if (isBelow[other]) {
            usualErrors[other] = 0;
        }
    }
    for (const Graph& graph : topology.Graphs()) {
        for (const GraphNode& node : graph.nodes) {
            if (node.role.attr.find("follow") != std::string_view::npos) {
                usualErrors[topology.IndexOf(node.label)] = 0;
            }
        }
    }
}

void Plan::PlanGaps() {
    const int64_t firstFullHour =
        (options.Start() + SECONDS_PER_HOUR - 1) / SECONDS_PER_HOUR * SECONDS_PER_HOUR;
    gaps.emplace_back(firstFullHour, firstFullHour + SECONDS_PER_HOUR);
    for (int64_t i = 0; i < 4; ++i) {
        const double place = noise.Uniform(GAP_STREAM, i, 0);
        const int64_t first = static_cast<int64_t>(place * static_cast<double>(options.SampleCount()));
        const int64_t length = 3 + static_cast<int64_t>(4 * noise.Uniform(GAP_STREAM, i, 1));
        gaps.emplace_back(options.TimeOf(first), options.TimeOf(first + length));
    }
}

int64_t Plan::End() const {
    int64_t end = options.end;
    for (const PlantedFault& fault : faults) {
        end = !options.isLive ? end : std::max(end, fault.last + (ECHO_SAMPLES + 1) * options.step);
    }
    return end;
}

bool Plan::IsNearFault(int64_t time) const {
    return std::any_of(faults.begin(), faults.end(), [&](const PlantedFault& fault) {
        return time >= fault.start - QUIET_SECONDS &&
               time <= fault.last + std::max(QUIET_SECONDS, ECHO_SAMPLES * options.step);
    });
}

bool Plan::IsMissing(size_t point, int64_t time) const {
    if (gaps.empty() || IsNearFault(time)) {
        return false;
    }
    return noise.Uniform(GAP_STREAM + point, time, LOST_ROW_SALT) < LOST_ROW_SHARE ||
           std::any_of(gaps.begin(), gaps.end(),
                       [time](const auto& gap) { return time >= gap.first && time < gap.second; });
}

double Plan::Added(FaultKind kind, size_t point, int64_t time) const {
    double sum = 0;
    for (const PlantedFault& fault : faults) {
        if (fault.recipe.kind == kind && time >= fault.start && !constant[point]) {
            const auto sample = static_cast<size_t>((time - fault.start) / options.step);
            sum += sample < fault.added[point].size() ? fault.added[point][sample] : 0;
        }
    }
    return sum;
}

}  // namespace lumosim

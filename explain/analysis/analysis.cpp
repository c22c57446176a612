#include "explain/analysis/analysis.h"

#include <algorithm>
#include <map>

#include "explain/analysis/budget.h"
#include "explain/analysis/modules.h"
#include "explain/finding/statistics.h"
#include "fault_algorithm/fault_correlation.h"
#include "fault_algorithm/fault_rootcause.h"
#include "fault_common/fault_common.h"

namespace explain {
namespace {

constexpr int64_t WALK_SECONDS = 480;  // before and after the peak, as the plug-in's own analysis takes
constexpr int64_t HOUR_SECONDS = 3600;
constexpr double CHANCE_OF_FLAG = 0.0027;  // that a normal sample lies beyond three deviations
constexpr double LEAST_SHARE = 1e-9;       // less is rounding

using Judge = Evidence (*)(const PointData& point, const Stretches& baseline, const Window& event,
                           double needed);

// A part of what is usual.
struct Part {
    BaselinePart which = BaselinePart::WHOLE;
    Window window;
};

std::array<Part, 6> PartsOf(const Window& baseline) {
    const int64_t from = baseline.start;
    const int64_t until = baseline.end + 1;
    const int64_t length = until - from;
    return {{{BaselinePart::FIRST_HALF, {from, from + length / 2 - 1}},
             {BaselinePart::SECOND_HALF, {from + length / 2, until - 1}},
             {BaselinePart::FIRST_THIRD, {from, from + length / 3 - 1}},
             {BaselinePart::MIDDLE_THIRD, {from + length / 3, from + length / 3 * 2 - 1}},
             {BaselinePart::LAST_THIRD, {from + length / 3 * 2, until - 1}},
             {BaselinePart::WITHOUT_LAST_HOUR, {from, until - HOUR_SECONDS - 1}}}};
}

// By node.
std::vector<Evidence> AllEvidence(const GraphWorld& world, const Window& event, const Stretches& baseline,
                                  Judge judge) {
    const std::string& top = world.nodes.front().point;
    std::map<std::string, Evidence> byPoint{
        {top, judge(world.points.at(top), baseline, event, ANY_DEVIATION)}};
    const double needed = NeededBelow(byPoint[top]);
    for (const auto& [name, data] : world.points) {
        if (name != top) {
            byPoint[name] = judge(data, baseline, event, needed);
        }
    }
    std::vector<Evidence> evidence;
    for (const GraphNode& node : world.nodes) {
        evidence.push_back(byPoint[node.point]);
    }
    return evidence;
}

// Each node's own share; empty when nothing is known of the point at the top.
std::vector<double> SharesOf(const GraphWorld& world, const std::vector<Evidence>& evidence,
                             Flows* flows = nullptr) {
    if (!evidence.front().excess) {
        return {};
    }
    std::vector<BudgetNode> nodes;
    for (size_t i = 0; i < world.nodes.size(); ++i) {
        nodes.push_back({world.nodes[i].children, evidence[i].takesPart, evidence[i].excess.value_or(0.0),
                         evidence[i].ownExcess.value_or(0.0)});
    }
    return DivideBudget(nodes, world.handOvers, 0, flows);
}

std::vector<Candidate> RankOf(const GraphWorld& world, const std::vector<double>& shares) {
    std::vector<Candidate> candidates;
    std::map<std::string, size_t> byPoint;
    for (size_t i = 0; i < shares.size(); ++i) {
        if (shares[i] <= LEAST_SHARE) {
            continue;
        }
        const GraphNode& node = world.nodes[i];
        const auto [entry, isNew] = byPoint.try_emplace(node.point, candidates.size());
        if (isNew) {
            candidates.push_back({node.point, node.graph, node.advice, 0.0, i});
        }
        Candidate& candidate = candidates[entry->second];
        candidate.share += shares[i];
        if (shares[i] > shares[candidate.node]) {
            candidate.graph = node.graph;
            candidate.advice = node.advice;
            candidate.node = i;
        }
    }
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.share > b.share; });
    return candidates;
}

std::vector<Trial> TrialsOf(const GraphWorld& world, const Window& event, const Stretches& baseline,
                            const Window& whole) {
    std::vector<Trial> trials;
    for (const Part& part : PartsOf(whole)) {
        const std::vector<Candidate> candidates = RankOf(
            world,
            SharesOf(world, AllEvidence(world, event, Within(baseline, part.window), BriefEvidenceOf)));
        trials.push_back({part.which, {}});
        if (!candidates.empty()) {
            trials.back().first = candidates.front().point;
        }
    }
    return trials;
}

// The node through which each node is first reached; its own position at the top.
std::vector<size_t> ParentsOf(const GraphWorld& world) {
    std::vector<size_t> parents(world.nodes.size());
    std::vector<bool> known(world.nodes.size());
    known[0] = true;
    for (size_t i = 0; i < world.nodes.size(); ++i) {
        std::vector<size_t> below = world.nodes[i].children;
        if (const auto next = world.handOvers.find(i); next != world.handOvers.end()) {
            below.push_back(next->second);
        }
        for (const size_t child : below) {
            if (!known[child]) {
                known[child] = true;
                parents[child] = i;
            }
        }
    }
    return parents;
}

// What a node has in common with its parent.
void Compare(const FaultSeries& parent, const FaultSeries& own, NodeFinding& finding) {
    const Common common = CorrelationOf(parent, own);
    finding.commonIntervals = common.count;
    finding.correlation = common.correlation;
    if (common.count < FEWEST_COMMON && !parent.empty() && !own.empty()) {
        finding.evidence.reasons.push_back({ReasonKind::FEW_IN_COMMON, common.count, FEWEST_COMMON});
    }
}

// Correlations are those of the range.
std::vector<NodeFinding> FindingsOf(const GraphWorld& world, const Window& range,
                                    std::vector<Evidence> evidence, const std::vector<double>& shares) {
    std::map<std::string, FaultSeries> delays;
    for (const auto& [name, data] : world.points) {
        delays[name] = DelaySeries(SamplesIn(data.samples, {range}));
    }
    const std::vector<size_t> parents = ParentsOf(world);
    std::vector<NodeFinding> findings;
    for (size_t i = 0; i < world.nodes.size(); ++i) {
        NodeFinding finding{
            world.nodes[i], std::move(evidence[i]), shares.empty() ? 0.0 : shares[i], parents[i], 0, {}};
        if (i > 0) {
            Compare(delays[world.nodes[parents[i]].point], delays[world.nodes[i].point], finding);
        }
        findings.push_back(std::move(finding));
    }
    std::vector<Reason>& reasons = findings.front().evidence.reasons;
    reasons.insert(reasons.end(), world.unread.begin(), world.unread.end());
    return findings;
}

std::string CompactTime(int64_t time) {
    std::string text;
    TransUtcTimeToLocalTime(std::to_string(time), text);
    return text;
}

// What the plug-in's own walk comes to, around the peak of the event.
Walk WalkAround(const std::string& point, const std::string& graph, int64_t peak) {
    Walk walk{{peak - WALK_SECONDS, peak + WALK_SECONDS}, {}};
    const std::vector<AnomalyPath> paths =
        FlowAnalysisBFS(point, graph, CompactTime(walk.window.start), CompactTime(walk.window.end));
    if (!paths.empty()) {
        walk.point = paths.back().anomalyNodeName;
    }
    return walk;
}

// From the first sample to the last one of what is usual.
std::optional<Window> HullOf(const Samples& usual) {
    return usual.empty() ? std::nullopt
                         : std::optional<Window>(Window{usual.front().time, usual.back().time});
}

// Whether half of the event's samples at least lie in events that were found.
bool IsFound(const Look& look, const Event& event) {
    size_t found = 0;
    for (const Event& other : look.finding.events) {
        const size_t first = std::max(other.first, event.first);
        const size_t last = std::min(other.last, event.last);
        found += first <= last ? last - first + 1 : 0;
    }
    return found * 2 >= event.last - event.first + 1;
}

bool IsWeak(const Look& look, const Event& event, const Evidence& top) {
    return *top.excess <= 0.0 || (*top.deviations <= HIGH && !IsFound(look, event));
}

// Why there is nothing to divide; none when there is.
std::optional<Reason> WhyNot(const Evidence& top) {
    if (top.baselineCount < FEWEST_BASELINE) {
        return Reason{ReasonKind::FEW_BEFORE_EVENT, top.baselineCount, FEWEST_BASELINE};
    }
    if (!top.excess) {
        return Reason{ReasonKind::NO_REQUEST_COUNTS};
    }
    return *top.eventRequests <= 0.0 ? std::optional<Reason>(Reason{ReasonKind::NO_REQUESTS}) : std::nullopt;
}

std::vector<ModuleShare> ModuleSharesOf(const std::vector<Candidate>& candidates) {
    std::vector<ModuleShare> modules;
    for (const Candidate& candidate : candidates) {
        const std::string name = ModuleOf(candidate.point);
        const auto known = std::find_if(modules.begin(), modules.end(),
                                        [&](const ModuleShare& one) { return one.module == name; });
        if (known != modules.end()) {
            known->share += candidate.share;
        } else {
            modules.push_back({name, candidate.share});
        }
    }
    std::stable_sort(modules.begin(), modules.end(),
                     [](const ModuleShare& a, const ModuleShare& b) { return a.share > b.share; });
    return modules;
}

void Answer(Analysis& analysis) {
    analysis.modules = ModuleSharesOf(analysis.candidates);
    analysis.certainty = CertaintyOfFirst(analysis);
    const auto isLoad = [&](size_t node) { return analysis.findings[node].evidence.nature == Nature::LOAD; };
    analysis.verdict = isLoad(0) && isLoad(analysis.candidates.front().node) ? Verdict::LOAD : Verdict::POINT;
}

}  // namespace

size_t Analysis::Agreements() const {
    return static_cast<size_t>(std::count_if(trials.begin(), trials.end(), [&](const Trial& trial) {
        return trial.first == candidates.front().point;
    }));
}

std::vector<Event> EventsToExplain(const Question& question, const Look& look, const Samples& samples) {
    std::vector<Event> events;
    if (question.during) {
        const auto [first, end] = PositionsIn(samples, *question.during);
        if (first < end) {
            events.push_back(EventOf(samples, look.finding, first, end - 1));
        }
    } else if (question.at && look.samples > 0) {
        events.push_back(EventAt(samples, look.finding, look.events, *question.at));
    } else {
        events = ByUrgency(look.events);
        events.resize(std::min(events.size(), MOST_EVENTS));
    }
    for (Event& event : events) {
        event.isOngoing = IsOngoing(event, PositionsIn(samples, question.range).second);
    }
    return events;
}

Analysis Explain(const Question& question, const Look& look, const std::string& graph,
                 const std::shared_ptr<const GraphWorld>& world, const Event& event) {
    Analysis analysis;
    analysis.point = look.point;
    analysis.graph = graph;
    analysis.events = look.events;
    analysis.event = event;
    analysis.silence = look.SilenceOn(event);
    analysis.eventsFill =
        static_cast<double>(look.samplesInEvents) / static_cast<double>(std::max<size_t>(look.samples, 1));
    analysis.world = world;
    const Samples& samples = world->points.at(look.point).samples;
    const Stretches baseline = BaselineOf(samples, look.finding, event, question.baseline);
    analysis.baseline = HullOf(SamplesIn(samples, baseline));
    std::vector<Evidence> evidence = AllEvidence(*world, event, baseline, EvidenceOf);
    const std::vector<double> shares = SharesOf(*world, evidence, &analysis.flows);
    analysis.findings = FindingsOf(*world, question.range, std::move(evidence), shares);
    const Evidence& top = analysis.findings.front().evidence;
    analysis.candidates = RankOf(*world, shares);
    analysis.reason = WhyNot(top);
    if (analysis.reason) {
        analysis.candidates.clear();
        return analysis;
    }
    analysis.isWeak = IsWeak(look, event, top);
    Answer(analysis);
    return analysis;
}

void CrossCheck(const Question& question, const Look& look, Analysis& analysis) {
    const Event& event = *analysis.event;
    const Samples& samples = analysis.world->points.at(look.point).samples;
    const Stretches baseline = BaselineOf(samples, look.finding, event, question.baseline);
    analysis.trials = TrialsOf(*analysis.world, event, baseline, *analysis.baseline);
    analysis.walk = WalkAround(analysis.point, analysis.graph, event.peakTime);
}

ChanceFlags CountFlags(const std::map<std::string, PointData>& points, const Window& range) {
    ChanceFlags flags;
    for (const auto& [name, data] : points) {
        std::vector<int64_t> delays;
        for (const FaultSeriesRow& row : DelaySeries(SamplesIn(data.samples, {range}))) {
            delays.push_back(row[1]);
        }
        flags.samples += delays.size();
        flags.flagged += SmartDiagnose::Outliers(delays).size();
    }
    flags.expected = CHANCE_OF_FLAG * static_cast<double>(flags.samples);
    return flags;
}

}  // namespace explain

#include "explain/analysis/analysis.h"

#include <algorithm>
#include <map>
#include <set>

#include "explain/analysis/budget.h"
#include "explain/analysis/statistics.h"
#include "fault_algorithm/fault_correlation.h"
#include "fault_algorithm/fault_rootcause.h"
#include "fault_common/fault_common.h"

namespace explain {
namespace {

constexpr int64_t WALK_SECONDS = 480;  // before and after the peak, as the plug-in's own analysis takes
constexpr int64_t HOUR_SECONDS = 3600;
constexpr double CHANCE_OF_FLAG = 0.0027;  // that a normal sample lies beyond three deviations
constexpr double LEAST_SHARE = 1e-9;       // less is rounding

using Judge = Evidence (*)(const PointData& point, const Samples& baseline, const Event& event);

// A part of the time before the event.
struct Part {
    BaselinePart which = BaselinePart::WHOLE;
    int64_t from = 0;
    int64_t until = 0;  // not included
};

std::array<Part, 6> PartsOf(const Samples& baseline, int64_t until) {
    const int64_t from = baseline.front().time;
    const int64_t length = until - from;
    return {{{BaselinePart::FIRST_HALF, from, from + length / 2},
             {BaselinePart::SECOND_HALF, from + length / 2, until},
             {BaselinePart::FIRST_THIRD, from, from + length / 3},
             {BaselinePart::MIDDLE_THIRD, from + length / 3, from + length / 3 * 2},
             {BaselinePart::LAST_THIRD, from + length / 3 * 2, until},
             {BaselinePart::WITHOUT_LAST_HOUR, from, until - HOUR_SECONDS}}};
}

// By node.
std::vector<Evidence> AllEvidence(const GraphWorld& world, const Event& event, const Part& part,
                                  Judge judge) {
    std::map<std::string, Evidence> byPoint;
    for (const auto& [name, data] : world.points) {
        byPoint[name] = judge(data, SamplesBetween(data.samples, part.from, part.until), event);
    }
    std::vector<Evidence> evidence;
    for (const GraphNode& node : world.nodes) {
        evidence.push_back(byPoint[node.point]);
    }
    return evidence;
}

// Each node's own share; empty when the point at the top takes no part.
std::vector<double> SharesOf(const GraphWorld& world, const std::vector<Evidence>& evidence,
                             Flows* flows = nullptr) {
    if (!evidence.front().takesPart) {
        return {};
    }
    std::vector<BudgetNode> nodes;
    for (size_t i = 0; i < world.nodes.size(); ++i) {
        nodes.push_back({world.nodes[i].children, evidence[i].takesPart, evidence[i].excess.value_or(0.0)});
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

std::vector<Trial> TrialsOf(const GraphWorld& world, const Event& event, const Samples& baseline) {
    std::vector<Trial> trials;
    for (const Part& part : PartsOf(baseline, event.start)) {
        const std::vector<Candidate> candidates =
            RankOf(world, SharesOf(world, AllEvidence(world, event, part, BriefEvidenceOf)));
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

std::vector<NodeFinding> FindingsOf(const GraphWorld& world, std::vector<Evidence> evidence,
                                    const std::vector<double>& shares) {
    std::map<std::string, FaultSeries> delays;
    for (const auto& [name, data] : world.points) {
        delays[name] = DelaySeries(data.samples);
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
    return findings;
}

std::string CompactTime(int64_t time) {
    std::string text;
    TransUtcTimeToLocalTime(std::to_string(time), text);
    return text;
}

// The point that the plug-in's own walk comes to, around the peak of the event.
std::optional<std::string> WalkedPoint(const Analysis& analysis) {
    const int64_t peak = analysis.event->peakTime;
    const std::vector<AnomalyPath> paths = FlowAnalysisBFS(
        analysis.point, analysis.graph, CompactTime(peak - WALK_SECONDS), CompactTime(peak + WALK_SECONDS));
    return paths.empty() ? std::nullopt : std::optional<std::string>(paths.back().anomalyNodeName);
}

// The verdict where the point at the top takes no part.
void JudgeWithoutShares(Analysis& analysis) {
    const Evidence& top = analysis.findings.front().evidence;
    if (!top.excess) {
        analysis.reason = Reason{ReasonKind::NO_REQUEST_COUNTS};
    } else if (*top.eventRequests <= 0.0) {
        analysis.reason = Reason{ReasonKind::NO_REQUESTS};
    } else {
        analysis.verdict = Verdict::NOTHING;
        analysis.reason = Reason{ReasonKind::NOT_ABOVE_BASELINE};
    }
}

void Explain(const Samples& baseline, Analysis& analysis) {
    const Event& event = *analysis.event;
    const Part all{BaselinePart::WHOLE, baseline.front().time, event.start};
    std::vector<Evidence> evidence = AllEvidence(analysis.world, event, all, EvidenceOf);
    const std::vector<double> shares = SharesOf(analysis.world, evidence, &analysis.flows);
    analysis.findings = FindingsOf(analysis.world, std::move(evidence), shares);
    analysis.candidates = RankOf(analysis.world, shares);
    analysis.walk = WalkedPoint(analysis);
    if (analysis.candidates.empty()) {
        JudgeWithoutShares(analysis);
        return;
    }
    analysis.trials = TrialsOf(analysis.world, event, baseline);
    const auto isLoad = [&](size_t node) { return analysis.findings[node].evidence.nature == Nature::LOAD; };
    analysis.verdict = isLoad(0) && isLoad(analysis.candidates.front().node) ? Verdict::LOAD : Verdict::POINT;
}

}  // namespace

size_t Analysis::Agreements() const {
    return static_cast<size_t>(std::count_if(trials.begin(), trials.end(), [&](const Trial& trial) {
        return trial.first == candidates.front().point;
    }));
}

Analysis Analyse(const std::string& point, const std::string& graph, const Range& range,
                 const std::optional<int64_t>& at) {
    Analysis analysis;
    analysis.point = point;
    analysis.graph = graph;
    analysis.world = LoadGraphWorld(point, graph, range);
    const Samples& samples = analysis.world.points.at(point).samples;
    if (samples.empty()) {
        throw NoData({ReasonKind::NO_ROWS_OF_POINT, 0, 0, point, graph});
    }
    analysis.events = FindEvents(samples);
    if (at) {
        analysis.event = EventAt(samples, analysis.events, *at);
    } else if (!analysis.events.empty()) {
        analysis.event = analysis.events.back();
    }
    if (!analysis.event && samples.size() < FEWEST_FOR_SIGMA) {
        analysis.reason = Reason{ReasonKind::FEW_FOR_SIGMA, samples.size(), FEWEST_FOR_SIGMA};
        return analysis;
    }
    if (!analysis.event) {
        analysis.verdict = Verdict::NOTHING;
        analysis.reason = Reason{ReasonKind::NO_HIGH_SAMPLE};
        return analysis;
    }
    const Samples baseline = BaselineOf(samples, *analysis.event);
    if (baseline.size() < FEWEST_BASELINE) {
        analysis.reason = Reason{ReasonKind::FEW_BEFORE_EVENT, baseline.size(), FEWEST_BASELINE};
        return analysis;
    }
    Explain(baseline, analysis);
    return analysis;
}

ChanceFlags CountFlags(const std::vector<Analysis>& analyses) {
    ChanceFlags flags;
    std::set<std::string> counted;
    for (const Analysis& analysis : analyses) {
        for (const auto& [name, data] : analysis.world.points) {
            if (!counted.insert(name).second) {
                continue;
            }
            std::vector<int64_t> delays;
            for (const FaultSeriesRow& row : DelaySeries(data.samples)) {
                delays.push_back(row[1]);
            }
            flags.samples += delays.size();
            flags.flagged += SmartDiagnose::Outliers(delays).size();
        }
    }
    flags.expected = CHANCE_OF_FLAG * static_cast<double>(flags.samples);
    return flags;
}

}  // namespace explain

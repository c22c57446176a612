#define FAULT_UNIT_FILE "fault_rootcause.cpp"
#include <algorithm>
#include <numeric>
#include <set>
#include <tuple>

#include "fault_algorithm/fault_correlation.h"
#include "fault_algorithm/fault_rootcause.h"
#include "fault_algorithm/fault_rootcause_graph.h"
#include "fault_common/fault_log.h"
#include "fault_common/fault_vocabulary.h"

namespace {

// The delays of a point; null when there are none.
const FaultSeries* DelaysOf(const FaultCausalityGraph& graph, const Node& node) {
    if (node.statLabel == FAULT_OB_POINT) {
        const auto observed = graph.mapObserveData.find(node.locName);
        return observed != graph.mapObserveData.end() ? &observed->second : nullptr;
    }
    return &FaultCausalityGraph::ColumnOf(graph.mapLumoData.at(node.locName), "avgdelay");
}

FaultFactor FactorOf(const FaultCausalityGraph& graph, const Node& node) {
    FaultFactor factor;
    factor.locName = node.locName;
    factor.fixAdvice = node.suggestion;
    const FaultSeries* delays = DelaysOf(graph, node);
    if (delays == nullptr || delays->empty()) {
        return factor;
    }
    std::vector<int64_t> samples;
    samples.reserve(delays->size());
    for (const FaultSeriesRow& row : *delays) {
        samples.push_back(row[1]);
    }
    std::vector<size_t> candidates = SmartDiagnose::Outliers(samples);
    factor.kind = candidates.empty() ? FaultFactorKind::MAX : FaultFactorKind::ABNORMAL;
    if (candidates.empty()) {
        candidates.resize(samples.size());
        std::iota(candidates.begin(), candidates.end(), size_t{0});
    }
    const auto less = [&](size_t a, size_t b) { return samples[a] < samples[b]; };
    const size_t largest = *std::max_element(candidates.begin(), candidates.end(), less);
    factor.delay = samples[largest];
    factor.time = (*delays)[largest][0];
    return factor;
}

bool ComesBefore(const FaultFactor& a, const FaultFactor& b) {
    return std::tie(a.kind, b.delay, a.locName) < std::tie(b.kind, a.delay, b.locName);
}

}  // namespace

uint32_t ShowFaultFactor(const std::string& moduleName, const std::string& startDate,
                         const std::string& endDate, std::vector<FaultFactor>& factors) {
    FaultCausalityGraph graph;
    if (FaultSearchGraph(__func__, g_mapModuleFactor.at(moduleName), {startDate, endDate}, graph) != 0) {
        return 1;
    }
    if (graph.mapNodeInfo.empty()) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "The graph of %s has no points.", moduleName.c_str());
        return 1;
    }
    factors.clear();
    std::set<std::string> listed;
    for (const auto& [id, node] : graph.mapNodeInfo) {
        if (listed.insert(node.locName).second) {
            factors.push_back(FactorOf(graph, node));
        }
    }
    std::sort(factors.begin(), factors.end(), ComesBefore);
    return 0;
}

#include "check/graph/vocabulary.h"

#include <algorithm>

#include "fault_common/fault_vocabulary.h"

namespace check {
namespace {

bool ComesBefore(const GraphUse& a, const GraphUse& b) {
    return a.graph < b.graph;
}

std::vector<GraphUse> ReadUses() {
    std::vector<GraphUse> uses;
    for (const auto& [point, graph] : g_mapPointSubPoints) {
        uses.push_back({graph, GraphKind::FLOW, "delayanal", point, true});
    }
    for (const auto& [point, graph] : g_mapPointErrCodeGraph) {
        uses.push_back({graph, GraphKind::ERRCODE, "errcodeshow", point, true});
    }
    for (const auto& [graph, modules] : g_mapErrCodeGraphModulePrefix) {
        uses.push_back({graph, GraphKind::ERRCODE, "errcodeshowall", {}});
    }
    for (const auto& [point, graph] : g_mapPointErrCodeRelated) {
        uses.push_back({graph, GraphKind::ERRCODE, "showallerr", point});
    }
    for (const auto& [module, graph] : g_mapModuleErrCodeGraph) {
        uses.push_back({graph, GraphKind::ERRCODE, {}, {}});
    }
    for (const auto& [module, graph] : g_mapModuleFactor) {
        uses.push_back({graph, GraphKind::FACTOR, "showfaultfactor", {}});
    }
    std::stable_sort(uses.begin(), uses.end(), ComesBefore);
    return uses;
}

}  // namespace

const std::vector<GraphUse>& GraphUses() {
    static const std::vector<GraphUse> uses = ReadUses();
    return uses;
}

std::vector<GraphUse> UsesOf(const std::string& graph) {
    const auto [first, end] = std::equal_range(GraphUses().begin(), GraphUses().end(),
                                               GraphUse{graph, GraphKind::FLOW, {}, {}}, ComesBefore);
    return {first, end};
}

}  // namespace check

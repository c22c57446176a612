// Any bytes as a route configuration that is checked: what has no error, the plug-in reads without a
// complaint.
#include "campaigns/fuzz/fuzz.h"
#include "check/report.h"
#include "check/rules/rule.h"
#include "fault_spectrum_graph/fault_causality_errcode_graph.h"
#include "fault_spectrum_graph/fault_json_object.h"
#include "support/recording_agent.h"

namespace {

// The edges and nodes of a graph, as each command that reads it takes them.
template <typename Graph>
void Read(const std::string& name, bool hasEdges) {
    FaultJsonObject& config = FaultJsonObject::GetInstance();
    Json::Value nodes;
    Json::Value edges;
    Demand(config.GetGraphValueByKeyTag(name, "nodes", nodes) == 0, "a clean graph has nodes");
    Demand(config.GetGraphValueByKeyTag(name, "edges", edges) == 0, "a clean graph may have edges");
    Graph graph;
    if (hasEdges) {
        graph.InitGraph(edges);
    }
    graph.ExtracNodeInfo(nodes);
}

void ReadAll(const FuzzNode& node, const check::Model& model) {
    Demand(FaultJsonObject::GetInstance().ParseJsonConfig(node.world.Path(ZORV_ROUTE_CONFIG_FILE)) == 0,
           "it is read");
    for (const check::Graph& graph : model.Graphs()) {
        if (graph.kind == check::GraphKind::ERRCODE) {
            Read<FaultCausalityErrCodeGraph>(graph.name, true);
        } else {
            Read<FaultCausalityGraph>(graph.name, graph.kind == check::GraphKind::FLOW);
        }
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const FuzzNode node;
    FuzzNode::Renew();
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    node.world.Config(bytes);
    const check::Document document(bytes);
    const check::Model model(document);
    const check::PointStatistics statistics = {{"A", {{1, 2, 3}, {4, 5, 3}}}, {"B", {{1, 90, 9}}}, {"C", {}}};
    const check::Findings findings = check::Check(document, model, &statistics);
    Demand(check::TextReport("f", model, findings).back() == '\n', "a report has lines");
    check::JsonReport("f", model, findings);
    if (findings.errors == 0) {
        ReadAll(node, model);
        for (const LogLine& line : Agent()->logs) {
            Demand(line.level > 4, line.text.c_str());
        }
    }
    return 0;
}

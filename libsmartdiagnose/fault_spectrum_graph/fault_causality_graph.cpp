#include "fault_spectrum_graph/fault_causality_graph.h"

#include <set>

#include "agent/agent_console.h"
#include "fault_common/fault_log.h"
#include "fault_common/fault_number.h"
#include "fault_spectrum_graph/fault_json_object.h"

namespace {

constexpr double COFF_LIMIT = 1.0;

bool IsObservationPoint(const std::string& locName) {
    return locName.find(FAULT_OB_MARK) != std::string::npos;
}

}  // namespace

std::unique_ptr<FaultCausalityGraph> ConstructGraph(const std::string& startTime,
                                                    const std::string& endTime) {
    constexpr const char* GRAPH_NAME = "SAN_IO_READ";
    FaultJsonObject& config = FaultJsonObject::GetInstance();
    Json::Value nodes;
    Json::Value edges;
    if (config.GetGraphValueByKeyTag(GRAPH_NAME, "nodes", nodes) != 0 ||
        config.GetGraphValueByKeyTag(GRAPH_NAME, "edges", edges) != 0 || nodes.isNull() || edges.isNull()) {
        DBG_Print("\ninner error\n");
        return nullptr;
    }
    auto graph = std::make_unique<FaultCausalityGraph>();
    graph->InitGraph(edges);
    graph->ExtracNodeInfo(nodes);
    graph->GetData(startTime, endTime);
    return graph;
}

void FaultCausalityGraph::InitGraph(const Json::Value& edges) {
    for (const Json::Value& edge : edges) {
        const int32_t sourceId = FaultToInt32(edge["source"].asString());
        const int32_t targetId = FaultToInt32(edge["target"].asString());
        if (AddEdge(sourceId, targetId, 0.0) != 0) {
            FAULT_LOG(FAULT_HERE, FAULT_WARNING, "Add edge (sourceId:%d, targetId:%d) failed.", sourceId,
                      targetId);
        }
    }
}

void FaultCausalityGraph::ExtracNodeInfo(const Json::Value& nodes) {
    for (const Json::Value& json : nodes) {
        Node node = ReadNode(json);
        const bool observation = IsObservationPoint(node.locName);
        node.statLabel = observation ? FAULT_OB_POINT : FAULT_LUMO_POINT;
        (observation ? vecObName : vecLumoLocName).push_back(node.locName);
        const int32_t id = node.ioPointid;
        mapNodeInfo[id] = std::move(node);
    }
}

uint32_t FaultCausalityGraph::AddEdge(int32_t sourceId, int32_t targetId, double coff) {
    if (targetId < 0 || sourceId < 0) {
        FAULT_LOG(FAULT_HERE, FAULT_WARNING, "illegal edge (sourceId:%d, targetId:%d).", sourceId, targetId);
        return 1;
    }
    if (coff < -COFF_LIMIT || coff > COFF_LIMIT) {
        FAULT_LOG(FAULT_HERE, FAULT_WARNING, "illegal coff (%f).", coff);
        return 1;
    }
    mapGraph[sourceId].push_back({sourceId, targetId, 0.0});
    return 0;
}

uint32_t FaultCausalityGraph::FindRootBySelf(const Json::Value& edges, int32_t& root) {
    std::set<std::string> targets;
    for (const Json::Value& edge : edges) {
        targets.insert(edge["target"].asString());
    }
    for (const Json::Value& edge : edges) {
        const std::string source = edge["source"].asString();
        if (targets.count(source) == 0) {
            rootId = FaultToInt32(source);
            root = rootId;
            return 0;
        }
    }
    return 1;
}

uint32_t FaultCausalityGraph::FindRootBySpecificLabel(const std::string& label, int32_t& root) {
    for (const auto& [id, node] : mapNodeInfo) {
        if (node.locName.find(label) != std::string::npos) {
            root = id;
            return 0;
        }
    }
    return 1;
}

Node FaultCausalityGraph::ReadNode(const Json::Value& json) {
    Node node;
    node.ioPointid = json["id"].asInt();
    node.locName = json["label"].asString();
    node.nextGraph = json["name"].asString();
    node.description = json["description"].asString();
    const Json::Value& info = json["info"];
    if (info.isMember("subGraph")) {
        node.nextGraph = info["subGraph"].asString();
    }
    if (info.isMember("suggestion")) {
        node.suggestion = info["suggestion"].asString();
    }
    return node;
}

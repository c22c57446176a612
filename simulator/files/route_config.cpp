#include "simulator/files/world_files.h"

namespace lumosim {
namespace {

Json::Value Text(std::string_view text) {
    return Json::Value(text.data(), text.data() + text.size());
}

void SetText(Json::Value& object, const char* key, std::string_view text) {
    if (!text.empty()) {
        object[key] = Text(text);
    }
}

Json::Value NodeValue(const GraphNode& node, const Point& point) {
    Json::Value info(Json::objectValue);
    SetText(info, "subGraph", node.role.subGraph);
    SetText(info, "suggestion", point.advice);
    SetText(info, "attr", node.role.attr);
    SetText(info, "erridx", node.role.erridx);
    if (!node.role.erridx.empty()) {
        info["qname"] = Text(node.role.qname.empty() ? node.label : node.role.qname);
    }
    Json::Value value(Json::objectValue);
    value["id"] = node.id;
    value["label"] = Text(node.label);
    // Also where the walk goes on when there is no subGraph: no graph has a point's name, so it ends.
    value["name"] = Text(node.label);
    value["description"] = Text(point.description);
    value["info"] = std::move(info);
    return value;
}

Json::Value EdgeValue(const GraphEdge& edge) {
    Json::Value value(Json::objectValue);
    value["source"] = std::to_string(edge.source);
    value["target"] = std::to_string(edge.target);
    return value;
}

}  // namespace

std::string RouteConfig(const Topology& topology, const std::string& schema) {
    Json::Value config(Json::objectValue);
    SetText(config, "$schema", schema);
    for (const Graph& graph : topology.Graphs()) {
        Json::Value nodes(Json::arrayValue);
        Json::Value edges(Json::arrayValue);
        for (const GraphNode& node : graph.nodes) {
            nodes.append(NodeValue(node, topology.Points()[topology.IndexOf(node.label)]));
        }
        for (const GraphEdge& edge : graph.edges) {
            edges.append(EdgeValue(edge));
        }
        Json::Value& value = config[std::string(graph.name)];
        value["nodes"] = std::move(nodes);
        value["edges"] = std::move(edges);
    }
    return JsonText(config);
}

}  // namespace lumosim

#include "check/plant/answers.h"

#include <json/reader.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace check {
namespace {

constexpr std::string_view ANALYSIS = "                   CausalityGraph Analysis";
constexpr std::string_view PATH_HEAD = "AnomalyNodeName                  RootGraphName";

// A path's anomalous point, and its graph.
struct PathEnd {
    std::string point, graph;
};

std::string_view WithoutBlanks(std::string_view text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

bool HasNode(const Graph& graph, std::string_view label) {
    return std::any_of(graph.nodes.begin(), graph.nodes.end(),
                       [label](const Node& node) { return node.Label() == label; });
}

// The line has both names, each filled up to 32 characters: nothing stands between them when the first one
// is longer.
std::optional<PathEnd> ReadPathEnd(std::string_view line, const Model& model) {
    line = WithoutBlanks(line);
    for (const Graph& graph : model.Graphs()) {
        if (line.size() <= graph.name.size() || line.substr(line.size() - graph.name.size()) != graph.name) {
            continue;
        }
        const std::string_view point = WithoutBlanks(line.substr(0, line.size() - graph.name.size()));
        if (HasNode(graph, point)) {
            return PathEnd{std::string(point), graph.name};
        }
    }
    return std::nullopt;
}

std::array<double, 4> EvidenceOf(const Json::Value& node) {
    std::array<double, 4> evidence{};
    constexpr std::array<const char*, 4> MEMBERS = {"baseline_delay_us", "event_delay_us",
                                                    "baseline_requests", "event_requests"};
    std::transform(MEMBERS.begin(), MEMBERS.end(), evidence.begin(), [&](const char* member) {
        return node[member].isNumeric() ? node[member].asDouble() : -1.0;
    });
    return evidence;
}

}  // namespace

void ReadWalks(const std::string& screen, const Model& model, Trial& trial) {
    std::istringstream lines(screen);
    std::string first;  // the analysis's first graph
    for (std::string line; std::getline(lines, line);) {
        if (line == ANALYSIS) {
            first.clear();
        } else if (line == PATH_HEAD && std::getline(lines, line)) {
            if (const std::optional<PathEnd> end = ReadPathEnd(line, model)) {
                first = first.empty() ? end->graph : first;
                trial[first].walk = end->point;
            }
        }
    }
}

void ReadExplanations(const std::string& document, Trial& trial) {
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    Json::Value report;
    if (!reader->parse(document.data(), document.data() + document.size(), &report, nullptr)) {
        throw std::runtime_error("zorv-explain has printed no JSON");
    }
    for (const Json::Value& analysis : report["analyses"]) {
        Verdicts& verdicts = trial[analysis["graph"].asString()];
        if (!verdicts.evidence.empty()) {
            continue;
        }
        for (const Json::Value& node : analysis["nodes"]) {
            verdicts.evidence[node["point"].asString()] = EvidenceOf(node);
        }
        if (analysis["verdict"] == "point") {
            verdicts.explanation = analysis["candidates"][0]["point"].asString();
        }
    }
}

}  // namespace check

#include "simulator/graphs/config_graphs.h"

#include <json/reader.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "agent/agent_storage.h"

namespace lumosim {
namespace {

// The plug-in's texts where a member is not there.
std::string Text(const Json::Value& object, const char* member) {
    try {
        return object[member].asString();
    } catch (const Json::Exception&) {
        throw ConfigError(std::string(member) + " is no text");
    }
}

int Number(const std::string& text, const std::string& what) {
    char* end = nullptr;
    const long number = std::strtol(text.c_str(), &end, 10);
    if (end == text.c_str() || number != static_cast<int>(number)) {
        throw ConfigError(text.empty() ? what + " is missing" : what + " is no number: \"" + text + "\"");
    }
    return static_cast<int>(number);
}

int IdOf(const Json::Value& node) {
    try {
        return node["id"].asInt();
    } catch (const Json::Exception&) {
        throw ConfigError("id is no number of 32 bits");
    }
}

// Reads the elements of a list, if there is one. What is wrong with one gets its place.
template <typename Read>
void ReadList(const Json::Value& graph, const char* list, const Read& read) {
    const Json::Value& elements = graph[list];
    if (!elements.isNull() && !elements.isArray()) {
        throw ConfigError(std::string(list) + " is no list");
    }
    for (Json::ArrayIndex i = 0; i < elements.size(); ++i) {
        try {
            if (!elements[i].isObject()) {
                throw ConfigError("it is no object");
            }
            read(elements[i]);
        } catch (const ConfigError& error) {
            throw ConfigError(std::string(list) + "[" + std::to_string(i) + "]: " + error.what());
        }
    }
}

// Of the reader's lines the first two, which tell where the first error is and what.
std::string FirstOf(const std::string& errors) {
    std::istringstream lines(errors);
    std::string place, what;
    std::getline(lines, place);
    std::getline(lines >> std::ws, what);
    return place.substr(std::min<size_t>(place.size(), 2)) + ": " + what;
}

bool Contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

// A node as it is written; of a description only whether it makes a group.
struct ConfigNode {
    std::string label, next, advice, attr, erridx, qname;
    bool isGroup = false;
};

// The plug-in puts names between the quotes of its statements as they are.
void CheckAskedFor(const std::string& point, const char* member) {
    if (point.find_first_of(std::string_view("'\0", 2)) != std::string::npos) {
        throw ConfigError(std::string(member) + " has a quote or NUL in it, and no statement can ask for it");
    }
}

void ReadErrorRole(const Json::Value& info, ConfigNode& node) {
    node.attr = Text(info, "attr");
    node.erridx = Text(info, "erridx");
    if (info.isMember("erridx")) {
        Number(node.erridx, "erridx");
    }
    const std::string qname = Text(info, "qname");
    node.qname = Contains(node.attr, "automic") && !Contains(node.attr, "whole") ? qname : "";
}

ConfigNode NodeOf(const Json::Value& json, GraphFamily family) {
    ConfigNode node{Text(json, "label"), Text(json, "name"), {}, {}, {}, {}};
    const std::string description = Text(json, "description");
    const Json::Value& info = json["info"];
    if (!info.isNull() && !info.isObject()) {
        throw ConfigError("info is no object");
    }
    if (info.isMember("subGraph")) {
        node.next = Text(info, "subGraph");
    }
    node.advice = Text(info, "suggestion");
    if (family == GraphFamily::ERRCODE) {
        node.isGroup = Contains(description, GROUP_MARK);
        if (!node.isGroup) {
            ReadErrorRole(info, node);
        }
    }
    if (!node.isGroup) {
        CheckAskedFor(node.qname.empty() ? node.label : node.qname, node.qname.empty() ? "label" : "qname");
    }
    return node;
}

// Own graphs are told by their nodes.
GraphFamily FamilyOf(const std::string& name, const Json::Value& nodes) {
    for (const EnteredGraph& entered : ENTERED_GRAPHS) {
        if (entered.graph == name) {
            return entered.family;
        }
    }
    if (name.rfind("FACTOR_", 0) == 0) {
        return GraphFamily::FACTOR;
    }
    const auto counts = [](const Json::Value& node) {
        const Json::Value& info = node.isObject() ? node["info"] : node;
        return info.isObject() && (info.isMember("attr") || info.isMember("erridx"));
    };
    return Contains(name, "ERRCODE") || std::any_of(nodes.begin(), nodes.end(), counts) ? GraphFamily::ERRCODE
                                                                                        : GraphFamily::FLOW;
}

class ConfigReader {
public:
    // Throws ConfigError.
    explicit ConfigReader(const Json::Value& document) : config(document) {
        for (const std::string& name : config.getMemberNames()) {
            try {
                if (name.empty() || name.front() != '$') {
                    ReadGraph(name);
                }
            } catch (const ConfigError& error) {
                throw ConfigError("graph \"" + name + "\": " + error.what());
            }
        }
        DropHandOvers();
        AddPoints();
    }

    // To be called once.
    ConfigGraphs Result() { return {std::move(graphs), std::move(points), texts}; }

private:
    using Nodes = std::map<int, ConfigNode>;  // by the ids as they are written

    std::string_view Keep(std::string text) { return texts->emplace_back(std::move(text)); }
    void ReadGraph(const std::string& name);
    void ReadEdges(const Json::Value& json, const std::map<int, int>& ids, Graph& graph) const;
    void DropHandOvers();
    void AddPoints();
    void AddPoint(std::string_view name);

    const Json::Value& config;
    std::shared_ptr<std::deque<std::string>> texts = std::make_shared<std::deque<std::string>>();
    std::vector<Graph> graphs;
    std::vector<Point> points;
    std::set<std::string_view> known;  // the points' names
    std::map<std::string_view, std::string_view> advice;
    std::set<std::string_view> counted;  // points that are more than a group
};

void ConfigReader::ReadGraph(const std::string& name) {
    const Json::Value& json = config[name];
    if (!json.isObject()) {
        throw ConfigError("it is no object");
    }
    Graph graph{Keep(name), FamilyOf(name, json["nodes"]), {}, {}};
    Nodes written;
    ReadList(json, "nodes",
             [&](const Json::Value& node) { written[IdOf(node)] = NodeOf(node, graph.family); });
    std::map<int, int> ids;
    for (auto& [id, node] : written) {
        if (node.label.empty()) {
            continue;
        }
        ids[id] = static_cast<int>(graph.nodes.size()) + 1;
        const std::string_view label = Keep(std::move(node.label));
        graph.nodes.push_back({ids[id],
                               label,
                               {Keep(std::move(node.next)), Keep(std::move(node.attr)),
                                Keep(std::move(node.erridx)), Keep(std::move(node.qname))}});
        if (!node.isGroup) {
            counted.insert(label);
        }
        if (!node.advice.empty()) {
            advice.try_emplace(label, Keep(std::move(node.advice)));
        }
    }
    ReadEdges(json, ids, graph);
    if (!graph.nodes.empty()) {
        graphs.push_back(std::move(graph));
    }
}

// The root is the first source that is nobody's target, by their texts, as the diagnosis takes it.
void ConfigReader::ReadEdges(const Json::Value& json, const std::map<int, int>& ids, Graph& graph) const {
    std::vector<std::pair<std::string, int>> sources;
    std::set<std::string> targets;
    const auto idOf = [&](int written) {
        const auto id = ids.find(written);
        return id == ids.end() || written < 0 ? 0 : id->second;
    };
    ReadList(json, "edges", [&](const Json::Value& edge) {
        std::string source = Text(edge, "source");
        std::string target = Text(edge, "target");
        const GraphEdge read{idOf(Number(source, "source")), idOf(Number(target, "target"))};
        if (read.source != 0 && read.target != 0) {
            graph.edges.push_back(read);
        }
        sources.emplace_back(std::move(source), read.source);
        targets.insert(std::move(target));
    });
    const auto root = std::find_if(sources.begin(), sources.end(),
                                   [&](const auto& source) { return targets.count(source.first) == 0; });
    graph.root = root == sources.end() ? 0 : root->second;
    graph.entry = graph.root != 0 ? graph.root : 1;
    for (const EnteredGraph& entered : ENTERED_GRAPHS) {
        const auto node = std::find_if(graph.nodes.begin(), graph.nodes.end(),
                                       [&](const GraphNode& one) { return one.label == entered.point; });
        if (entered.graph == graph.name && node != graph.nodes.end()) {
            graph.entry = node->id;
        }
    }
}

// A name that is no graph's ends a walk, and one that is its own graph's.
void ConfigReader::DropHandOvers() {
    std::set<std::string_view> entered;
    for (const Graph& graph : graphs) {
        if (graph.root != 0) {
            entered.insert(graph.name);
        }
    }
    for (Graph& graph : graphs) {
        for (GraphNode& node : graph.nodes) {
            if (node.role.subGraph == graph.name || entered.count(node.role.subGraph) == 0) {
                node.role.subGraph = {};
            }
        }
    }
}

// Those at which graphs are entered come first: where a circle is to be opened, it is opened as seen from
// there.
void ConfigReader::AddPoints() {
    for (const EnteredGraph& entered : ENTERED_GRAPHS) {
        for (const Graph& graph : graphs) {
            if (graph.name == entered.graph) {
                AddPoint(graph.NodeOf(graph.entry).label);
            }
        }
    }
    for (const Graph& graph : graphs) {
        for (const GraphNode& node : graph.nodes) {
            AddPoint(node.label);
            if (!node.role.qname.empty()) {
                counted.insert(node.role.qname);
                AddPoint(node.role.qname);
            }
        }
    }
    for (Point& point : points) {
        point.description = counted.count(point.name) > 0 ? "" : GROUP_MARK;
    }
}

void ConfigReader::AddPoint(std::string_view name) {
    if (known.insert(name).second) {
        const auto text = advice.find(name);
        points.push_back({name, {}, text != advice.end() ? text->second : ""});
    }
}

}  // namespace

std::string ConfigFileText(const std::filesystem::path& path) {
    std::error_code ignored;
    std::ifstream file;
    if (std::filesystem::is_regular_file(path, ignored)) {  // to open a pipe would wait for its writer
        file.open(path, std::ios::binary);
    }
    if (file.is_open()) {
        std::ostringstream text;
        text << file.rdbuf();  // which fails for an empty file, too
        if (!file.bad()) {
            return text.str();
        }
    }
    throw ConfigError("cannot be read");
}

ConfigGraphs ReadConfigGraphs(const std::string& text) {
    Json::CharReaderBuilder builder;
    builder["stackLimit"] = ZORV_ROUTE_CONFIG_NESTING;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value config;
    std::string error;
    try {
        if (!reader->parse(text.data(), text.data() + text.size(), &config, &error)) {
            throw ConfigError("is no JSON: " + FirstOf(error));
        }
    } catch (const Json::Exception&) {
        throw ConfigError("is nested too deep");
    }
    if (!config.isObject()) {
        throw ConfigError("is no JSON object of graphs");
    }
    ConfigGraphs graphs = ConfigReader(config).Result();
    if (graphs.points.empty()) {
        throw ConfigError("has no graph with a point");
    }
    return graphs;
}

}  // namespace lumosim

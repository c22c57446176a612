#include "host/basis/route_file.h"

#include <json/reader.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <set>
#include <tuple>

#include "agent/agent_storage.h"
#include "host/process/files.h"
#include "host/process/settings.h"
#include "host/services/told_failures.h"

namespace zorv {
namespace {
constexpr size_t LARGEST_FILE = size_t{64} << 20;

// What changes when the file does.
using Stamp = std::tuple<bool, dev_t, ino_t, off_t, time_t, long>;

Stamp StampOf(const std::string& path) {
    struct stat status {};
    const bool isThere = stat(path.c_str(), &status) == 0;
    return {isThere,        status.st_dev,         status.st_ino,
            status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

RouteGraph GraphOf(const std::string& name, const Json::Value& value) {
    RouteGraph graph{name, value["nodes"].size(), value["edges"].size(), {}};
    for (const Json::Value& node : value["nodes"]) {
        if (node.isObject() && node["label"].isString()) {
            graph.points.push_back(node["label"].asString());
        }
    }
    return graph;
}

bool IsGraph(const Json::Value& value) {
    return value.isObject() && value["nodes"].isArray() && value["edges"].isArray();
}

void Parse(const std::string& text, RouteFile& file) {
    Json::CharReaderBuilder builder;
    builder["stackLimit"] = ZORV_ROUTE_CONFIG_NESTING;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value top;
    std::string errors;
    if (!reader->parse(text.data(), text.data() + text.size(), &top, &errors) || !top.isObject()) {
        file.problem = "is no JSON object";
        return;
    }
    const Json::Value& graphs = top;  // read only: a missing member is not made
    for (const std::string& name : graphs.getMemberNames()) {
        if (IsGraph(graphs[name])) {
            file.graphs.push_back(GraphOf(name, graphs[name]));
        }
    }
}

RouteFile Read(const std::string& path) {
    RouteFile file;
    std::string text;
    errno = 0;
    if (!ReadSmallFile(path, LARGEST_FILE, text)) {
        file.problem = errno == 0 ? "is no file of 64 MiB at most" : std::strerror(errno);
        return file;
    }
    try {
        Parse(text, file);
    } catch (const std::exception&) {  // nested too deep
        file.problem =
            "cannot be parsed: nested more than " + std::to_string(ZORV_ROUTE_CONFIG_NESTING) + " deep";
    }
    return file;
}
}  // namespace

const RouteFile& CurrentRouteFile() {
    static Stamp stamp;
    static RouteFile file;
    const std::string path = RootedPath(ZORV_ROUTE_CONFIG_FILE);
    const Stamp now = StampOf(path);
    if (now != stamp || !std::get<0>(now)) {
        file = Read(path);
        stamp = now;
    }
    return file;
}

std::string ConfigurationProblem() {
    const RouteFile& file = CurrentRouteFile();
    if (IsConfigurationRefused()) {
        return "it was refused at the start" + (file.problem.empty() ? "" : ": " + file.problem);
    }
    return file.problem.empty() && file.graphs.empty() ? "it has no graphs" : "";
}

std::vector<std::string> PointNames(const RouteFile& file) {
    std::set<std::string> names;
    for (const RouteGraph& graph : file.graphs) {
        names.insert(graph.points.begin(), graph.points.end());
    }
    return {names.begin(), names.end()};
}

std::vector<std::string> GraphNames(const RouteFile& file) {
    std::vector<std::string> names;
    for (const RouteGraph& graph : file.graphs) {
        names.push_back(graph.name);
    }
    return names;
}
}  // namespace zorv

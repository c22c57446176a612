// The route configuration as the console's user sees it: names for completion, and what is in it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace zorv {
struct RouteGraph {
    std::string name;
    size_t nodes = 0, edges = 0;
    std::vector<std::string> points;  // the nodes' labels
};

struct RouteFile {
    std::string problem;  // why there are no graphs; empty when the file was read
    std::vector<RouteGraph> graphs;
};

// The file at its fixed path under the root, read again when it has changed since the last call. What has
// not the form of a graph is left out. The console's thread; blocks while it reads the file.
const RouteFile& CurrentRouteFile();

// Why the plug-in has no graphs: it refused the file at its start, or there are none in it. Empty: it has
// some, as far as can be told. The console's thread; blocks as above.
std::string ConfigurationProblem();

// The points of all graphs, each once.
std::vector<std::string> PointNames(const RouteFile& file);

// The graphs, in the order of the file's reader.
std::vector<std::string> GraphNames(const RouteFile& file);
}  // namespace zorv

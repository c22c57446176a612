// The graphs of a route configuration that somebody else wrote, as the diagnosis reads it.
#pragma once

#include <deque>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "simulator/graphs/topology.h"

namespace lumosim {

// What is wrong with a configuration, and where.
class ConfigError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The whole file. Throws ConfigError for what is no regular file or cannot be read.
std::string ConfigFileText(const std::filesystem::path& path);

// Points, at least one, and graphs with a node. Left out is what a walk does not come to: edges to nowhere or
// with a negative end, nodes without a label, hand-overs to a graph that is not there or has no root. Throws
// ConfigError for what a walk fails at: text that is no JSON object, or nested too deep; a member of the
// wrong type; an edge without an end; a point whose name cannot stand in a statement.
ConfigGraphs ReadConfigGraphs(const std::string& text);

}  // namespace lumosim

// The smaller files of a world, each written in a file that is named like it.
#pragma once

#include <json/json.h>

#include <filesystem>
#include <string>
#include <vector>

#include "simulator/graphs/topology.h"
#include "simulator/plan/heal_events.h"

namespace lumosim {

// The route configuration, the graphs as the diagnosis reads them: the document, indented for people to read
// and copy. It names `schema`, a URI, unless that is empty.
std::string RouteConfig(const Topology& topology, const std::string& schema);

// Writes the database of the agent's healing actions, a new one, at `path`, where at most an empty file may
// be. Throws std::runtime_error.
void WriteHealEvents(const std::filesystem::path& path, const std::vector<HealEvent>& events);

// JSON as the files have it: indented by four blanks, opening brackets behind their keys, with a line end
// after the last line.
std::string JsonText(const Json::Value& value);

}  // namespace lumosim

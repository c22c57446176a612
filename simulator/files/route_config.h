// The route configuration: the graphs as the diagnosis reads them.
#pragma once

#include <string>

#include "simulator/graphs/topology.h"

namespace lumosim {

// The document, indented for people to read and copy.
std::string RouteConfig(const Topology& topology);

}  // namespace lumosim

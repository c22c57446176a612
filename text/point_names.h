// What the names of trace points tell.
#pragma once

#include <string_view>

// Whether what takes time at the point is an answer or an acknowledgement of another node: what is slow there
// lies on the way between nodes, or in the other one. One table, which docs/explain.md has as well.
bool WaitsForNodes(std::string_view point);

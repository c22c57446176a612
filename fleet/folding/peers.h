// A node's delays beside those of the other nodes, in the windows of incidents. Any thread; nothing fails.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "fleet/folding/role.h"

namespace fleet {

// Of the nodes that have a delay of the point in the window.
struct Peers {
    double median = 0.0;      // microseconds
    double deviations = 0.0;  // how many robust ones the node lies above it
    size_t count = 0;         // nodes, itself among them
};

// What the second look has seen in one window.
struct Comparison {
    Window window;
    std::map<std::string, std::map<size_t, Delay>> delays;  // by point, then by the node's position
};

// Beside the peers at a point; none when the node has no delay there, or fewer than three nodes have one.
std::optional<Peers> PeersOf(const Comparison& comparison, const std::string& point, size_t node);

// The comparison that was made for a window; null: none. Lives as long as `comparisons`.
const Comparison* ComparisonOf(const std::vector<Comparison>& comparisons, const Window& window);

}  // namespace fleet

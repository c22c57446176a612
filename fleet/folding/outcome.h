// Everything that reports tell.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "fleet/folding/incident.h"
#include "fleet/folding/peers.h"

namespace fleet {

struct Outcome {
    std::vector<NodeAnswer> nodes;
    Fold fold;
    std::vector<Comparison> comparisons;
    std::vector<std::string> pages;  // by node, for links; empty: none
};

}  // namespace fleet

// Events of several nodes become incidents: docs/fleet.md has the rules. Data only; any thread; nothing
// fails.
#pragma once

#include <cstddef>
#include <vector>

#include "fleet/folding/role.h"

namespace fleet {

struct Incident {
    Window window;  // of its causes; of its symptoms where there is no cause
    bool isOngoing = false;
    size_t atOnce = 0;           // nodes, where it is more than half of all and none is ahead; else 0
    std::vector<Role> causes;    // the likeliest and strongest first
    std::vector<Role> symptoms;  // the strongest first; a node that is a cause is none
    std::vector<size_t> loaded;  // nodes that were under load at the time, by position

    // Causes and symptoms, each node once.
    size_t NodeCount() const;
};

struct Fold {
    std::vector<Incident> incidents;       // what matters most first
    std::vector<std::vector<Role>> roles;  // by node, what counts most first
    size_t answered = 0;                   // nodes that had data
};

Fold FoldAnswers(const std::vector<NodeAnswer>& answers);

}  // namespace fleet

// What a node's answer is evidence of. Any thread; nothing here fails.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "fleet/answers/answer.h"

namespace fleet {

// In the order in which they count.
enum class RoleKind {
    CAUSE,         // its own devices hold the delay, which is sure or likely
    WAITS,         // for other nodes
    UNSURE_CAUSE,  // the same as CAUSE, and unsure
    UNEXPLAINED,   // it is slow, and no point below the one at which hosts enter says why
    LOAD,          // requests rose, and the delay with them
};

// What a node does during one event.
struct Role {
    size_t node = 0;  // its position among the answers
    RoleKind kind = RoleKind::LOAD;
    Window window;
    bool isOngoing = false;
    bool isErrors = false;
    std::string hostPoint;  // at which hosts see it; or the type of the errors
    std::string graph;
    Certainty certainty = Certainty::UNSURE;
    std::optional<Delay> delay;  // there
    Candidate at;                // the point that holds the delay; none for LOAD
    double extra = 0.0;          // microseconds a request that are the role's: of devices, or of waiting
    std::vector<Candidate> candidates;

    bool IsCause() const { return kind != RoleKind::WAITS && kind != RoleKind::LOAD; }
};

// The roles of the node at position `node`: one for each event of a point at which hosts enter. What is
// unsure or unexplained is left out where something surer speaks for the node at that time.
std::vector<Role> RolesOf(const NodeAnswer& answer, size_t node);

}  // namespace fleet

// The delay budget: how the extra delay of one point divides among the points below it.
#pragma once

#include <cstddef>
#include <map>
#include <utility>
#include <vector>

namespace explain {

// A node of the graphs that are walked, all in one list.
struct BudgetNode {
    std::vector<size_t> children;  // positions in the list
    bool takesPart = false;        // the node had an event of its own
    double excess = 0.0;           // extra delay times requests; above 0 where it takes part
    double own = 0.0;              // the part of it that is not the children's, as far as counts tell
    bool claimsFirst = false;      // before its siblings, which share what it leaves
};

// A position whose whole share goes to another one: the root of the graph that continues below it.
using HandOvers = std::map<size_t, size_t>;

// The share that goes from one position to the next one below it that takes part, on all ways together.
using Flows = std::map<std::pair<size_t, size_t>, double>;

// Each node's own share of the extra delay of `root`: what reaches it on all ways and is not taken by what is
// below it. A child claims its excess relative to its parent's, at most all. The parent claims its own excess
// relative to its excess, but not more than the children leave: what they leave also holds a changed mix of
// requests, which is nobody's own time. All claims are scaled to add up to all; where nobody claims anything
// the parent keeps it. Children that take no part are looked through: those below them stand in their place.
// No way enters a node twice. The shares are not negative and add up to 1. `flows`, unless null, is replaced
// by how they got there: of a node, what flows in is its own share and what flows out.
//
// `root` is divided whether it takes part or not; where its excess is not above 0, each child claims all.
// Ways in circles are told apart by what they have visited. After a million visits, and after a million looks
// at what is below, shares stay where they are: only graphs of many thousand nodes, or of circles through
// more than a dozen nodes, are that much.
std::vector<double> DivideBudget(const std::vector<BudgetNode>& nodes, const HandOvers& handOvers,
                                 size_t root, Flows* flows = nullptr);

}  // namespace explain

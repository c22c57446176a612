#include "explain/analysis/budget.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <set>
#include <tuple>

namespace explain {
namespace {

constexpr size_t NONE = SIZE_MAX;
constexpr size_t LOOKS_MAX = 1000000;   // at nodes below others, over all nodes
constexpr size_t VISITS_MAX = 1000000;  // that are remembered, over all ways

// The nodes with an event that a node's share can go to.
struct Takers {
    std::vector<size_t> nodes;
    bool takesAll = false;  // there is one, the root of the graph that continues below
};

// The nodes that take part and are reached from `first` through nodes that do not.
void LookThrough(const std::vector<BudgetNode>& nodes, const HandOvers& handOvers, std::vector<size_t> first,
                 size_t& looks, std::vector<size_t>& found) {
    std::set<size_t> seen;
    for (; !first.empty() && looks < LOOKS_MAX; ++looks) {
        const size_t node = first.back();
        first.pop_back();
        if (!seen.insert(node).second) {
            continue;
        }
        if (nodes[node].takesPart) {
            found.push_back(node);
            continue;
        }
        first.insert(first.end(), nodes[node].children.begin(), nodes[node].children.end());
        if (const auto below = handOvers.find(node); below != handOvers.end()) {
            first.push_back(below->second);
        }
    }
}

Takers TakersOf(const std::vector<BudgetNode>& nodes, const HandOvers& handOvers, size_t node,
                size_t& looks) {
    std::vector<size_t> first = nodes[node].children;
    if (const auto below = handOvers.find(node); below != handOvers.end()) {
        if (nodes[below->second].takesPart) {
            return {{below->second}, true};
        }
        first.push_back(below->second);
    }
    Takers takers;
    LookThrough(nodes, handOvers, std::move(first), looks, takers.nodes);
    std::sort(takers.nodes.begin(), takers.nodes.end());
    return takers;
}

// The takers of `root` and of all nodes below it; of others, none.
std::vector<Takers> AllTakers(const std::vector<BudgetNode>& nodes, const HandOvers& handOvers, size_t root) {
    std::vector<Takers> takers(nodes.size());
    std::set<size_t> seen{root};
    std::vector<size_t> open{root};
    size_t looks = 0;
    while (!open.empty()) {
        const size_t node = open.back();
        open.pop_back();
        takers[node] = TakersOf(nodes, handOvers, node, looks);
        for (const size_t taker : takers[node].nodes) {
            if (seen.insert(taker).second) {
                open.push_back(taker);
            }
        }
    }
    return takers;
}

// Numbers the circles that lead through each node: nodes of one number reach each other, and a way leads only
// to equal or smaller numbers. Tarjan's algorithm, without recursion: a graph may be a chain of any length.
std::vector<size_t> NumberCircles(const std::vector<Takers>& takers, size_t root) {
    std::vector<size_t> circle(takers.size(), NONE);
    std::vector<size_t> index(takers.size(), NONE);
    std::vector<size_t> lowest(takers.size(), NONE);
    std::vector<size_t> open;
    std::vector<std::pair<size_t, size_t>> way{{root, 0}};  // node, its next taker
    size_t indexes = 0;
    size_t circles = 0;
    while (!way.empty()) {
        const size_t node = way.back().first;
        if (index[node] == NONE) {
            index[node] = lowest[node] = indexes++;
            open.push_back(node);
        }
        if (way.back().second < takers[node].nodes.size()) {
            const size_t next = takers[node].nodes[way.back().second++];
            if (index[next] == NONE) {
                way.emplace_back(next, 0);
            } else if (circle[next] == NONE) {
                lowest[node] = std::min(lowest[node], index[next]);
            }
            continue;
        }
        way.pop_back();
        if (!way.empty()) {
            lowest[way.back().first] = std::min(lowest[way.back().first], lowest[node]);
        }
        if (lowest[node] == index[node]) {
            for (bool last = false; !last; open.pop_back()) {
                last = open.back() == node;
                circle[open.back()] = circles;
            }
            ++circles;
        }
    }
    return circle;
}

// Ways that have come to the same node over the same nodes of its circle: what follows is the same for all.
struct Arrival {
    size_t circle = 0;
    size_t node = 0;
    std::vector<size_t> visited;  // ascending

    // Upstream first, so that most ways have met before they go on.
    bool operator<(const Arrival& other) const {
        return std::forward_as_tuple(other.circle, visited.size(), node, visited) <
               std::forward_as_tuple(circle, other.visited.size(), other.node, other.visited);
    }
};

// What the takers of a node take of its share, those left out that the way has visited.
struct Division {
    std::vector<std::pair<size_t, double>> parts;
    double rest = 1.0;  // what is the node's own
};

// `part` relative to the whole, from nothing to all; `otherwise` where there is no whole.
double ClaimOf(double part, double whole, double otherwise) {
    return whole > 0.0 ? std::clamp(part / whole, 0.0, 1.0) : otherwise;
}

// What all claims of a rank come to, at most what is left of the whole.
double Limit(const std::vector<BudgetNode>& nodes, bool first, double left, Division& division) {
    double claims = 0.0;
    for (const auto& [taker, part] : division.parts) {
        claims += nodes[taker].claimsFirst == first ? part : 0.0;
    }
    for (auto& [taker, part] : division.parts) {
        if (nodes[taker].claimsFirst == first && claims > left) {
            part *= left / claims;
        }
    }
    return std::min(claims, left);
}

Division Divide(const std::vector<BudgetNode>& nodes, const Takers& takers, const Arrival& arrival) {
    Division division;
    const BudgetNode& parent = nodes[arrival.node];
    for (const size_t taker : takers.nodes) {
        if (taker != arrival.node &&
            !std::binary_search(arrival.visited.begin(), arrival.visited.end(), taker)) {
            const double claim = takers.takesAll ? 1.0 : ClaimOf(nodes[taker].excess, parent.excess, 1.0);
            division.parts.emplace_back(taker, claim);
        }
    }
    const double first = Limit(nodes, true, 1.0, division);
    const double children = first + Limit(nodes, false, 1.0 - first, division);
    const double own = std::min(1.0 - children, ClaimOf(parent.own, parent.excess, 0.0));
    const double all = own + children;
    if (all <= 0.0) {
        return {};
    }
    for (auto& [taker, part] : division.parts) {
        part /= all;
    }
    division.rest = own / all;
    return division;
}

}  // namespace

std::vector<double> DivideBudget(const std::vector<BudgetNode>& nodes, const HandOvers& handOvers,
                                 size_t root, Flows* flows) {
    const std::vector<Takers> takers = AllTakers(nodes, handOvers, root);
    const std::vector<size_t> circle = NumberCircles(takers, root);
    std::vector<double> own(nodes.size(), 0.0);
    Flows divided;
    std::map<Arrival, double> arrivals{{{circle[root], root, {}}, 1.0}};
    for (size_t visits = 0; !arrivals.empty();) {
        auto [arrival, share] = *arrivals.begin();
        arrivals.erase(arrivals.begin());
        const size_t node = arrival.node;
        const Division division = visits < VISITS_MAX ? Divide(nodes, takers[node], arrival) : Division();
        own[node] += share * division.rest;
        std::vector<size_t> visited = arrival.visited;
        visited.insert(std::lower_bound(visited.begin(), visited.end(), node), node);
        for (const auto& [taker, part] : division.parts) {
            const bool stays = circle[taker] == circle[node];
            const double flow = share * part;
            arrivals[{circle[taker], taker, stays ? visited : std::vector<size_t>()}] += flow;
            divided[{node, taker}] += flow;
            visits += stays ? visited.size() : 0;
        }
    }
    if (flows != nullptr) {
        *flows = std::move(divided);
    }
    return own;
}

}  // namespace explain

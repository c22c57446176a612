#include "explain/errors/error_division.h"

#include <algorithm>
#include <iterator>
#include <numeric>

namespace explain {
namespace {

constexpr size_t MOST_EVENTS = 2000;  // of a type, over all points; each is compared with each

struct NodeEvent {
    size_t node = 0;
    size_t column = 0;
    const CountEvent* event = nullptr;

    double Extra() const {
        return static_cast<double>(event->count) - event->rate * static_cast<double>(event->Length());
    }
};

// The column under which a node takes part.
size_t ColumnOf(const ErrorNode& node, const std::array<ErrorSeries, ERROR_COLUMNS>& series, size_t column) {
    if (node.changesType && series[column].events.empty()) {
        for (size_t other = ERROR_COLUMNS; other-- > 0;) {
            if (!series[other].events.empty()) {
                return other;
            }
        }
    }
    return column;
}

std::vector<NodeEvent> EventsOf(const ErrorGraph& graph, const ErrorFindings& findings, size_t column) {
    std::vector<NodeEvent> events;
    for (size_t node = 0; node < graph.nodes.size(); ++node) {
        const auto found = findings.find(graph.nodes[node].counted);
        if (graph.nodes[node].counted.empty() || found == findings.end()) {
            continue;
        }
        const size_t its = ColumnOf(graph.nodes[node], found->second, column);
        for (const CountEvent& event : found->second[its].events) {
            events.push_back({node, its, &event});
        }
    }
    if (events.size() > MOST_EVENTS) {
        std::stable_sort(events.begin(), events.end(),
                         [](const NodeEvent& a, const NodeEvent& b) { return a.Extra() > b.Extra(); });
        events.resize(MOST_EVENTS);
    }
    return events;
}

// What stands below each node that has events.
using Below = std::map<size_t, std::vector<bool>>;

Below BelowOf(const ErrorGraph& graph, const std::vector<NodeEvent>& events) {
    Below below;
    for (const NodeEvent& one : events) {
        if (below.count(one.node) == 0) {
            below[one.node] = graph.Below(one.node);
        }
    }
    return below;
}

// Events of one incident adjoin each other at least.
bool Meet(const NodeEvent& a, const NodeEvent& b) {
    return a.event->first <= b.event->last + 1 && b.event->first <= a.event->last + 1;
}

// The events by the incident that they belong to.
std::vector<std::vector<NodeEvent>> Grouped(const std::vector<NodeEvent>& events, const Below& below) {
    std::vector<size_t> group(events.size());
    std::iota(group.begin(), group.end(), size_t{0});
    const auto rootOf = [&group](size_t i) {
        while (group[i] != i) {
            i = group[i] = group[group[i]];
        }
        return i;
    };
    for (size_t a = 0; a < events.size(); ++a) {
        for (size_t b = a + 1; b < events.size(); ++b) {
            const bool isRelated =
                below.at(events[a].node)[events[b].node] || below.at(events[b].node)[events[a].node];
            if (isRelated && Meet(events[a], events[b])) {
                group[rootOf(b)] = rootOf(a);
            }
        }
    }
    std::map<size_t, std::vector<NodeEvent>> byRoot;
    for (size_t i = 0; i < events.size(); ++i) {
        byRoot[rootOf(i)].push_back(events[i]);
    }
    std::vector<std::vector<NodeEvent>> groups;
    groups.reserve(byRoot.size());
    for (auto& [root, members] : byRoot) {
        groups.push_back(std::move(members));
    }
    return groups;
}

// Without what is counted under another type and stands below nothing that is counted under this one: there
// it does not show as errors of this type.
std::vector<NodeEvent> OfType(const std::vector<NodeEvent>& group, const Below& below, size_t column) {
    std::vector<NodeEvent> kept;
    std::copy_if(group.begin(), group.end(), std::back_inserter(kept), [&](const NodeEvent& one) {
        return one.column == column || std::any_of(group.begin(), group.end(), [&](const NodeEvent& above) {
                   return above.column == column && below.at(above.node)[one.node];
               });
    });
    return kept;
}

// The points of an incident, each with all its events there.
std::vector<IncidentPoint> PointsOf(const std::vector<NodeEvent>& events) {
    std::map<size_t, IncidentPoint> points;
    for (const NodeEvent& one : events) {
        const auto [entry, isNew] = points.try_emplace(one.node);
        IncidentPoint& point = entry->second;
        point.node = one.node;
        point.column = one.column;
        point.first = isNew ? one.event->first : std::min(point.first, one.event->first);
        point.last = std::max(point.last, one.event->last);
        point.count += one.event->count;
        point.extra += one.Extra();
    }
    std::vector<IncidentPoint> list;
    list.reserve(points.size());
    for (auto& [node, point] : points) {
        list.push_back(std::move(point));
    }
    return list;
}

// Positions of the points above which none takes part; of points in a circle, the one that comes first.
std::vector<size_t> TopmostOf(const std::vector<IncidentPoint>& points, const Below& below) {
    std::vector<size_t> topmost;
    const auto isBelow = [&](size_t point, size_t above) {
        return below.at(points[above].node)[points[point].node];
    };
    for (size_t i = 0; i < points.size(); ++i) {
        bool hasAbove = false;
        for (size_t k = 0; k < points.size(); ++k) {
            hasAbove = hasAbove || (k != i && isBelow(i, k) && (!isBelow(k, i) || k < i));
        }
        if (!hasAbove) {
            topmost.push_back(i);
        }
    }
    std::stable_sort(topmost.begin(), topmost.end(),
                     [&](size_t a, size_t b) { return points[a].extra > points[b].extra; });
    return topmost;
}

// Fills the shares, and who is below whom.
void Divide(const ErrorGraph& graph, const std::vector<size_t>& topmost, std::vector<IncidentPoint>& points) {
    std::vector<BudgetNode> nodes(graph.nodes.size() + 1);
    for (size_t i = 0; i < graph.nodes.size(); ++i) {
        nodes[i].children = graph.nodes[i].children;
        nodes[i].claimsFirst = graph.nodes[i].followsParent;
    }
    std::map<size_t, size_t> positions;
    for (size_t i = 0; i < points.size(); ++i) {
        BudgetNode& node = nodes[points[i].node];
        node.takesPart = true;
        node.excess = node.own = points[i].extra;  // what the points below it leave is its own
        positions[points[i].node] = i;
    }
    BudgetNode& all = nodes.back();  // above all topmost points
    for (const size_t one : topmost) {
        all.children.push_back(points[one].node);
        all.excess += points[one].extra;
    }
    Flows flows;
    const std::vector<double> shares = DivideBudget(nodes, graph.handOvers, nodes.size() - 1, &flows);
    for (IncidentPoint& point : points) {
        point.share = shares[point.node];
    }
    for (const auto& [way, share] : flows) {
        if (way.first != nodes.size() - 1) {
            points[positions.at(way.first)].below.push_back(positions.at(way.second));
        }
    }
}

// By share; positions follow.
Incident Ranked(const std::vector<IncidentPoint>& points, const std::vector<size_t>& topmost) {
    std::vector<size_t> order(points.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](size_t a, size_t b) { return points[a].share > points[b].share; });
    std::vector<size_t> place(points.size());
    for (size_t i = 0; i < order.size(); ++i) {
        place[order[i]] = i;
    }
    const auto moved = [&place](std::vector<size_t> positions) {
        std::for_each(positions.begin(), positions.end(), [&](size_t& one) { one = place[one]; });
        return positions;
    };
    Incident incident;
    incident.entries = moved(topmost);
    for (const size_t one : order) {
        incident.points.push_back(points[one]);
        incident.points.back().below = moved(points[one].below);
    }
    return incident;
}

}  // namespace

std::vector<Incident> DivideErrors(const ErrorGraph& graph, const ErrorFindings& findings, size_t column) {
    const std::vector<NodeEvent> events = EventsOf(graph, findings, column);
    const Below below = BelowOf(graph, events);
    std::vector<Incident> incidents;
    for (const std::vector<NodeEvent>& group : Grouped(events, below)) {
        if (std::vector<IncidentPoint> points = PointsOf(OfType(group, below, column)); !points.empty()) {
            const std::vector<size_t> topmost = TopmostOf(points, below);
            Divide(graph, topmost, points);
            incidents.push_back(Ranked(points, topmost));
        }
    }
    return incidents;
}

}  // namespace explain

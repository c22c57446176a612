#include "explain/page/flow_picture.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>
#include <optional>

namespace explain {
namespace {

constexpr size_t DRAWN_WHOLE = 30;     // nodes of a graph that is drawn as it is
constexpr size_t DRAWN_MOST = 60;      // of a larger one
constexpr double LEAST_WEIGHT = 0.01;  // of a line without a flow
constexpr size_t NONE = std::numeric_limits<size_t>::max();

// The nodes right below one, in its graph and in the one that continues below, each once.
std::vector<size_t> BelowOf(const GraphWorld& world, size_t node) {
    std::vector<size_t> below = world.nodes[node].children;
    if (const auto next = world.handOvers.find(node); next != world.handOvers.end()) {
        below.push_back(next->second);
    }
    std::sort(below.begin(), below.end());
    below.erase(std::unique(below.begin(), below.end()), below.end());
    return below;
}

// From where each node is first reached from `top` over nodes that take no part.
std::map<size_t, size_t> LookThrough(const Analysis& analysis, size_t top) {
    std::map<size_t, size_t> from{{top, top}};
    std::vector<size_t> open{top};
    for (size_t next = 0; next < open.size(); ++next) {
        for (const size_t below : BelowOf(*analysis.world, open[next])) {
            if (from.try_emplace(below, open[next]).second && !analysis.findings[below].evidence.takesPart) {
                open.push_back(below);
            }
        }
    }
    return from;
}

// The flows over the edges of the graphs: through nodes that are looked through too, the shortest way.
Flows FlowsOverEdges(const Analysis& analysis) {
    Flows edges;
    std::map<size_t, size_t> from;
    size_t top = NONE;
    for (const auto& [ends, flow] : analysis.flows) {
        if (ends.first != top) {
            top = ends.first;
            from = LookThrough(analysis, top);
        }
        for (size_t node = ends.second; node != top; node = from.at(node)) {
            edges[{from.at(node), node}] += flow;
        }
    }
    return edges;
}

std::vector<double> FlowsInto(const Analysis& analysis, const Flows& edges) {
    std::vector<double> into(analysis.findings.size(), 0.0);
    into.at(0) = 1.0;
    for (const auto& [ends, flow] : edges) {
        into[ends.second] += flow;
    }
    return into;
}

// From where the delay first comes to each node; NONE where it does not. Of equally short ways, one through
// nodes that come first.
std::vector<size_t> Sources(const Analysis& analysis, const Flows& edges) {
    std::vector<size_t> sources(analysis.findings.size(), NONE);
    std::vector<size_t> open{0};
    sources[0] = 0;
    for (size_t next = 0; next < open.size(); ++next) {
        for (auto edge = edges.lower_bound({open[next], 0});
             edge != edges.end() && edge->first.first == open[next]; ++edge) {
            const size_t below = edge->first.second;
            if (edge->second > 0.0 && sources[below] == NONE) {
                sources[below] = open[next];
                open.push_back(below);
            }
        }
    }
    return sources;
}

std::vector<size_t> WayBack(const std::vector<size_t>& sources, size_t node) {
    std::vector<size_t> way{node};
    while (way.back() != 0 && sources[way.back()] != NONE) {
        way.push_back(sources[way.back()]);
    }
    return way;
}

// The nodes to draw, in the order of their distance.
std::vector<size_t> Selected(const Analysis& analysis, const std::vector<double>& into,
                             const std::vector<size_t>& sources) {
    std::vector<size_t> all(into.size());
    for (size_t i = 0; i < all.size(); ++i) {
        all[i] = i;
    }
    if (all.size() <= DRAWN_WHOLE) {
        return all;
    }
    std::vector<bool> first(all.size());  // whatever the flows: the top, and the way to the answer
    for (const size_t node : WayBack(sources, analysis.candidates.front().node)) {
        first[node] = true;
    }
    first[0] = true;
    std::stable_sort(all.begin(), all.end(),
                     [&](size_t a, size_t b) { return first[a] != first[b] ? first[a] : into[a] > into[b]; });
    const auto rest = std::find_if(all.begin(), all.end(), [&](size_t node) { return into[node] <= 0.0; });
    all.erase(rest, all.end());
    if (all.size() > DRAWN_MOST) {
        const size_t answer = analysis.candidates.front().node;
        all.resize(DRAWN_MOST);
        all.back() = std::find(all.begin(), all.end(), answer) == all.end() ? answer : all.back();
    }
    std::sort(all.begin(), all.end());
    return all;
}

// How many edges lie between each node and the top.
std::vector<size_t> DistancesOf(const GraphWorld& world) {
    std::vector<size_t> distances(world.nodes.size(), NONE);
    distances.at(0) = 0;
    for (size_t i = 0; i < world.nodes.size(); ++i) {
        for (const size_t below : BelowOf(world, i)) {
            distances[below] = std::min(distances[below], distances[i] + 1);
        }
    }
    return distances;
}

// Draws one picture.
class Artist {
public:
    explicit Artist(const Analysis& analysed)
        : analysis(analysed),
          overEdges(FlowsOverEdges(analysed)),
          into(FlowsInto(analysed, overEdges)),
          sources(Sources(analysed, overEdges)) {}

    FlowPicture Draw() {
        for (const size_t node : Selected(analysis, into, sources)) {
            places[node] = picture.nodes.size();
            picture.nodes.push_back({node, into[node], NONE, 0});
        }
        for (size_t i = 0; i < analysis.findings.size(); ++i) {
            if (places.count(i) == 0) {
                ++picture.leftOut;
                picture.leftOutShare += analysis.findings[i].share;
            }
        }
        for (const PlacedNode& node : picture.nodes) {
            AddEdges(node.node);
        }
        PlaceLayers();
        return std::move(picture);
    }

private:
    void PlaceLayers() {
        const std::vector<size_t> distances = DistancesOf(*analysis.world);
        std::map<size_t, std::vector<size_t>> layers;
        for (size_t place = 0; place < picture.nodes.size(); ++place) {
            layers[distances[picture.nodes[place].node]].push_back(place);
        }
        for (auto& [distance, layer] : layers) {
            std::stable_sort(layer.begin(), layer.end(), [&](size_t a, size_t b) {
                return picture.nodes[a].flow > picture.nodes[b].flow;
            });
            for (size_t first = 0; first < layer.size(); first += PICTURE_COLUMNS) {
                const size_t last = std::min(first + PICTURE_COLUMNS, layer.size());
                PlaceRow({layer.begin() + static_cast<std::ptrdiff_t>(first),
                          layer.begin() + static_cast<std::ptrdiff_t>(last)});
            }
        }
    }

    // The node with the largest flow takes the column closest to those above it, the next one of what is
    // left.
    void PlaceRow(const std::vector<size_t>& row) {
        std::vector<size_t> free(PICTURE_COLUMNS);
        std::iota(free.begin(), free.end(), size_t{0});
        for (const size_t place : row) {
            const double middle = MiddleAbove(place);
            const auto distance = [middle](size_t column) {
                return std::fabs(static_cast<double>(column) - middle);
            };
            const auto closest = std::min_element(
                free.begin(), free.end(), [&](size_t a, size_t b) { return distance(a) < distance(b); });
            picture.nodes[place].column = *closest;
            free.erase(closest);
        }
        for (const size_t place : row) {
            picture.nodes[place].row = picture.rows;
        }
        ++picture.rows;
    }

    // The mean column of the nodes right above one that have their places; those whose delay comes down count
    // most.
    double MiddleAbove(size_t place) const {
        double sum = 0.0;
        double weights = 0.0;
        for (const PlacedEdge& edge : picture.edges) {
            if (edge.to == place && picture.nodes[edge.from].row != NONE) {
                const double weight = LEAST_WEIGHT + edge.flow;
                sum += weight * static_cast<double>(picture.nodes[edge.from].column);
                weights += weight;
            }
        }
        return weights > 0.0 ? sum / weights : (PICTURE_COLUMNS - 1.0) / 2;
    }

    // The edges that lead down from a node, and the one that leads to it where all before it is left out.
    void AddEdges(size_t node) {
        for (const size_t below : BelowOf(*analysis.world, node)) {
            const auto flow = overEdges.find({node, below});
            if (below != node && places.count(below) > 0) {
                picture.edges.push_back(
                    {places[node], places[below], flow != overEdges.end() ? flow->second : 0.0, false});
            }
        }
        const std::vector<size_t> way = WayBack(sources, node);
        if (way.size() > 1 && places.count(way[1]) == 0) {
            const auto drawn = std::find_if(way.begin() + 1, way.end(),
                                            [&](size_t above) { return places.count(above) > 0; });
            picture.edges.push_back({places[*drawn], places[node], into[node], true});
        }
    }

    const Analysis& analysis;
    const Flows overEdges;
    const std::vector<double> into;
    const std::vector<size_t> sources;
    std::map<size_t, size_t> places;  // of drawn nodes, in the picture
    FlowPicture picture;
};

}  // namespace

FlowPicture PictureOf(const Analysis& analysis) {
    return Artist(analysis).Draw();
}

std::vector<size_t> WayTo(const Analysis& analysis, size_t node) {
    std::vector<size_t> way = WayBack(Sources(analysis, FlowsOverEdges(analysis)), node);
    std::reverse(way.begin(), way.end());
    return way;
}

}  // namespace explain

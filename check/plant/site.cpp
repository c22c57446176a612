#include "check/plant/site.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "check/graph/walks.h"

namespace check {
namespace {

// A node by the positions of its graph and its own.
using Place = std::pair<size_t, size_t>;

std::optional<size_t> EntryOf(const Graph& graph, const std::string& point) {
    std::optional<size_t> entry;
    for (size_t i = 0; i < graph.nodes.size(); ++i) {
        const Node& node = graph.nodes[i];
        if (node.isKept && node.Label() == point && (!entry || node.number < graph.nodes[*entry].number)) {
            entry = i;
        }
    }
    return entry;
}

// What one entered graph leads to.
class Descent {
public:
    Descent(const Model& toRead, const Walks& toFollow) : model(toRead), walks(toFollow) {}

    struct Step {
        Place place;
        size_t from;  // the step before; its own number at the top
        bool isHandOver;
    };

    const std::vector<Step>& Go(const Graph& graph, size_t entry) {
        Add({model.PositionOf(graph), entry}, 0, false);
        for (size_t next = 0; next < steps.size(); ++next) {
            const Place place = steps[next].place;
            const Graph& here = model.Graphs()[place.first];
            const Node& node = here.nodes[place.second];
            for (const size_t child : node.children) {
                Add({place.first, child}, next, false);
            }
            // As the plug-in hands over: by the name, where there is no subGraph.
            const Graph* below = model.Find(TextOf(node.subGraph != nullptr ? node.subGraph : node.name));
            if (below != nullptr && below != &here) {
                const size_t top = walks.Of(model.PositionOf(*below)).top;
                if (top != NONE) {
                    Add({model.PositionOf(*below), top}, next, true);
                }
            }
        }
        return steps;
    }

    std::string_view LabelOf(const Step& step) const {
        return model.Graphs()[step.place.first].nodes[step.place.second].Label();
    }

    // The labels of the steps before one, the first one first.
    std::vector<std::string> Above(const Step& step) const {
        std::vector<std::string> labels;
        for (const Step* at = &step; at != &steps.front();) {
            at = &steps[at->from];
            labels.emplace_back(LabelOf(*at));
        }
        std::reverse(labels.begin(), labels.end());
        return labels;
    }

private:
    void Add(const Place& place, size_t from, bool isHandOver) {
        if (seen.insert(place).second) {
            steps.push_back({place, from, isHandOver});
        }
    }

    const Model& model;
    const Walks& walks;
    std::vector<Step> steps;
    std::set<Place> seen;
};

}  // namespace

std::vector<Site> SitesOf(const Model& model) {
    const Walks walks(model);
    std::vector<Site> sites;
    std::set<std::pair<size_t, std::string>> known;  // graph, label
    for (const GraphUse& use : GraphUses()) {
        const Graph* graph = use.kind == GraphKind::FLOW && use.isWalked ? model.Find(use.graph) : nullptr;
        const std::optional<size_t> entry = graph != nullptr ? EntryOf(*graph, use.point) : std::nullopt;
        if (!entry) {
            continue;
        }
        Descent descent(model, walks);
        const auto& steps = descent.Go(*graph, *entry);
        for (const Descent::Step& step : steps) {
            const std::string label(descent.LabelOf(step));
            const bool isRepeated = step.isHandOver && descent.LabelOf(steps[step.from]) == label;
            if (!label.empty() && !isRepeated && known.emplace(step.place.first, label).second) {
                const Graph& here = model.Graphs()[step.place.first];
                sites.push_back({label, here.name, use.graph, use.point,
                                 here.nodes[step.place.second].IsObservation(), descent.Above(step)});
            }
        }
    }
    return sites;
}

}  // namespace check

#include "fleet/rounds.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace fleet {
namespace {

constexpr int64_t USUAL_STEP = 30;          // seconds
constexpr int64_t LONGEST_WINDOW = 172800;  // seconds that zorv-explain takes

// With a step more on each side: clocks differ, and a window has to have a length.
Window Widened(const Window& window, int64_t step) {
    Window wide = {window.start - step, window.end + step};
    wide.start = std::max(wide.start, wide.end - LONGEST_WINDOW);
    return wide;
}

SecondLook LookAt(const std::vector<NodeAnswer>& nodes, const Fold& fold) {
    int64_t step = 0;
    for (const NodeAnswer& node : nodes) {
        step = std::max(step, node.step);
    }
    SecondLook look;
    for (const Incident& incident : fold.incidents) {
        look.windows.push_back(Widened(incident.window, step > 0 ? step : USUAL_STEP));
        for (const auto* roles : {&incident.causes, &incident.symptoms}) {
            for (const Role& role : *roles) {
                look.points.insert(role.at.point);
                for (const Candidate& candidate : role.candidates) {
                    look.points.insert(candidate.point);
                }
            }
        }
    }
    return look;
}

// What a node says of a window in which it had nothing to say by itself.
void TakeFindings(const NodeAnswer& said, const Window& window, const std::vector<Role>& known,
                  NodeAnswer& node) {
    const bool isKnown =
        std::any_of(known.begin(), known.end(), [&](const Role& role) { return role.window.Meets(window); });
    if (!isKnown) {
        std::copy_if(said.findings.begin(), said.findings.end(), std::back_inserter(node.findings),
                     [](const Finding& finding) { return finding.IsAnswer(); });
    }
}

}  // namespace

Outcome AskTwice(Source& source) {
    Outcome outcome;
    outcome.nodes = source.First();
    outcome.fold = FoldAnswers(outcome.nodes);
    const SecondLook look = LookAt(outcome.nodes, outcome.fold);
    for (const Window& window : look.windows) {
        outcome.comparisons.push_back({window, {}});
    }
    std::vector<NodeAnswer> asked = outcome.nodes;
    source.Again(outcome.nodes, look, [&](size_t window, size_t node, const NodeAnswer& said) {
        for (const auto& [point, delay] : said.delays) {
            outcome.comparisons[window].delays[point].emplace(node, delay);
        }
        TakeFindings(said, look.windows[window], outcome.fold.roles[node], asked[node]);
    });
    auto& made = outcome.comparisons;
    made.erase(std::remove_if(made.begin(), made.end(),
                              [](const Comparison& comparison) { return comparison.delays.empty(); }),
               made.end());
    outcome.nodes = std::move(asked);
    outcome.fold = FoldAnswers(outcome.nodes);
    return outcome;
}

}  // namespace fleet

#include "explain/analysis/order.h"

#include <algorithm>
#include <iterator>

namespace explain {
namespace {

bool NamesCause(const Analysis& analysis) {
    return analysis.HasAnswer() && !analysis.isWeak && !analysis.NamesItself();
}

// Whether what comes first below a point stands in the other's graph, and not in this one's.
bool LeadsTo(const Analysis& analysis, const Analysis& other) {
    return analysis.NamesItself() ||
           (other.graph != analysis.graph && analysis.candidates.front().graph == other.graph);
}

bool IsOutdone(const Analysis& analysis, const std::vector<Analysis>& analyses) {
    return analysis.HasAnswer() && std::any_of(analyses.begin(), analyses.end(), [&](const Analysis& other) {
               return NamesCause(other) && other.point == analysis.point &&
                      other.event->first == analysis.event->first &&
                      other.event->last == analysis.event->last && LeadsTo(analysis, other);
           });
}

}  // namespace

void PutCausesFirst(std::vector<Analysis>& analyses) {
    std::vector<std::vector<Analysis>> ranks(3);
    for (const Analysis& analysis : analyses) {
        ranks[analysis.isWeak ? 2 : IsOutdone(analysis, analyses) ? 1 : 0].push_back(analysis);
    }
    analyses.clear();
    for (std::vector<Analysis>& rank : ranks) {
        std::move(rank.begin(), rank.end(), std::back_inserter(analyses));
    }
}

}  // namespace explain

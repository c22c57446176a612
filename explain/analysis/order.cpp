#include "explain/analysis/order.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string>

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

bool IsOngoing(const Analysis& analysis) {
    return analysis.event && analysis.event->isOngoing;
}

// How long all requests of the event together waited longer than usual.
double WaitingOf(const Analysis& analysis) {
    return analysis.HasAnswer() && !analysis.isWeak ? *analysis.findings.front().evidence.excess : 0.0;
}

// What is going on first, that with the longest waiting before others; else each point's in their order,
// that point's first whose worst event had the longest.
void SortByUrgency(std::vector<Analysis>& analyses) {
    std::map<std::string, double> worst;
    for (const Analysis& analysis : analyses) {
        double& longest = worst[analysis.point];
        longest = std::max(longest, WaitingOf(analysis));
    }
    std::stable_sort(analyses.begin(), analyses.end(), [&](const Analysis& a, const Analysis& b) {
        if (IsOngoing(a) != IsOngoing(b)) {
            return IsOngoing(a);
        }
        return IsOngoing(a) ? WaitingOf(a) > WaitingOf(b) : worst[a.point] > worst[b.point];
    });
}

}  // namespace

void SortAnswers(std::vector<Analysis>& analyses) {
    SortByUrgency(analyses);
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

#include "fleet/folding/incident.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <tuple>

#include "explain/finding/usual.h"

namespace fleet {
namespace {

constexpr int64_t SLACK_STEPS = 2;    // what a clock, or where an event seems to begin, may be off
constexpr int64_t UNKNOWN_STEP = 30;  // seconds
constexpr size_t FEWEST_AT_ONCE = 3;  // nodes of which "more than half" says something
constexpr double AHEAD = 5.0;         // robust deviations

bool CountsMore(const Role& one, const Role& other) {
    const auto key = [](const Role& role) {
        return std::make_tuple(role.kind, !role.isOngoing, -role.extra);
    };
    return key(one) < key(other);
}

bool IsStronger(const Role& one, const Role& other) {
    const auto key = [](const Role& role) {
        return std::make_tuple(role.kind, -role.extra, role.window.start, role.node,
                               std::cref(role.at.point));
    };
    return key(one) < key(other);
}

std::set<size_t> NodesOf(const std::vector<Role>& roles) {
    std::set<size_t> nodes;
    for (const Role& role : roles) {
        nodes.insert(role.node);
    }
    return nodes;
}

// How many nodes are slow at one moment at most, when each goes on for `slack` seconds more: windows may
// chain up to an incident that nobody is in from its begin to its end.
size_t MostAtOnce(const Incident& incident, int64_t slack) {
    std::vector<std::tuple<int64_t, bool, size_t>> turns;  // when, whether it ends, and the node
    for (const auto* roles : {&incident.causes, &incident.symptoms}) {
        for (const Role& role : *roles) {
            turns.emplace_back(role.window.start, false, role.node);
            turns.emplace_back(role.window.end + slack, true, role.node);
        }
    }
    std::sort(turns.begin(), turns.end());
    std::map<size_t, int> slow;
    size_t most = 0;
    for (const auto& [time, isEnd, node] : turns) {
        int& events = slow[node];
        events += isEnd ? -1 : 1;
        if (events == 0) {
            slow.erase(node);
        }
        most = std::max(most, slow.size());
    }
    return most;
}

// Makes incidents of roles, those that count most first: each takes its place in an incident that it meets,
// and what meets none makes new ones.
class Folding {
public:
    Folding(int64_t slackSeconds, size_t answeredNodes) : slack(slackSeconds), answered(answeredNodes) {}

    // Roles that are alike; each once, the surest first.
    void Add(std::vector<Role> roles) {
        std::sort(roles.begin(), roles.end(),
                  [](const Role& one, const Role& other) { return one.window.start < other.window.start; });
        const size_t before = incidents.size();
        for (const Role& role : roles) {
            if (Incident* const incident = Nearest(role.window, before)) {
                Join(role, *incident);
            } else if (incidents.size() > before && incidents.back().window.Meets(role.window, slack)) {
                Join(role, incidents.back());
                incidents.back().window.end = std::max(incidents.back().window.end, role.window.end);
            } else {
                incidents.emplace_back().window = role.window;
                Join(role, incidents.back());
            }
        }
    }

    // Of nodes under load: they explain nothing, but are to be told.
    void Mark(const std::vector<Role>& roles) {
        for (const Role& role : roles) {
            if (Incident* const incident = Nearest(role.window, incidents.size())) {
                incident->loaded.push_back(role.node);
            }
        }
    }

    std::vector<Incident> Done() {
        for (Incident& incident : incidents) {
            Settle(incident);
        }
        std::stable_sort(incidents.begin(), incidents.end(), [](const Incident& one, const Incident& other) {
            return Weight(one) > Weight(other);
        });
        return std::move(incidents);
    }

private:
    // Of the first `count` incidents the one that has most of its time in common with the window.
    Incident* Nearest(const Window& window, size_t count) {
        Incident* nearest = nullptr;
        int64_t most = 0;
        for (size_t i = 0; i < count; ++i) {
            const Window& other = incidents[i].window;
            const int64_t common = std::min(window.end, other.end) - std::max(window.start, other.start);
            if (other.Meets(window, slack) && (nearest == nullptr || common > most)) {
                nearest = &incidents[i];
                most = common;
            }
        }
        return nearest;
    }

    // Who is only slow, and nobody knows why, is a symptom beside a node that is known to be the cause.
    static void Join(const Role& role, Incident& incident) {
        const bool hasCause = !incident.causes.empty() && incident.causes.front().kind == RoleKind::CAUSE;
        const bool isCause = role.IsCause() && (role.kind != RoleKind::UNEXPLAINED || !hasCause);
        (isCause ? incident.causes : incident.symptoms).push_back(role);
    }

    void Settle(Incident& incident) const {
        KeepStrongest(incident.causes, {},
                      [](const Role& role) { return std::make_pair(role.node, role.at.point); });
        KeepStrongest(incident.symptoms, NodesOf(incident.causes),
                      [](const Role& role) { return role.node; });
        const auto& leading = incident.causes.empty() ? incident.symptoms : incident.causes;
        incident.isOngoing =
            std::any_of(leading.begin(), leading.end(), [](const Role& role) { return role.isOngoing; });
        std::sort(incident.loaded.begin(), incident.loaded.end());
        incident.loaded.erase(std::unique(incident.loaded.begin(), incident.loaded.end()),
                              incident.loaded.end());
        const size_t atOnce = MostAtOnce(incident, slack);
        incident.atOnce = IsShared(incident, atOnce) ? atOnce : 0;
    }

    template <typename Identity>
    static void KeepStrongest(std::vector<Role>& roles, const std::set<size_t>& without,
                              const Identity& identityOf) {
        std::sort(roles.begin(), roles.end(), IsStronger);
        std::set<decltype(identityOf(roles.front()))> seen;
        roles.erase(std::remove_if(roles.begin(), roles.end(),
                                   [&](const Role& role) {
                                       return without.count(role.node) > 0 ||
                                              !seen.insert(identityOf(role)).second;
                                   }),
                    roles.end());
    }

    bool IsShared(const Incident& incident, size_t atOnce) const {
        const size_t causes = NodesOf(incident.causes).size();
        if (answered < FEWEST_AT_ONCE || atOnce * 2 <= answered) {
            return false;
        }
        return causes == 0 || (causes * 2 > answered && !IsOneAhead(incident.causes));
    }

    // Whether the first is far stronger than what is usual among them.
    static bool IsOneAhead(const std::vector<Role>& causes) {
        std::vector<double> extras;
        std::transform(causes.begin(), causes.end(), std::back_inserter(extras),
                       [](const Role& role) { return role.extra; });
        return explain::UsualOf(extras).Deviations(causes.front().extra) > AHEAD;
    }

    // What is told first: what is known, or seen by several nodes; what still goes on; by nodes, and by
    // delay.
    static std::tuple<bool, bool, size_t, double> Weight(const Incident& incident) {
        const Role& first = incident.causes.empty() ? incident.symptoms.front() : incident.causes.front();
        return {first.kind == RoleKind::CAUSE || incident.NodeCount() > 1, incident.isOngoing,
                incident.NodeCount(), first.extra};
    }

    const int64_t slack;
    const size_t answered;
    std::vector<Incident> incidents;
};

int64_t SlackOf(const std::vector<NodeAnswer>& answers) {
    int64_t step = 0;
    for (const NodeAnswer& answer : answers) {
        step = std::max(step, answer.step);
    }
    return SLACK_STEPS * (step > 0 ? step : UNKNOWN_STEP);
}

std::vector<Role> OfKinds(const std::vector<std::vector<Role>>& all, const std::set<RoleKind>& kinds) {
    std::vector<Role> some;
    for (const std::vector<Role>& roles : all) {
        std::copy_if(roles.begin(), roles.end(), std::back_inserter(some),
                     [&](const Role& role) { return kinds.count(role.kind) > 0; });
    }
    return some;
}

}  // namespace

size_t Incident::NodeCount() const {
    return NodesOf(causes).size() + symptoms.size();
}

Fold FoldAnswers(const std::vector<NodeAnswer>& answers) {
    Fold fold;
    for (size_t node = 0; node < answers.size(); ++node) {
        fold.roles.push_back(RolesOf(answers[node], node));
        std::stable_sort(fold.roles.back().begin(), fold.roles.back().end(), CountsMore);
        fold.answered += answers[node].failure.empty() ? 1U : 0U;
    }
    Folding folding(SlackOf(answers), fold.answered);
    folding.Add(OfKinds(fold.roles, {RoleKind::CAUSE}));
    folding.Add(OfKinds(fold.roles, {RoleKind::UNSURE_CAUSE, RoleKind::UNEXPLAINED}));
    folding.Add(OfKinds(fold.roles, {RoleKind::WAITS}));
    folding.Mark(OfKinds(fold.roles, {RoleKind::LOAD}));
    fold.incidents = folding.Done();
    return fold;
}

}  // namespace fleet

#include "fleet/folding/role.h"

#include <algorithm>
#include <functional>
#include <tuple>

namespace fleet {
namespace {

bool IsUnexplained(const Finding& finding) {
    return finding.verdict == Verdict::POINT && finding.itself >= std::max(finding.waiting, finding.below);
}

// Of two graphs that explain one event, the one that sees further down, and is surer of it.
bool ExplainsMore(const Finding& one, const Finding& other) {
    const auto merit = [](const Finding& finding) {
        return std::make_tuple(!IsUnexplained(finding), -static_cast<int>(finding.certainty),
                               -finding.itself);
    };
    return merit(one) > merit(other);
}

// One finding for each event of each point.
std::vector<const Finding*> BestOf(const std::vector<Finding>& findings) {
    std::vector<const Finding*> told;
    for (const Finding& finding : findings) {
        if (finding.IsAnswer() && finding.window) {
            told.push_back(&finding);
        }
    }
    const auto key = [](const Finding* finding) {
        return std::make_tuple(std::cref(finding->point), finding->window->start, -finding->window->end,
                               std::cref(finding->graph));
    };
    std::stable_sort(told.begin(), told.end(),
                     [&](const Finding* one, const Finding* other) { return key(one) < key(other); });
    std::vector<const Finding*> best;
    for (const Finding* const finding : told) {
        const bool isNew = best.empty() || best.back()->point != finding->point ||
                           !best.back()->window->Meets(*finding->window);
        if (isNew) {
            best.push_back(finding);
        } else if (ExplainsMore(*finding, *best.back())) {
            best.back() = finding;
        }
    }
    return best;
}

RoleKind KindOf(const Finding& finding) {
    if (finding.verdict == Verdict::LOAD) {
        return RoleKind::LOAD;
    }
    if (IsUnexplained(finding)) {
        return RoleKind::UNEXPLAINED;
    }
    if (finding.waiting >= finding.below) {
        return RoleKind::WAITS;
    }
    return finding.certainty == Certainty::UNSURE ? RoleKind::UNSURE_CAUSE : RoleKind::CAUSE;
}

Candidate PointOf(const Finding& finding, RoleKind kind) {
    if (kind == RoleKind::UNEXPLAINED) {
        return {finding.point, finding.graph, {}, finding.itself, finding.delay};
    }
    return kind == RoleKind::LOAD ? Candidate() : kind == RoleKind::WAITS ? finding.waitsAt : finding.holdsAt;
}

Role RoleOf(const Finding& finding, size_t node) {
    Role role;
    role.node = node;
    role.kind = KindOf(finding);
    role.window = *finding.window;
    role.isOngoing = finding.isOngoing;
    role.isErrors = finding.isErrors;
    role.hostPoint = finding.point;
    role.graph = finding.graph;
    role.certainty = finding.certainty;
    role.delay = finding.delay;
    role.at = PointOf(finding, role.kind);
    role.candidates = finding.candidates;
    const double share = role.kind == RoleKind::WAITS         ? finding.waiting
                         : role.kind == RoleKind::UNEXPLAINED ? finding.itself
                                                              : finding.below;
    role.extra = role.delay ? (role.delay->now - role.delay->usual) * share : 0.0;
    return role;
}

bool IsUnsure(const Role& role) {
    return role.kind == RoleKind::UNSURE_CAUSE || role.kind == RoleKind::UNEXPLAINED;
}

}  // namespace

std::vector<Role> RolesOf(const NodeAnswer& answer, size_t node) {
    std::vector<Role> roles;
    for (const Finding* const finding : BestOf(answer.findings)) {
        roles.push_back(RoleOf(*finding, node));
    }
    const std::vector<Role> all = roles;
    const auto isSaidSurer = [&](const Role& role) {
        return IsUnsure(role) && std::any_of(all.begin(), all.end(), [&](const Role& other) {
                   return !IsUnsure(other) && other.window.Meets(role.window, answer.step);
               });
    };
    roles.erase(std::remove_if(roles.begin(), roles.end(), isSaidSurer), roles.end());
    return roles;
}

}  // namespace fleet

#include "explain/watch/error_changes.h"

#include <algorithm>

#include "explain/wording_errors.h"

namespace explain {
namespace {

// Of each type the events that say most of it now: what goes on, else the latest.
std::map<int32_t, const ErrorAnalysis*> LatestByType(const Report& report) {
    std::map<int32_t, const ErrorAnalysis*> newest;
    const auto isLess = [](const ErrorAnalysis& a, const ErrorAnalysis& b) {
        return a.event.isOngoing != b.event.isOngoing ? b.event.isOngoing : a.event.end < b.event.end;
    };
    for (const ErrorAnalysis& one : report.errors) {
        const ErrorAnalysis*& known = newest[one.type.index];
        known = known == nullptr || isLess(*known, one) ? &one : known;
    }
    return newest;
}

}  // namespace

void ErrorChanges::After(const Report& report, ChangeList& changes) {
    if (!report.coverage.newest) {
        return;  // there was nothing to see
    }
    if (!report.errorsReason) {
        const std::map<int32_t, const ErrorAnalysis*> newest = LatestByType(report);
        for (const auto& [type, analysis] : newest) {
            TellOfErrors(report, *analysis, types[type], changes);
        }
        for (auto& [type, state] : types) {
            const auto found = newest.find(type);
            if (state.isOn && (found == newest.end() || !found->second->event.isOngoing)) {
                TellOfEnd(report, state, changes);
            }
        }
        seen = report.coverage.newest;
    }
    TellOfHealings(report, changes);
}

void ErrorChanges::TellOfErrors(const Report& report, const ErrorAnalysis& newest, State& state,
                                ChangeList& changes) const {
    const ErrorEvent& event = newest.event;
    const int64_t step = report.coverage.step;
    const bool isOfNow = event.isOngoing || (seen && event.end + step >= *seen);
    if (!state.isOn && event.end > state.end && isOfNow) {
        const ErrorShare& first = newest.points.front();
        state.isOn = true;
        state.begin = std::max(event.start, state.end == NEVER ? NEVER : state.end + step);
        state.type = WordOf(newest.type);
        changes.push_back({ChangeKind::ERRORS, state.begin});
        changes.back().type = state.type;
        changes.back().count = event.count;
        changes.back().cause = Cause{first.point, first.share, newest.certainty};
    }
    if (state.isOn) {
        state.end = std::max(state.end, event.end);
        state.count = event.count;
    }
}

void ErrorChanges::TellOfEnd(const Report& report, State& state, ChangeList& changes) {
    changes.push_back({ChangeKind::ERRORS_OVER, state.end + report.coverage.step});
    changes.back().type = state.type;
    changes.back().count = state.count;
    changes.back().seconds = changes.back().time - state.begin;
    state.isOn = false;
}

void ErrorChanges::TellOfHealings(const Report& report, ChangeList& changes) {
    const int64_t told = healed.value_or(report.madeAt);
    healed = told;
    for (const Healing& healing : report.healings) {
        if (healing.time > told) {
            changes.push_back({ChangeKind::HEALED, healing.time});
            changes.back().reason = SentenceOf(healing, report);
            healed = std::max(healed, std::optional(healing.time));
        }
    }
}

}  // namespace explain

#include <algorithm>
#include <cstdlib>
#include <optional>

#include "explain/report.h"
#include "explain/wording_errors.h"

namespace explain {
namespace {

constexpr size_t MOST_TOLD = 12;
// What a healing takes until the delay shows it: an event that ends later ended by something else.
constexpr int64_t EFFECT_SECONDS = 900;

// An event, and how it is called.
struct Named {
    int64_t start = 0;
    std::string name;
};

// The event that begins nearest to a time.
std::optional<Named> NearestTo(int64_t time, const Report& report) {
    std::optional<Named> nearest;
    const auto tryOut = [&](int64_t start, const std::string& name) {
        if (!nearest || std::llabs(start - time) < std::llabs(nearest->start - time)) {
            nearest = Named{start, name};
        }
    };
    for (const Analysis& analysis : report.analyses) {
        if (analysis.event && !analysis.isWeak) {
            tryOut(analysis.event->start, analysis.point);
        }
    }
    for (const ErrorAnalysis& analysis : report.errors) {
        tryOut(analysis.event.start, WordOf(analysis.type));
    }
    return nearest;
}

// How long before or after the begin of an event; empty where there is none.
std::string RelationOf(const Healing& healing, const Report& report) {
    const std::optional<Named> event = NearestTo(healing.time, report);
    if (!event) {
        return {};
    }
    const int64_t after = healing.time - event->start;
    const std::string which = " the event of " + event->name + " began";
    return after == 0 ? ", when" + which
                      : ", " + Duration(std::llabs(after)) + (after > 0 ? " after" : " before") + which;
}

}  // namespace

std::string SentenceOf(const Healing& healing, const Report& report) {
    return healing.module + " healed for " + healing.kind +
           (healing.cause.empty() ? "" : " (" + healing.cause + ")") + " on node " +
           std::to_string(healing.node) + (healing.isHere ? "" : ", another one") +
           RelationOf(healing, report);
}

bool IsHealed(const Analysis& analysis, const Report& report) {
    if (!analysis.event || analysis.event->isOngoing || analysis.isWeak) {
        return false;
    }
    const Event& event = *analysis.event;
    return std::any_of(report.healings.begin(), report.healings.end(), [&](const Healing& healing) {
        return healing.isHere && healing.isOfDelay && healing.time >= event.start &&
               healing.time <= event.end && event.end - healing.time <= EFFECT_SECONDS;
    });
}

std::vector<Healing> HealingsToTell(const Report& report) {
    const std::vector<Healing>& all = report.healings;
    return {all.end() - static_cast<std::ptrdiff_t>(std::min(all.size(), MOST_TOLD)), all.end()};
}

std::string EarlierHealings(const Report& report) {
    const size_t count = report.healings.size();
    return count > MOST_TOLD ? "and " + Counted(count - MOST_TOLD, "earlier healing") : "";
}

}  // namespace explain

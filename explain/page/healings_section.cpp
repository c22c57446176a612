#include "explain/page/healings_section.h"

#include <algorithm>

#include "explain/wording_errors.h"

namespace explain {
using namespace page;

Markup HealingsSection(const Report& report) {
    if (report.healings.empty()) {
        return {};
    }
    Table table("What the agent has healed, from an hour before the range on", {{"Time"}, {"Healing"}});
    for (const Healing& healing : HealingsToTell(report)) {
        table.Add({Text(LocalTime(healing.time, report.zoneOffset)), Text(SentenceOf(healing, report))});
    }
    const std::string earlier = EarlierHealings(report);
    return Element("section",
                   Element("h2", HEALED_TITLE) + table.Done() +
                       (earlier.empty() ? Markup() : Element("p", {{"class", "quiet"}}, Text(earlier))));
}

Markup HealingsLegend(const Report& report, const Window& window) {
    const bool hasMarks = std::any_of(report.healings.begin(), report.healings.end(),
                                      [&](const Healing& one) { return window.Holds(one.time); });
    return hasMarks ? Element("span", {{"class", "healing-key"}, {"aria-hidden", "true"}}, Text("\u25c6")) +
                          Text(" and a line mark what was healed.")
                    : Markup();
}

std::vector<int64_t> HealingTimes(const Report& report) {
    std::vector<int64_t> times;
    std::transform(report.healings.begin(), report.healings.end(), std::back_inserter(times),
                   [](const Healing& one) { return one.time; });
    return times;
}

}  // namespace explain

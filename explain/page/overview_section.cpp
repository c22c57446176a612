#include "explain/page/overview_section.h"

#include <algorithm>

#include "explain/overview/picture.h"
#include "explain/page/figures.h"
#include "explain/wording.h"

namespace explain {
using namespace page;
namespace {

constexpr size_t BARS = 160;
constexpr double TALLEST = 20.0;
constexpr double LOWEST = 1.0;  // of a bar that stands for the usual

const char* StyleOf(Mood mood) {
    return mood == Mood::NOW ? "now" : mood == Mood::OVER ? "over" : "calm";
}

// Bars side by side; none where there are no rows.
Markup Bars(const PictureRow& row, const Report& report) {
    const Window& range = report.question.range;
    const auto values = LargestPerCell(row.values, range.start, range.end, report.coverage.step, BARS);
    std::string path;
    for (size_t i = 0; i < values.size(); ++i) {
        if (values[i]) {
            const double part = row.top > 0.0 ? *values[i] / row.top : 0.0;
            const double height = LOWEST + std::clamp(part, 0.0, 1.0) * (TALLEST - LOWEST);
            path += "M" + PlaceFigure(static_cast<double>(i), TALLEST) + "v-" + Figure(height, 1) + "h1v" +
                    Figure(height, 1) + "z";
        }
    }
    return Element("svg",
                   {{"class", "bars"},
                    {"viewBox", "0 0 " + std::to_string(BARS) + " 20"},
                    {"preserveAspectRatio", "none"},
                    {"role", "img"},
                    {"aria-label", row.name + " over the range: " + row.state.text}},
                   Element("path", {{"d", path}}));
}

Markup RowTable(const char* title, const char* subject, const char* amount,
                const std::vector<PictureRow>& rows, const Report& report) {
    if (rows.empty()) {
        return {};
    }
    const Window& range = report.question.range;
    const std::string axis = ShortTime(range.start, report) + " to " + ShortTime(range.end, report);
    Table table(title, {{subject}, {axis.c_str()}, {amount, true}, {"State"}});
    for (const PictureRow& row : rows) {
        table.Add({Text(row.name), Bars(row, report), Text(row.amount.empty() ? UNKNOWN_FIGURE : row.amount),
                   Text(row.state.text)},
                  StyleOf(row.state.mood));
    }
    return table.Done();
}

Markup EventsTable(const std::vector<PictureEvent>& events) {
    if (events.empty()) {
        return {};
    }
    Table table(EVENTS_TITLE, {{"When"}, {"What"}, {"Cause"}});
    for (const PictureEvent& event : events) {
        const Markup when = Text(event.when.text);
        table.Add({event.anchor.empty() ? when : Element("a", {{"href", "#" + event.anchor}}, when),
                   Text(event.subject), Text(event.cause.empty() ? UNKNOWN_FIGURE : event.cause)},
                  StyleOf(event.when.mood));
    }
    return table.Done();
}

Markup Headlines(const Picture& picture) {
    Markup lines;
    for (const Headline& line : picture.headlines) {
        const std::string cause = line.cause.empty() ? "" : ": " + line.cause;
        lines += Element("p", {{"class", std::string("headline ") + StyleOf(line.what.mood)}},
                         Text(line.what.text + cause));
    }
    return lines;
}

Markup Healings(const Report& report) {
    const std::string all = BriefHealingsOf(report);
    return all.empty() ? Markup() : Element("p", Element("strong", HEALED_TITLE) + Text(" " + all));
}

}  // namespace

Markup OverviewSection(const Report& report) {
    const Picture picture = PictureOf(report, PAGE_FIGURES);
    Markup basis = Element("p", {{"class", "quiet"}}, Text(NewestOf(report)));
    for (const std::string& lack : LacksOf(report)) {
        basis += Element("p", {{"class", "over"}}, Text(lack));
    }
    const Markup rows = RowTable(DELAYS_TITLE, "Point", "Delay", picture.points, report) +
                        RowTable(ERRORS_TITLE, "Type", "Errors", picture.errors, report);
    return Element("section", {{"class", "overview"}},
                   basis + Headlines(picture) + rows + Healings(report) + EventsTable(picture.events));
}

}  // namespace explain

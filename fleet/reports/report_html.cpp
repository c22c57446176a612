#include <algorithm>

#include "fleet/reports/report.h"
#include "fleet/reports/wording.h"
#include "page/document.h"
#include "page/markup.h"
#include "page/svg.h"
#include "text/counted.h"
#include "text/local_time.h"

namespace fleet {
namespace {
using namespace page;

constexpr size_t MOST_BARS = 200;  // nodes in the timeline
constexpr int ROW_HEIGHT = 18, NAME_WIDTH = 190, WIDTH = 1000, TOP = 20;

// A node's name, which leads to its own page where there is one.
Markup NameOf(const Outcome& outcome, size_t node) {
    const std::string& name = outcome.nodes[node].name;
    const std::string page = node < outcome.pages.size() ? outcome.pages[node] : "";
    return page.empty() ? Text(name) : Element("a", {{"href", page}}, Text(name));
}

Markup NodeTable(const Outcome& outcome) {
    Table table("A line for each node", {{"Node"},
                                         {"Verdict"},
                                         {"Since"},
                                         {"State"},
                                         {"Point"},
                                         {"Share", true},
                                         {"Host", true},
                                         {"Peers", true}});
    const bool isOneDay = IsOneDay(outcome);
    for (size_t node = 0; node < outcome.nodes.size(); ++node) {
        const Row row = RowOf(outcome, node, isOneDay);
        const std::string& failure = outcome.nodes[node].failure;
        table.Add({NameOf(outcome, node), Text(row.verdict), Text(row.since), Text(row.state),
                   Text(failure.empty() ? row.point : failure), Text(row.share), Text(row.host),
                   Text(row.peers)});
    }
    return Element("section", Element("h2", "Nodes") + table.Done() +
                                  Element("p", {{"class", "quiet"}}, Text(ROW_LEGEND)));
}

// ---- the timeline

const char* ColourOf(const Role& role) {
    return role.kind == RoleKind::CAUSE   ? "fill: var(--hot)"
           : role.kind == RoleKind::WAITS ? "fill: var(--amber-flow)"
           : role.kind == RoleKind::LOAD  ? "fill: var(--cool)"
                                          : "fill: var(--amber)";
}

// When any node was slow.
Window SpanOf(const Outcome& outcome) {
    Window span = {INT64_MAX, INT64_MIN};
    for (const std::vector<Role>& roles : outcome.fold.roles) {
        for (const Role& role : roles) {
            span.start = std::min(span.start, role.window.start);
            span.end = std::max(span.end, role.window.end);
        }
    }
    const int64_t margin = (span.end - span.start) / 20 + 1;
    return {span.start - margin, span.end + margin};
}

Markup Label(int x, int y, const std::string& text, const char* anchor) {
    return Element(
        "text",
        {{"x", std::to_string(x)}, {"y", std::to_string(y)}, {"class", "label"}, {"text-anchor", anchor}},
        Text(Shortened(text, 26)));
}

Markup Bars(const Outcome& outcome, size_t node, const Window& span, int y) {
    Markup bars = Label(0, y + ROW_HEIGHT - 5, outcome.nodes[node].name, "start");
    const auto placeOf = [&](int64_t time) {
        return NAME_WIDTH + static_cast<double>(time - span.start) * (WIDTH - NAME_WIDTH) /
                                static_cast<double>(span.end - span.start);
    };
    const int64_t zone = outcome.nodes[node].zoneOffset;
    for (const Role& role : outcome.fold.roles[node]) {
        const double from = placeOf(role.window.start);
        const double width = std::max(2.0, placeOf(role.window.end) - from);
        const std::string what = (role.kind == RoleKind::LOAD ? "load" : role.at.point) + ", " +
                                 LocalTime(role.window.start, zone) + " to " +
                                 LocalTime(role.window.end, zone);
        bars += Element("rect",
                        {{"x", std::to_string(from)},
                         {"y", std::to_string(y + 3)},
                         {"width", std::to_string(width)},
                         {"height", std::to_string(ROW_HEIGHT - 6)},
                         {"style", ColourOf(role)}},
                        Element("title", what));
    }
    return bars;
}

Markup Timeline(const Outcome& outcome) {
    std::vector<size_t> nodes;
    for (size_t node = 0; node < outcome.nodes.size() && nodes.size() < MOST_BARS; ++node) {
        if (!outcome.fold.roles[node].empty()) {
            nodes.push_back(node);
        }
    }
    if (nodes.empty()) {
        return {};
    }
    const Window span = SpanOf(outcome);
    const int64_t zone = outcome.nodes[nodes.front()].zoneOffset;
    Markup picture = Label(NAME_WIDTH, 12, LocalTime(span.start, zone), "start") +
                     Label(WIDTH, 12, LocalTime(span.end, zone), "end");
    int y = TOP;
    for (const size_t node : nodes) {
        picture += Bars(outcome, node, span, y);
        y += ROW_HEIGHT;
    }
    const std::string box = "0 0 " + std::to_string(WIDTH) + " " + std::to_string(y);
    const Markup drawing = Drawing("timeline", "when", box, Text("When each node was slow"),
                                   "A row for each node that was, and in it a bar for each event.", picture);
    const Markup caption = Element("figcaption",
                                   "Red: its own devices; light: it waits for other nodes; amber: unsure or "
                                   "unexplained; blue: load.");
    return Element("section", Element("h2", "When") + Element("figure", drawing + caption));
}

Markup IncidentSection(const Outcome& outcome, const Incident& incident) {
    Markup lines;
    for (const Line& line : LinesOf(incident, outcome)) {
        lines += Element("div", Element("dt", line.name) + Element("dd", line.sentence));
    }
    const bool isKnown = !incident.causes.empty() && incident.causes.front().kind == RoleKind::CAUSE;
    return Element("section", {{"class", isKnown ? "point" : "unsure"}},
                   Element("div", {{"class", "answer"}}, Element("h2", TitleOf(incident, outcome))) +
                       Element("dl", lines));
}

}  // namespace

std::string HtmlReport(const Outcome& outcome) {
    Markup conclusion;
    for (const std::string& sentence : ConclusionOf(outcome)) {
        conclusion += Element("p", conclusion.IsEmpty() ? Attributes{{"class", "verdict"}} : Attributes{},
                              Text(sentence));
    }
    Markup body = Element("section", Element("div", {{"class", "answer"}}, conclusion)) + Timeline(outcome);
    for (const Incident& incident : outcome.fold.incidents) {
        body += IncidentSection(outcome, incident);
    }
    const std::string title = "Which of " + Counted(outcome.nodes.size(), "node") + " is slow";
    return Document(title, Element("header", Element("h1", title) +
                                                 Element("p", {{"class", "quiet"}}, Text(BasisOf(outcome)))) +
                               Element("main", body + NodeTable(outcome)));
}

}  // namespace fleet

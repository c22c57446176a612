#include "explain/page/analysis_section.h"

#include <algorithm>

#include "explain/page/drawings.h"
#include "explain/page/figures.h"
#include "explain/page/flow_picture.h"
#include "explain/page/healings_section.h"
#include "explain/page/tables.h"
#include "explain/wording.h"

namespace explain {
namespace {

constexpr size_t SERIES_MOST = 8;    // of a way
constexpr int64_t LEAST_BEFORE = 4;  // of what follows an event's begin, the part shown before it

// What the eye is to catch: red is for what is likely at least, and no tie is.
const char* StyleOf(const Analysis& analysis) {
    const bool isPoint = analysis.verdict == Verdict::POINT;
    return !analysis.HasAnswer() || analysis.isWeak                                ? "weak"
           : !isPoint                                                              ? "load"
           : analysis.certainty == Certainty::UNSURE || IsTie(analysis.candidates) ? "unsure"
                                                                                   : "point";
}

Markup Quiet(const std::string& sentence) {
    return sentence.empty() ? Markup() : Element("p", {{"class", "quiet"}}, Text(sentence));
}

Markup Answer(const Analysis& analysis, const Report& report) {
    Markup box = Element("p", {{"class", "verdict"}}, Text(AnswerOf(analysis, report, PAGE_FIGURES)));
    const std::string since = SinceOf(analysis, report);
    box += since.empty() ? Markup() : Element("p", since);
    for (const std::string& advice : AdvicesOf(analysis)) {
        box += Element("p", Element("strong", ADVICE_LEAD) + Text(advice));
    }
    return Element("div", {{"class", "answer"}}, box + Quiet(ModulesOf(analysis, PAGE_FIGURES)));
}

// What was seen of the point, where that is the whole answer.
Markup LargestPart(const Analysis& analysis, const Report& report) {
    for (const Look& look : report.looks) {
        if (look.point == analysis.point && analysis.verdict == Verdict::NOTHING) {
            return Element("p", LargestOf(look, report, PAGE_FIGURES));
        }
    }
    return {};
}

Markup EventPart(const Analysis& analysis, const Report& report) {
    if (!analysis.event) {
        return {};
    }
    Facts facts = EventFactsOf(analysis, report, PAGE_FIGURES);
    for (const Fact& fact : LoadFactsOf(analysis, PAGE_FIGURES)) {
        facts.push_back(fact);
    }
    return Element("h3", "The event") + FactList(facts) + EventTable(analysis, report);
}

Markup Graph(const Analysis& analysis, size_t number) {
    const Markup note =
        Element("figcaption", {{"class", "wide"}},
                Text("Each line leads from a point to what it waits for; its width is the share "
                     "of the extra delay that flows "
                     "along it. A box tells what stays with the point itself, of what comes to "
                     "it. Grey points have no part."));
    return Element("h3", "Where the extra delay goes") +
           Element("figure", Element("div",
                                     {{"class", "scroll wide"},
                                      {"tabindex", "0"},
                                      {"role", "region"},
                                      {"aria-label", "Graph of the extra delay"}},
                                     GraphDrawing(analysis, number)) +
                                 FlowList(analysis) + note);
}

// Of a long way, its upper end and the answer.
std::vector<size_t> DrawnWay(const Analysis& analysis) {
    if (!analysis.HasAnswer()) {
        return {0};
    }
    std::vector<size_t> way = WayTo(analysis, analysis.candidates.front().node);
    if (way.size() > SERIES_MOST) {
        way.erase(way.begin() + SERIES_MOST - 1, way.end() - 1);
    }
    return way;
}

// The range, and an event before it, with something of what was before.
SeriesFrame FrameOf(const Analysis& analysis, const Report& report) {
    const Window& range = report.question.range;
    SeriesFrame frame{range.start, range.end, range.start, report.zoneOffset, analysis.event, {},
                      {},          {},        false};
    frame.healings = HealingTimes(report);
    frame.others = OthersOf(analysis);
    frame.baseline = analysis.baseline;
    if (analysis.event) {
        const int64_t before = (range.end - analysis.event->start) / LEAST_BEFORE;
        frame.start = std::min(range.start, analysis.event->start - before);
    }
    return frame;
}

Markup Series(const Analysis& analysis, const Report& report, size_t number) {
    const SeriesFrame frame = FrameOf(analysis, report);
    Markup figures =
        Element("h3", analysis.HasAnswer() ? "Delay along the way" : "Delay of the point") +
        Element("p", {{"class", "quiet"}},
                Text("Mean delay per interval over local time (UTC" + ZoneText(report.zoneOffset) +
                     "). The dashed line is the median of the baseline. Shaded are the baseline, the event, "
                     "other events without a border, and what lies before the range. ") +
                    HealingsLegend(report, {frame.start, frame.end}));
    size_t count = 0;
    for (const size_t node : DrawnWay(analysis)) {
        const std::optional<double> usual =
            analysis.findings.empty() ? std::nullopt : analysis.findings[node].evidence.baselineDelay;
        const std::string& point = analysis.world->nodes[node].point;
        figures += SeriesFigure(point, analysis.world->points.at(point).samples, usual, frame,
                                "series" + std::to_string(number) + "-" + std::to_string(++count));
    }
    return figures;
}

Markup CertaintyPart(const Analysis& analysis) {
    return Element("h3", "How sure that is") +
           Element("p", CertaintyOf(analysis) + "; " + MarginOf(analysis.candidates, PAGE_FIGURES) + "; " +
                            AgreementOf(analysis)) +
           TrialTable(analysis);
}

Markup WalkPart(const Analysis& analysis, int64_t zoneOffset) {
    if (!analysis.walk) {
        return {};
    }
    return Element("h3", "The plug-in's own walk") +
           Element("p", "The plug-in's own walk " + WalkOf(analysis, zoneOffset) + ".");
}

}  // namespace

Markup FactList(const Facts& facts) {
    Markup list;
    for (const Fact& fact : facts) {
        list += Element("div", Element("dt", fact.name) + Element("dd", fact.sentence));
    }
    return Element("dl", {{"class", "facts"}}, list);
}

Markup AnalysisSection(const Analysis& analysis, const Report& report, size_t number) {
    const std::string id = "analysis" + std::to_string(number);
    Markup section = Element("h2", {{"id", id + "-name"}},
                             Text(analysis.point) + Element("small", Text(" in ") + Text(analysis.graph)));
    section += Answer(analysis, report) + LargestPart(analysis, report);
    if (report.analyses.size() == 1) {
        section += Element("h3", "Looked at") + FactList(BasisOf(report));
    }
    section += EventPart(analysis, report);
    if (analysis.HasAnswer()) {
        section += Graph(analysis, number);
    }
    if (analysis.verdict == Verdict::POINT) {
        section += Element("h3", "Ranking") + RankingTable(analysis) + CertaintyPart(analysis);
    }
    section += WalkPart(analysis, report.zoneOffset);
    if (analysis.world != nullptr) {
        section += Series(analysis, report, number);
    }
    if (!analysis.findings.empty()) {
        section += Element("h3", "Evidence per point") + EvidenceTables(analysis, report.zoneOffset);
    }
    return Element("section", {{"id", id}, {"class", StyleOf(analysis)}, {"aria-labelledby", id + "-name"}},
                   section);
}

}  // namespace explain

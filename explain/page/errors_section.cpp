#include "explain/page/errors_section.h"

#include <algorithm>

#include "explain/page/analysis_section.h"
#include "explain/page/drawings.h"
#include "explain/page/figures.h"
#include "explain/page/healings_section.h"
#include "explain/page/tables.h"
#include "explain/wording_errors.h"

namespace explain {
namespace {

constexpr size_t MOST_POINTS = 20;

const char* StyleOf(const ErrorAnalysis& analysis) {
    return analysis.certainty == Certainty::UNSURE ? "unsure" : "point";
}

Markup RankingOf(const ErrorAnalysis& analysis, const Report& report) {
    Table table("Points by their own share of the extra errors", {{"Rank", true},
                                                                  {"Point"},
                                                                  {"Graph"},
                                                                  {"Own share"},
                                                                  {"More than usual", true},
                                                                  {"Since", true},
                                                                  {"Advice"}});
    const size_t shown = std::min(analysis.points.size(), MOST_POINTS);
    for (size_t i = 0; i < shown; ++i) {
        const ErrorShare& one = analysis.points[i];
        table.Add({Text(std::to_string(i + 1)), Text(one.point), Text(one.graph), ShareCell(one.share),
                   Text(Figure(one.extra, 0)), Text(TimeOfDay(one.since, report.zoneOffset)),
                   Text(one.advice.empty() ? UNKNOWN_FIGURE : one.advice)});
    }
    const size_t left = analysis.points.size() - shown;
    return table.Done() +
           (left > 0 ? Element("p", {{"class", "quiet"}}, Text("and " + Counted(left, "more point")))
                     : Markup());
}

Markup CountsFigure(const ErrorShare& share, const SeriesFrame& frame, const std::string& id) {
    Samples samples;
    std::transform(share.counts.begin(), share.counts.end(), std::back_inserter(samples),
                   [](const ErrorCount& one) {
                       return Sample{one.time, static_cast<double>(one.count), 0.0};
                   });
    return SeriesFigure(share.point, samples, std::nullopt, frame, id);
}

// Where the errors are seen first, and whose they are.
Markup Counts(const ErrorAnalysis& analysis, const Report& report, size_t number) {
    const Window& range = report.question.range;
    SeriesFrame frame{range.start, range.end, range.start, report.zoneOffset, {}, {}, {}, {}, true};
    frame.healings = HealingTimes(report);
    frame.event = Event();
    static_cast<Window&>(*frame.event) = analysis.event;
    Markup figures =
        Element("h3", "Errors per interval") +
        Element("p", {{"class", "quiet"}},
                Text("Over local time (UTC" + ZoneText(report.zoneOffset) + "). Shaded is the event. ") +
                    HealingsLegend(report, range));
    const std::string id = "counts" + std::to_string(number) + "-";
    figures += CountsFigure(analysis.Entry(), frame, id + "1");
    return analysis.entries.front() == 0 ? figures
                                         : figures + CountsFigure(analysis.points.front(), frame, id + "2");
}

}  // namespace

Markup ErrorSection(const ErrorAnalysis& analysis, const Report& report, size_t number) {
    const std::string id = "errors" + std::to_string(number);
    const std::string advice = AdviceOf(analysis);
    const Markup answer =
        Element("p", {{"class", "verdict"}}, Text(AnswerOf(analysis, PAGE_FIGURES))) +
        Element("p", SinceOf(analysis, report)) +
        (advice.empty() ? Markup() : Element("p", Element("strong", ADVICE_LEAD) + Text(advice)));
    return Element("section", {{"id", id}, {"class", StyleOf(analysis)}, {"aria-labelledby", id + "-name"}},
                   Element("h2", {{"id", id + "-name"}}, Text(SubjectOf(analysis))) +
                       Element("div", {{"class", "answer"}}, answer) + Element("h3", "The event") +
                       FactList(EventFactsOf(analysis, report)) + Element("h3", "Whose errors they are") +
                       RankingOf(analysis, report) + Counts(analysis, report, number));
}

}  // namespace explain

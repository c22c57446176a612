#include "explain/page/analysis_section.h"

#include "explain/page/drawings.h"
#include "explain/page/figures.h"
#include "explain/page/flow_picture.h"
#include "explain/page/tables.h"
#include "explain/wording.h"

namespace explain {
namespace {

constexpr size_t SERIES_MOST = 8;  // of a way

const char* StyleOf(Verdict verdict) {
    switch (verdict) {
        case Verdict::POINT:
            return "answer point";
        case Verdict::LOAD:
            return "answer load";
        case Verdict::NOTHING:
        case Verdict::CANNOT_TELL:
        default:
            return "answer";
    }
}

Markup Answer(const Analysis& analysis) {
    Markup box = Element("p", {{"class", "verdict"}}, Text(AnswerOf(analysis, PercentFigure)));
    if (analysis.verdict == Verdict::POINT) {
        const std::string& advice = analysis.candidates.front().advice;
        box += advice.empty() ? Markup() : Element("p", Element("strong", "What to do: ") + Text(advice));
        box += Element("p", {{"class", "quiet"}},
                       Text(AgreementOf(analysis) + "; " + MarginOf(analysis.candidates, PercentFigure)));
    }
    return Element("div", {{"class", StyleOf(analysis.verdict)}}, box);
}

class Facts {
public:
    void Add(std::string_view name, std::string_view value) {
        facts += Element("div", Element("dt", name) + Element("dd", value));
    }
    Markup Done() const { return Element("dl", {{"class", "facts"}}, facts); }

private:
    Markup facts;
};

void AddLoad(const Evidence& top, Facts& facts) {
    facts.Add("Delay, mean in the event",
              DelayFigure(top.eventDelay) + " against " + DelayFigure(top.baselineDelay) + " before it");
    facts.Add("Requests per interval",
              Figure(top.eventRequests, 0) + " against " + Figure(top.baselineRequests, 0) + " before it");
    facts.Add("Delay at equal load", EqualLoadOf(top.equalLoadRatio));
    facts.Add("Load or device", MeaningOf(top.nature));
    facts.Add("Baseline", Counted(top.baselineCount, "sample") + " before the event");
}

Markup EventFacts(const Analysis& analysis, int64_t zoneOffset) {
    if (!analysis.event) {
        return {};
    }
    const Event& event = *analysis.event;
    Facts facts;
    facts.Add("When", LocalTimes(event.start, event.end, zoneOffset));
    facts.Add("Peak", DelayFigure(event.peakDelay) + " at " + TimeOfDay(event.peakTime, zoneOffset) + ", " +
                          DeviationsOf(event.peakDeviations));
    facts.Add("High samples", std::to_string(event.count));
    if (!analysis.findings.empty()) {
        AddLoad(analysis.findings.front().evidence, facts);
    }
    return Element("h3", "The event") + facts.Done() + EventTable(analysis, zoneOffset);
}

Markup Graph(const Analysis& analysis, size_t number) {
    const Markup note = Element("figcaption",
                                "Each line leads from a point to what it waits for; its width is the share "
                                "of the extra delay that flows "
                                "along it. A box tells what stays with the point itself, of what comes to "
                                "it. Grey points have no part.");
    return Element("h3", "Where the extra delay goes") +
           Element("figure", Element("div",
                                     {{"class", "scroll"},
                                      {"tabindex", "0"},
                                      {"role", "region"},
                                      {"aria-label", "Graph of the extra delay"}},
                                     GraphDrawing(analysis, number)) +
                                 note);
}

Markup SeriesFigure(const Analysis& analysis, const std::string& point, const std::optional<double>& usual,
                    const SeriesFrame& frame, const std::string& id) {
    const Markup caption = Element("figcaption", Element("strong", point));
    const Markup drawing = SeriesDrawing(point, analysis.world->points.at(point).samples, usual, frame, id);
    return Element("figure", caption + Element("div",
                                               {{"class", "scroll"},
                                                {"tabindex", "0"},
                                                {"role", "region"},
                                                {"aria-label", "Delay of " + point}},
                                               drawing));
}

// Of a long way, its upper end and the answer.
std::vector<size_t> DrawnWay(const Analysis& analysis) {
    if (!IsAnswer(analysis)) {
        return {0};
    }
    std::vector<size_t> way = WayTo(analysis, analysis.candidates.front().node);
    if (way.size() > SERIES_MOST) {
        way.erase(way.begin() + SERIES_MOST - 1, way.end() - 1);
    }
    return way;
}

Markup Series(const Analysis& analysis, const Report& report, size_t number) {
    SeriesFrame frame{
        report.question.range.start, report.question.range.end, report.zoneOffset, analysis.event, {}};
    if (analysis.baseline) {
        frame.baselineStart = analysis.baseline->start;
    }
    Markup figures =
        Element("h3", IsAnswer(analysis) ? "Delay along the way" : "Delay of the point") +
        Element("p", {{"class", "quiet"}},
                Text("Mean delay per interval over local time (UTC" + ZoneText(report.zoneOffset) +
                     "). The dashed line is the median of the baseline."));
    size_t count = 0;
    for (const size_t node : DrawnWay(analysis)) {
        const std::optional<double> usual =
            analysis.findings.empty() ? std::nullopt : analysis.findings[node].evidence.baselineDelay;
        figures += SeriesFigure(analysis, analysis.world->nodes[node].point, usual, frame,
                                "series" + std::to_string(number) + "-" + std::to_string(++count));
    }
    return figures;
}

Markup WalkPart(const Analysis& analysis, int64_t zoneOffset) {
    if (!analysis.walk) {
        return {};
    }
    return Element("h3", "The plug-in's own walk") +
           Element("p", "The plug-in's own walk " + WalkOf(analysis, zoneOffset) + ".");
}

}  // namespace

bool IsAnswer(const Analysis& analysis) {
    return analysis.verdict == Verdict::POINT || analysis.verdict == Verdict::LOAD;
}

Markup AnalysisSection(const Analysis& analysis, const Report& report, size_t number) {
    const std::string id = "analysis" + std::to_string(number);
    Markup section = Element("h2", {{"id", id + "-name"}},
                             Text(analysis.point) + Element("small", Text(" in ") + Text(analysis.graph)));
    section += Answer(analysis) + EventFacts(analysis, report.zoneOffset);
    if (IsAnswer(analysis)) {
        section += Graph(analysis, number) + Element("h3", "Ranking") + RankingTable(analysis) +
                   Element("h3", "How sure that is") + TrialTable(analysis);
    }
    section += WalkPart(analysis, report.zoneOffset);
    if (analysis.world != nullptr) {
        section += Series(analysis, report, number);
    }
    if (!analysis.findings.empty()) {
        section += Element("h3", "Evidence per point") + EvidenceTables(analysis, report.zoneOffset);
    }
    return Element("section", {{"id", id}, {"aria-labelledby", id + "-name"}}, section);
}

}  // namespace explain

#include "explain/page/tables.h"

#include <algorithm>

#include "explain/page/figures.h"
#include "explain/wording.h"

namespace explain {
namespace {

constexpr size_t EVENTS_MOST = 12;
constexpr size_t CANDIDATES_MOST = 20;
constexpr size_t EVIDENCE_MOST = 400;  // rows of one table
constexpr size_t OPEN_MOST = 12;       // rows that need not be opened

Markup LeftOut(size_t count, const std::string& what) {
    return count == 0 ? Markup()
                      : Element("p", {{"class", "quiet"}}, Text("and " + Counted(count, "more " + what)));
}

Markup ReasonList(const std::vector<Reason>& reasons) {
    Markup items;
    for (const Reason& reason : reasons) {
        items += Element("li", SentenceOf(reason));
    }
    return reasons.empty() ? Text(UNKNOWN_FIGURE) : Element("ul", items);
}

std::string CorrelationFigure(const NodeFinding& finding, bool isTop) {
    return isTop ? UNKNOWN_FIGURE
                 : Figure(finding.correlation, 2) + " (" + std::to_string(finding.commonIntervals) + ")";
}

std::vector<Markup> EvidenceRow(const Analysis& analysis, const NodeFinding& finding, int64_t zoneOffset) {
    const Evidence& evidence = finding.evidence;
    Markup name = Text(finding.node.point);
    if (finding.node.graph != analysis.graph) {
        name += Element("small", Text(" in ") + Text(finding.node.graph));
    }
    return {name,
            Text(evidence.takesPart ? PercentFigure(finding.share) : UNKNOWN_FIGURE),
            Text(Figure(evidence.deviations, 1)),
            Text(CorrelationFigure(finding, &finding == &analysis.findings.front())),
            Text(evidence.onset ? TimeOfDay(*evidence.onset, zoneOffset) : UNKNOWN_FIGURE),
            Text(DelayFigure(evidence.baselineDelay)),
            Text(DelayFigure(evidence.eventDelay)),
            Text(Figure(evidence.baselineRequests, 0)),
            Text(Figure(evidence.eventRequests, 0)),
            Text(WordOf(evidence.nature)),
            Text(evidence.equalLoadRatio ? Figure(evidence.equalLoadRatio, 2) + "\u00d7" : UNKNOWN_FIGURE),
            ReasonList(evidence.reasons)};
}

Markup EvidenceTable(const Analysis& analysis, const std::vector<const NodeFinding*>& findings,
                     const char* name, int64_t zoneOffset) {
    Table table(name, {{"Point"},
                       {"Own share", true},
                       {"z", true},
                       {"r (common intervals)", true},
                       {"Unusual since", true},
                       {"Usual delay", true},
                       {"Delay in event", true},
                       {"Usual requests", true},
                       {"Requests in event", true},
                       {"Load or device"},
                       {"At equal load", true},
                       {"What limits this"}});
    for (size_t i = 0; i < std::min(findings.size(), EVIDENCE_MOST); ++i) {
        table.Add(EvidenceRow(analysis, *findings[i], zoneOffset));
    }
    return table.Done() + LeftOut(findings.size() - std::min(findings.size(), EVIDENCE_MOST), "point");
}

}  // namespace

Markup ShareCell(double share) {
    const Markup bar =
        Element("span", {{"class", "bar"}, {"style", "width:" + Figure(share * 100.0, 1) + "%"}});
    return Text(PercentFigure(share)) + Element("span", {{"class", "track"}, {"aria-hidden", "true"}}, bar);
}

Markup EventTable(const Analysis& analysis, const Report& report) {
    const std::vector<Event> others = OnlyListedOf(analysis, report);
    if (others.empty()) {
        return {};
    }
    Table table(
        "Other events of the point",
        {{"From"}, {"To"}, {"Peak", true}, {"Deviations above the usual", true}, {"High samples", true}});
    const size_t leftOut = others.size() - std::min(others.size(), EVENTS_MOST);
    for (size_t i = leftOut; i < others.size(); ++i) {
        const Event& event = others[i];
        table.Add({Text(LocalTime(event.start, report.zoneOffset)),
                   Text(LocalTime(event.end, report.zoneOffset)), Text(DelayFigure(event.peakDelay)),
                   Text(Figure(event.peakDeviations, 1)), Text(std::to_string(event.count))});
    }
    return table.Done() + LeftOut(leftOut, "earlier event");
}

Markup RankingTable(const Analysis& analysis) {
    Table table("Points by their own share of the extra delay",
                {{"Rank", true}, {"Point"}, {"Graph"}, {"Own share"}, {"Advice"}});
    const size_t shown = std::min(analysis.candidates.size(), CANDIDATES_MOST);
    for (size_t i = 0; i < shown; ++i) {
        const Candidate& candidate = analysis.candidates[i];
        table.Add({Text(std::to_string(i + 1)), Text(candidate.point), Text(candidate.graph),
                   ShareCell(candidate.share),
                   Text(candidate.advice.empty() ? UNKNOWN_FIGURE : candidate.advice)});
    }
    return table.Done() + LeftOut(analysis.candidates.size() - shown, "point");
}

Markup TrialTable(const Analysis& analysis) {
    Table table("The first point when only a part of the baseline counts",
                {{"Baseline"}, {"First point"}, {"Agrees"}});
    for (const Trial& trial : analysis.trials) {
        const bool agrees = trial.first == analysis.candidates.front().point;
        table.Add({Text(WordOf(trial.baseline)), Text(FirstOf(trial)),
                   Text(agrees        ? "yes"
                        : trial.first ? "no"
                                      : UNKNOWN_FIGURE)});
    }
    return table.Done();
}

Markup EvidenceTables(const Analysis& analysis, int64_t zoneOffset) {
    std::vector<const NodeFinding*> taking;
    std::vector<const NodeFinding*> others;
    for (const NodeFinding& finding : analysis.findings) {
        (finding.evidence.takesPart ? taking : others).push_back(&finding);
    }
    Markup tables;
    if (!taking.empty()) {
        tables += EvidenceTable(analysis, taking, "Points that take part", zoneOffset);
    }
    if (!others.empty()) {
        const Markup table = EvidenceTable(analysis, others, "Points without a part", zoneOffset);
        tables +=
            others.size() <= OPEN_MOST
                ? table
                : Element("details",
                          Element("summary", Counted(others.size(), "point") + " without a part") + table);
    }
    return tables + Element("p", {{"class", "quiet"}}, Text(COLUMNS_LEGEND));
}

}  // namespace explain

#include <algorithm>

#include "explain/report.h"
#include "explain/text/layout.h"
#include "explain/text/sections.h"
#include "explain/wording.h"
#include "text/printable.h"

namespace explain {
namespace {

constexpr size_t MOST_ADVICE = 2000;  // bytes
constexpr size_t MOST_CANDIDATES = 10;
constexpr size_t MOST_EVENTS = 5;  // besides the one that is explained

std::string Title(const std::string& title) {
    return "\n" + title + "\n";
}

// A line of a section: what it is about, and the value.
std::string Field(const std::string& name, const std::string& value) {
    return Paragraph("  " + PadRight(name, 12), value);
}

std::string Microseconds(double delay) {
    return Fixed(delay, delay < 100.0 ? 1 : 0) + " us";
}

// ---- the answer

std::string Answer(const Analysis& analysis) {
    return Printable(AnswerOf(analysis, Percent));
}

std::string Subject(const Analysis& analysis) {
    return Printable(analysis.point) + " in " + Printable(analysis.graph);
}

std::string Headline(const Analysis& analysis) {
    const std::string subject = Paragraph("", Subject(analysis));
    const size_t cells = std::min(CellsOf(Subject(analysis)), LINE_CELLS);
    return "\n" + subject + std::string(cells, '=') + "\n" + Paragraph("", Answer(analysis));
}

// ---- the event

std::string When(const Event& event, int64_t zoneOffset) {
    const std::string when = LocalTimes(event.start, event.end, zoneOffset);
    return event.start == event.end ? when + ", one sample, " + StateOf(event)
                                    : when + ", " + Duration(event.end - event.start) + ", " +
                                          Counted(event.count, "high sample") + ", " + StateOf(event);
}

std::string EventText(const Analysis& analysis, int64_t zoneOffset) {
    const Event& event = *analysis.event;
    std::string text =
        Title("Event") + Field("when", When(event, zoneOffset)) +
        Field("peak", Microseconds(event.peakDelay) + " at " + LocalTime(event.peakTime, zoneOffset) + ", " +
                          DeviationsOf(event.peakDeviations));
    if (const std::string silence = SilenceOf(analysis); !silence.empty()) {
        text += Field("detector", silence);
    }
    size_t others = 0;
    for (const Event& other : analysis.events) {
        if (other.start == event.start) {
            continue;
        }
        if (++others <= MOST_EVENTS) {
            text += Field(others == 1 ? "others" : "",
                          When(other, zoneOffset) + ", peak " + Microseconds(other.peakDelay));
        }
    }
    return others > MOST_EVENTS ? text + Field("", "and " + std::to_string(others - MOST_EVENTS) + " more")
                                : text;
}

// ---- delay and load of the slow point

// What a value was in the event beside what was usual before it.
std::string Compared(const std::optional<double>& now, const std::optional<double>& before,
                     std::string (*written)(double)) {
    if (!now || !before) {
        return "not known";
    }
    const std::string ratio = *before > 0.0 ? " (" + Fixed(*now / *before, 2) + " times)" : "";
    return written(*now) + ", before usually " + written(*before) + ratio;
}

std::string Requests(double requests) {
    return Fixed(requests, requests < 100.0 ? 1 : 0) + " an interval";
}

std::string LoadText(const Evidence& evidence) {
    return Title("Load") +
           Field("delay", Compared(evidence.eventDelay, evidence.baselineDelay, Microseconds)) +
           Field("requests", Compared(evidence.eventRequests, evidence.baselineRequests, Requests)) +
           Field("equal load", EqualLoadOf(evidence.equalLoadRatio)) +
           Field("so it is", MeaningOf(evidence.nature));
}

// ---- the ranking and how sure it is

std::string CandidateLine(const Analysis& analysis, size_t rank, size_t width, int64_t zoneOffset) {
    const Candidate& candidate = analysis.candidates[rank];
    const std::optional<int64_t>& onset = analysis.findings[candidate.node].evidence.onset;
    const std::string columns = PadLeft(std::to_string(rank + 1), 4) + PadLeft(Percent(candidate.share), 9) +
                                "  " + (onset ? TimeOfDay(*onset, zoneOffset) : "-       ") + "  ";
    const std::string point = Printable(candidate.point);
    const std::string graph = Printable(candidate.graph);
    const std::string both = PadRight(point, width) + "  " + graph;
    return CellsOf(columns) + CellsOf(both) <= LINE_CELLS
               ? columns + both + "\n"
               : Beside(columns, point) + Beside(std::string(CellsOf(columns), ' ') + "in ", graph);
}

std::string RankingText(const Analysis& analysis, int64_t zoneOffset) {
    const std::vector<Candidate>& candidates = analysis.candidates;
    const size_t shown = std::min(candidates.size(), MOST_CANDIDATES);
    size_t width = 5;
    for (size_t i = 0; i < shown; ++i) {
        width = std::max(width, CellsOf(Printable(candidates[i].point)));
    }
    width = std::min<size_t>(width, 40);
    std::string text =
        Title("Ranking") + "rank    share  since     " + PadRight("point", width) + "  graph\n";
    for (size_t i = 0; i < shown; ++i) {
        text += CandidateLine(analysis, i, width, zoneOffset);
    }
    if (shown < candidates.size()) {
        text += "  and " + Counted(candidates.size() - shown, "point") + " with less\n";
    }
    return text + Paragraph("  ", MarginOf(candidates, Percent)) +
           Paragraph("  ", Printable(ModulesOf(analysis, Percent)));
}

// The points that other parts of the baseline put first, by name.
std::string CertaintyText(const Analysis& analysis) {
    std::string text = Title("Certainty") + Paragraph("  ", WordOf(analysis.certainty)) +
                       Paragraph("  ", AgreementOf(analysis));
    for (const Trial& trial : analysis.trials) {
        if (trial.first != analysis.candidates.front().point) {
            text += Paragraph("  " + PadRight(WordOf(trial.baseline), 21),
                              Printable(trial.first.value_or(CANNOT_TELL_WHICH)));
        }
    }
    return text;
}

std::string AdviceText(const Candidate& first) {
    const std::string advice = Printable(first.advice, MOST_ADVICE);
    return Title("Advice") + Paragraph("  ", advice.empty() ? "the graph has none for this point" : advice);
}

// ---- the whole

std::string AnalysisText(const Analysis& analysis, int64_t zoneOffset) {
    std::string text = Headline(analysis);
    if (analysis.event) {
        text += EventText(analysis, zoneOffset);
    }
    if (!analysis.findings.empty()) {
        text += LoadText(analysis.findings.front().evidence) + TreeText(analysis);
    }
    if (analysis.verdict == Verdict::POINT) {
        text += RankingText(analysis, zoneOffset) + CertaintyText(analysis) +
                AdviceText(analysis.candidates.front());
    }
    if (analysis.walk) {
        text += Title("The plug-in's own walk") + Paragraph("  ", Printable(WalkOf(analysis, zoneOffset)));
    }
    return text + ReasonsText(analysis);
}

// The answers in short, where there are several.
std::string Overview(const std::vector<Analysis>& analyses) {
    std::string text = analyses.size() > 1 ? Title("Answers") : "";
    for (size_t i = 0; i < analyses.size() && analyses.size() > 1; ++i) {
        text += Paragraph("  ", Subject(analyses[i])) + Paragraph("    ", Answer(analyses[i]));
    }
    return text;
}

// No point was slow: how far each went.
std::string AllClear(const Report& report) {
    std::string text = Paragraph("", NothingOf(report));
    for (const Look& look : report.looks) {
        text += Paragraph("  " + PadRight(Printable(look.point), 22), LargestOf(look, report.zoneOffset));
    }
    return text;
}

std::string RangeText(const Report& report) {
    std::string text = Paragraph("", "From " + LocalTime(report.question.range.start, report.zoneOffset) +
                                         " to " + LocalTime(report.question.range.end, report.zoneOffset) +
                                         ", zone " + ZoneText(report.zoneOffset));
    text += Paragraph("", BasisOf(report));
    return report.analyses.empty() ? text + AllClear(report) : text + Paragraph("", ChanceOf(report.flags));
}

}  // namespace

std::string TextReport(const Report& report) {
    std::string text = RangeText(report) + Overview(report.analyses);
    for (const Analysis& analysis : report.analyses) {
        text += AnalysisText(analysis, report.zoneOffset);
    }
    return text;
}

}  // namespace explain

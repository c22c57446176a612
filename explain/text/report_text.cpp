#include <algorithm>

#include "explain/report.h"
#include "explain/text/sections.h"
#include "explain/wording_errors.h"
#include "text/layout.h"
#include "text/printable.h"

namespace explain {
namespace {

constexpr size_t MOST_ADVICE = 2000;  // bytes
constexpr size_t MOST_CANDIDATES = 10;
constexpr size_t MOST_EVENTS_SHOWN = 5;  // besides the one that is explained

std::string Title(const std::string& title) {
    return "\n" + title + "\n";
}

// A line of a section: what it is about, and the value.
std::string Field(const std::string& name, const std::string& value) {
    return Paragraph("  " + PadRight(name, 12), value);
}

constexpr Figures FIGURES = {Percent, Microseconds};

// Events that are only listed, the latest ones of many.
std::string OthersText(const std::vector<Event>& others, int64_t zoneOffset) {
    std::string text;
    for (size_t i = others.size(); i-- > 0;) {
        if (others.size() - i > MOST_EVENTS_SHOWN) {
            return text + Field("", "and " + Counted(i + 1, "earlier event"));
        }
        text += Field(text.empty() ? "others" : "", LocalTimes(others[i].start, others[i].end, zoneOffset) +
                                                        ", peak " + Microseconds(others[i].peakDelay));
    }
    return text;
}

// ---- the answer

std::string Subject(const Analysis& analysis) {
    return Printable(analysis.point) + " in " + Printable(analysis.graph);
}

// How far each point went that was asked for.
std::string LargestText(const Report& report, const std::string& only = {}) {
    std::string text;
    for (const Look& look : report.looks) {
        if (only.empty() || look.point == only) {
            text += Paragraph("  " + PadRight(Printable(look.point), 19) + "  ",
                              LargestOf(look, report, FIGURES));
        }
    }
    return text;
}

std::string Headline(const Analysis& analysis, const Report& report) {
    const std::string subject = Paragraph("", Subject(analysis));
    const size_t cells = std::min(CellsOf(Subject(analysis)), LINE_CELLS);
    std::string text = subject + std::string(cells, '=') + "\n" +
                       Paragraph("", Printable(AnswerOf(analysis, report, FIGURES)));
    const auto add = [&text](const char* lead, const std::string& line) {
        text += line.empty() ? "" : Paragraph(lead, Printable(line, MOST_ADVICE));
    };
    add("", SinceOf(analysis, report));
    const char* lead = ADVICE_LEAD;
    for (const std::string& advice : AdvicesOf(analysis)) {
        add(lead, advice);
        lead = "            ";
    }
    add("", ModulesOf(analysis, FIGURES));
    return analysis.verdict == Verdict::NOTHING ? text + LargestText(report, analysis.point) : text;
}

// The answers in short, where there are several.
std::string Overview(const Report& report) {
    std::string text = "Answers\n";
    const auto add = [&text](const std::string& when, const std::string& answer) {
        text += Paragraph("    " + PadRight(when, 31) + "  ", Printable(answer));
    };
    const std::vector<Analysis>& all = report.analyses;
    for (size_t i = 0; i < all.size(); ++i) {
        const std::string subject = Subject(all[i]);
        if (i == 0 || Subject(all[i - 1]) != subject) {
            text += Paragraph("  ", subject);
        }
        add(BriefTimeOf(all[i], report), BriefOf(all[i], FIGURES));
        const std::string more = AlsoListed(report, i);
        text += more.empty() ? "" : Paragraph("    ", more);
    }
    for (const ErrorAnalysis& one : report.errors) {
        text += Paragraph("  ", Printable(SubjectOf(one)));
        add(BriefTimeOf(one, report), BriefOf(one, FIGURES));
    }
    return text;
}

size_t AnswersOf(const Report& report) {
    return report.analyses.size() + report.errors.size();
}

std::string Verdicts(const Report& report) {
    const std::string slow =
        report.analyses.empty() ? Paragraph("", NothingOf(report)) + LargestText(report) : "";
    const std::string answers = AnswersOf(report) > 1 ? Overview(report)
                                : !report.errors.empty()
                                    ? ErrorHeadline(report.errors.front(), report, FIGURES)
                                : slow.empty() ? Headline(report.analyses.front(), report)
                                               : "";
    return answers + (answers.empty() || slow.empty() ? "" : "\n") + slow;
}

// ---- the event

std::string EventText(const Analysis& analysis, const Report& report) {
    return FactsText("Event", EventFactsOf(analysis, report, FIGURES)) +
           OthersText(OnlyListedOf(analysis, report), report.zoneOffset);
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
    return text;
}

// Of the trials those that put another point first, by name.
std::string CertaintyText(const Analysis& analysis) {
    std::string text = Title("Certainty") + Paragraph("  ", CertaintyOf(analysis)) +
                       Paragraph("  ", MarginOf(analysis.candidates, FIGURES)) +
                       Paragraph("  ", AgreementOf(analysis));
    for (const Trial& trial : analysis.trials) {
        if (trial.first != analysis.candidates.front().point) {
            text += Paragraph("    " + PadRight(WordOf(trial.baseline), 23), Printable(FirstOf(trial)));
        }
    }
    return text;
}

// ---- the whole

std::string DetailsText(const Analysis& analysis, const Report& report) {
    std::string text = EventText(analysis, report) + FactsText("Load", LoadFactsOf(analysis, FIGURES));
    if (!analysis.findings.empty()) {
        text += TreeText(analysis);
    }
    if (analysis.verdict == Verdict::POINT) {
        text += RankingText(analysis, report.zoneOffset) + CertaintyText(analysis);
    }
    if (analysis.walk) {
        text +=
            Title("The plug-in's own walk") + Paragraph("  ", Printable(WalkOf(analysis, report.zoneOffset)));
    }
    return text + ReasonsText(analysis);
}

}  // namespace

std::string FactsText(const char* title, const Facts& facts) {
    std::string text = facts.empty() ? "" : Title(title);
    for (const Fact& fact : facts) {
        text += Field(fact.name, Printable(fact.sentence));
    }
    return text;
}

std::string TextReport(const Report& report) {
    std::string text = Verdicts(report) + FactsText("Looked at", BasisOf(report)) + HealingsText(report);
    const bool areSeveral = AnswersOf(report) > 1;
    for (const Analysis& analysis : report.analyses) {
        text += (areSeveral ? "\n" + Headline(analysis, report) : "") + DetailsText(analysis, report);
    }
    for (const ErrorAnalysis& analysis : report.errors) {
        text += (areSeveral ? "\n" + ErrorHeadline(analysis, report, FIGURES) : "") +
                ErrorDetails(analysis, report);
    }
    const std::string chance = ChanceOf(report);
    return text + (chance.empty() ? "" : Title("Chance") + Paragraph("  ", chance));
}

}  // namespace explain

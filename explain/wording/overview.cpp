#include <algorithm>

#include "explain/report.h"
#include "explain/wording_errors.h"

namespace explain {
namespace {

constexpr int64_t FRESH_STEPS = 3;  // a row comes with its interval's end, and often a little later
constexpr size_t DAY_LETTERS = 10;  // of "2023-01-05 12:59:00"
constexpr size_t YEAR_LETTERS = 5;

std::string Minutes(const std::string& localTime) {
    return localTime.substr(0, localTime.rfind(':'));
}

// In a line: "13:02 BDM for IOHANG (DISK_SLOW)".
std::string BriefOf(const Healing& healing, const Report& report) {
    return ShortTime(healing.time, report) + " " + healing.module + " for " + healing.kind +
           (healing.cause.empty() ? "" : " (" + healing.cause + ")") +
           (healing.isHere ? "" : " on node " + std::to_string(healing.node));
}

// Whether the rows reach until now.
bool IsFresh(const Report& report) {
    const Coverage& coverage = report.coverage;
    return coverage.newest && report.madeAt - *coverage.newest <= FRESH_STEPS * coverage.step;
}

std::string StartOf(const Span& span, const Report& report) {
    return span.isCut ? "the first row" : ShortTime(span.window.start, report);
}

std::string CauseIn(const Analysis& analysis, const Figures& figures) {
    switch (analysis.verdict) {
        case Verdict::LOAD:
            return "load: the requests rose, and the delay with them";
        case Verdict::CANNOT_TELL:
            return "cannot tell: " + SentenceOf(*analysis.reason);
        case Verdict::POINT:
        case Verdict::NOTHING:
            break;
    }
    if (analysis.verdict == Verdict::POINT && IsTie(analysis.candidates)) {
        const Candidate& second = analysis.candidates[1];
        return BriefOf(analysis, figures) + ", or " + second.point + " " + figures.share(second.share);
    }
    return BriefOf(analysis, figures);
}

// Whether not even an event can be told.
bool IsUntold(const Analysis& analysis) {
    return analysis.verdict == Verdict::CANNOT_TELL && !analysis.event;
}

bool IsUntold(const Look& look, const Report& report) {
    const std::vector<Analysis>& all = report.analyses;
    return std::any_of(all.begin(), all.end(), [&](const Analysis& analysis) {
        return analysis.point == look.point && IsUntold(analysis);
    });
}

}  // namespace

std::string ShortTime(int64_t time, const Report& report) {
    const Window& range = report.question.range;
    const auto dayOf = [&](int64_t when) {
        return LocalTime(when, report.zoneOffset).substr(0, DAY_LETTERS);
    };
    const bool isOneDay = dayOf(range.start) == dayOf(range.end) && dayOf(time) == dayOf(range.end);
    return Minutes(isOneDay ? TimeOfDay(time, report.zoneOffset)
                            : LocalTime(time, report.zoneOffset).substr(YEAR_LETTERS));
}

std::string RangeOf(const Report& report) {
    const Window& range = report.question.range;
    const std::string start = Minutes(LocalTime(range.start, report.zoneOffset));
    const std::string end = Minutes(LocalTime(range.end, report.zoneOffset));
    const bool isOneDay = start.compare(0, DAY_LETTERS, end, 0, DAY_LETTERS) == 0;
    return (report.node ? *report.node + ", " : "") + start + " to " +
           (isOneDay ? end.substr(DAY_LETTERS + 1) : end);
}

std::string ShortSpan(const Span& span, const Report& report) {
    const std::string start = ShortTime(span.window.start, report);
    std::string end = ShortTime(span.window.end, report);
    if (span.isCut) {
        return span.isOngoing ? "since " + StartOf(span, report) : "until " + end;
    }
    const size_t day = start.find(' ') + 1;  // 0 where both are of the one day of the range
    if (start != end && start.compare(0, day, end, 0, day) == 0) {
        end.erase(0, day);
    }
    return span.isOngoing ? start + (IsFresh(report) ? " to now" : " on")
           : start == end ? start
                          : start + " to " + end;
}

std::string WhetherOver(const Span& span, const Report& report) {
    const std::string end = ShortTime(span.window.end, report);
    return !span.isOngoing ? "until " + end : IsFresh(report) ? "now" : "still at " + end;
}

std::string TimesOf(double ratio) {
    constexpr double MOST = 9999.0;
    return ratio > MOST ? "over " + Fixed(MOST, 0) + " times" : Fixed(ratio, 1) + " times";
}

std::string CourseOf(const Course& course, const Report& report) {
    const Span& last = course.last;
    const std::string adjective = course.adjective;
    const std::string amount = course.amount.empty() ? "" : ", " + course.amount;
    const std::string since = "since " + StartOf(last, report);
    if (last.isOngoing && IsFresh(report)) {
        return "has been " + adjective + " " + since + amount;
    }
    if (last.isOngoing) {
        return "was still " + adjective + " at " + ShortTime(last.window.end, report) + ", " + since + amount;
    }
    const std::string which = course.times > 1 ? "in " + Counted(course.times, "event") + ", the last "
                              : last.isCut     ? "from " + StartOf(last, report) + " "
                                               : "";
    return "was " + adjective + " " + which + ShortSpan(last, report) + amount +
           (course.isHealed ? ", then healed" : "");
}

std::vector<std::string> LacksOf(const Report& report) {
    std::vector<std::string> lacks;
    if (const std::string missing = MissingOf(report); !missing.empty()) {
        lacks.push_back(missing);
    }
    for (const Analysis& analysis : report.analyses) {
        const std::string lack =
            !IsUntold(analysis) ? "" : analysis.point + " cannot be told: " + SentenceOf(*analysis.reason);
        if (!lack.empty() && (lacks.empty() || lacks.back() != lack)) {
            lacks.push_back(lack);
        }
    }
    if (report.errorsReason) {
        lacks.push_back("errors cannot be told: " + SentenceOf(*report.errorsReason));
    }
    if (report.healingsReason) {
        lacks.push_back("healings cannot be told: " + SentenceOf(*report.healingsReason));
    }
    return lacks;
}

std::string NoneSlow(const Report& report) {
    const auto untold = std::count_if(report.looks.begin(), report.looks.end(),
                                      [&](const Look& look) { return IsUntold(look, report); });
    return untold > 0 && untold == static_cast<std::ptrdiff_t>(report.looks.size())
               ? "Whether a point was slow cannot be told"
           : untold > 0 || report.coverage.IsPart() ? "No point was slow in what was looked at"
                                                    : "No point was slow";
}

std::string QuietStateOf(const Look& look, const Report& report) {
    return IsUntold(look, report)            ? WordOf(Verdict::CANNOT_TELL)
           : look.samples == 0               ? "no rows"
           : look.finding.deviations.empty() ? "too few rows"
           : look.finding.isCurved           ? "usual: a slow curve"
                                             : "usual";
}

bool NamesACause(const Analysis& analysis) {
    return analysis.HasAnswer() && !analysis.isWeak &&
           (analysis.candidates.empty() || analysis.candidates.front().point != analysis.point);
}

std::string CausesOf(const std::vector<const Analysis*>& analyses, const Figures& figures) {
    std::vector<std::pair<std::string, std::string>> named;  // the cause, the first graph that names it
    for (const Analysis* analysis : analyses) {
        const std::string cause = CauseIn(*analysis, figures);
        if (NamesACause(*analysis) &&
            std::none_of(named.begin(), named.end(), [&](const auto& one) { return one.first == cause; })) {
            named.emplace_back(cause, analysis->graph);
        }
    }
    std::string causes;
    for (const auto& [cause, graph] : named) {
        causes += (causes.empty() ? "" : "; ") + cause + (named.size() > 1 ? " in " + graph : "");
    }
    return !named.empty() || analyses.empty() ? causes : CauseIn(*analyses.front(), figures);
}

std::string EarlierEvents(size_t count) {
    return "and " + Counted(count, "earlier event");
}

std::string ErrorsOf(const ErrorEvent& event) {
    return Counted(static_cast<size_t>(event.count), "error");
}

std::string BriefHealingsOf(const Report& report) {
    std::string all;
    for (const Healing& healing : HealingsToTell(report)) {
        all += (all.empty() ? "" : "; ") + BriefOf(healing, report);
    }
    const std::string earlier = EarlierHealings(report);
    return all + (earlier.empty() ? "" : "; " + earlier);
}

}  // namespace explain

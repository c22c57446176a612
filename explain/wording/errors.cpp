#include <algorithm>
#include <cmath>

#include "explain/report.h"
#include "explain/wording_errors.h"

namespace explain {
namespace {

constexpr double MAJORITY = 0.5;
constexpr double FEW = 10.0;  // fewer are told with a digit behind the point

std::string ManyErrors(double count) {
    const double whole = std::round(count);
    return whole >= FEW || whole == count ? Counted(static_cast<size_t>(whole), "error")
                                          : Fixed(count, 1) + " errors";
}

bool NamesEntry(const ErrorAnalysis& analysis) {
    return std::find(analysis.entries.begin(), analysis.entries.end(), size_t{0}) != analysis.entries.end();
}

// Under which type the point itself counts what the others count under the one that is explained.
std::string CountedAs(const ErrorShare& share) {
    return share.type ? ", which counts them as " + WordOf(*share.type) + "," : "";
}

// How many errors of a type there are in the range, and where most.
std::string TotalOf(const ErrorLook& look) {
    const ErrorPoint& most = look.points.front();
    const bool hasEvent = std::any_of(look.points.begin(), look.points.end(),
                                      [](const ErrorPoint& one) { return !one.events.empty(); });
    return WordOf(look.type) + " at " + Counted(look.points.size(), "point") + ", most at " + most.point +
           ": " + std::to_string(most.count) + (hasEvent ? "" : ", as usual");
}

std::string SureOf(const ErrorAnalysis& analysis) {
    const char* const why = analysis.certainty != Certainty::UNSURE    ? ""
                            : analysis.points.front().share < MAJORITY ? ": no point holds half of them"
                                                                       : ": the second is close behind";
    return std::string(" That is ") + WordOf(analysis.certainty) + why + ".";
}

}  // namespace

std::string WordOf(const ErrorType& type) {
    return !type.name.empty() ? type.name
                              : "error index " + std::to_string(type.index) + " (" + type.column + ")";
}

std::string SubjectOf(const ErrorAnalysis& analysis) {
    const size_t others = analysis.entries.size() - 1;
    return WordOf(analysis.type) + " at " + analysis.Entry().point +
           (others > 0 ? " and " + Counted(others, "other point") : "");
}

std::string AnswerOf(const ErrorAnalysis& analysis, const Figures& figures) {
    const ErrorShare& first = analysis.points.front();
    const std::string who = first.point + " (" + first.graph + ")" + CountedAs(first);
    if (analysis.points.size() == 1) {
        return who + " counts " + ManyErrors(first.extra) +
               " more than usual. No point above or below it does of this type.";
    }
    const std::string holds = figures.share(first.share) + " of the extra errors";
    return NamesEntry(analysis)
               ? who + " itself holds " + holds + ": the points below it count too few to explain more."
               : who + " holds " + holds + "." + SureOf(analysis);
}

std::string SinceOf(const ErrorAnalysis& analysis, const Report& report) {
    const ErrorEvent& event = analysis.event;
    const std::string start = LocalTime(event.start, report.zoneOffset);
    return event.first == event.last && !event.isOngoing
               ? "Errors at " + start + ", in a single interval."
               : "Errors since " + start + ", " + StateOf(event, event.isOngoing, report.zoneOffset) + ".";
}

std::string AdviceOf(const ErrorAnalysis& analysis) {
    return analysis.points.front().advice;
}

std::string BriefOf(const ErrorAnalysis& analysis, const Figures& figures) {
    const ErrorShare& first = analysis.points.front();
    return NamesEntry(analysis)
               ? ManyErrors(first.extra) + " more than usual, of its own"
               : first.point + " " + figures.share(first.share) + ", " + WordOf(analysis.certainty);
}

std::string BriefTimeOf(const ErrorAnalysis& analysis, const Report& report) {
    const ErrorEvent& event = analysis.event;
    return event.isOngoing ? LocalTime(event.start, report.zoneOffset) + ", going on"
                           : LocalTimes(event.start, event.end, report.zoneOffset);
}

Facts EventFactsOf(const ErrorAnalysis& analysis, const Report& report) {
    const ErrorEvent& event = analysis.event;
    const std::string length =
        event.first == event.last ? ", one interval" : ", " + Duration(event.end - event.start);
    Facts facts = {
        {"when", LocalTimes(event.start, event.end, report.zoneOffset) + length},
        {"errors", Counted(static_cast<size_t>(event.count), "error") + " at " + analysis.Entry().point +
                       ", usually " + Fixed(event.expected, 1) + " in as many intervals"},
        {"peak", Counted(static_cast<size_t>(event.peakCount), "error") + " in the interval of " +
                     LocalTime(event.peakTime, report.zoneOffset)}};
    for (size_t i = 1; i < analysis.entries.size(); ++i) {
        const ErrorShare& entry = analysis.points[analysis.entries[i]];
        facts.push_back({"also at", entry.point + ", " + ManyErrors(entry.extra) + " more than usual"});
    }
    return facts;
}

Facts ErrorFactsOf(const Report& report) {
    Facts facts;
    std::string totals;
    for (const ErrorLook& look : report.errorLooks) {
        totals += (totals.empty() ? "" : "; ") + TotalOf(look);
    }
    if (report.errorsReason) {
        facts.push_back({"errors", "cannot be told: " + SentenceOf(*report.errorsReason)});
    } else if (report.areErrorsLookedAt) {
        facts.push_back({"errors", totals.empty() ? "none" : totals});
    }
    if (report.healingsReason) {
        facts.push_back({"healings", "cannot be told: " + SentenceOf(*report.healingsReason)});
    }
    return facts;
}

}  // namespace explain

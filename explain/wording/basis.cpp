#include <algorithm>

#include "explain/report.h"
#include "explain/wording_errors.h"

namespace explain {
namespace {

constexpr int64_t DAY = 86400;  // seconds

std::string IntervalsOf(const Coverage& coverage) {
    return coverage.expected > 0
               ? std::to_string(coverage.intervals) + " of " + Counted(coverage.expected, "interval")
               : Counted(coverage.intervals, "interval");
}

std::string RowsOf(const Report& report) {
    const Coverage& coverage = report.coverage;
    std::string text = IntervalsOf(coverage) + ", " + std::to_string(coverage.pointsWithRows) + " of " +
                       Counted(coverage.points, "point");
    if (coverage.newest) {
        const int64_t age = std::max<int64_t>(0, report.madeAt - *coverage.newest);
        text += ", newest row " + TimeOfDay(*coverage.newest, report.zoneOffset) +
                (age < DAY ? " (" + Duration(age) + " old)" : "");  // says something of an incident only
    }
    return text;
}

}  // namespace

std::string NewestOf(const Report& report) {
    const Coverage& coverage = report.coverage;
    const int64_t newest = coverage.newest.value_or(0);
    const int64_t age = std::max<int64_t>(0, report.madeAt - newest);
    return IntervalsOf(coverage) + (!coverage.newest ? ""
                                    : age < DAY      ? ", newest row " + Duration(age) + " old"
                                                : ", newest row " + TimeOfDay(newest, report.zoneOffset));
}

std::string MissingOf(const Report& report) {
    const Coverage& coverage = report.coverage;
    std::string text;
    const auto add = [&text](bool isMissing, const std::string& what) {
        text += !isMissing ? "" : (text.empty() ? "only a part of the range has rows: " : ", ") + what;
    };
    add(coverage.lacksBegin, "none before " + LocalTime(coverage.oldest.value_or(0), report.zoneOffset));
    add(coverage.lacksEnd, "none after " + LocalTime(coverage.newest.value_or(0), report.zoneOffset));
    add(coverage.lacksBetween, "a fifth or more of the intervals between is missing");
    return text;
}

Facts BasisOf(const Report& report) {
    Facts facts;
    if (report.node) {
        facts.push_back({"node", *report.node});
    }
    const Window& range = report.question.range;
    facts.push_back({"range", LocalTimes(range.start, range.end, report.zoneOffset) + ", zone " +
                                  ZoneText(report.zoneOffset)});
    facts.push_back({"rows", RowsOf(report)});
    if (const std::string missing = MissingOf(report); !missing.empty()) {
        facts.push_back({"missing", missing});
    }
    const Facts errors = ErrorFactsOf(report);
    facts.insert(facts.end(), errors.begin(), errors.end());
    return facts;
}

std::string NothingOf(const Report& report) {
    return report.coverage.IsPart()
               ? "Nothing anomalous in what was looked at, which is only a part of the range."
           : report.errors.empty()
               ? "Nothing anomalous: no point was slow, and the detector flags none."
               : "Beside the errors nothing is anomalous: no point was slow, and the detector flags none.";
}

std::string LargestOf(const Look& look, const Report& report, const Figures& figures) {
    if (!look.highest) {
        return look.samples == 0 ? "no rows in the range" : "too few rows";
    }
    const Event& highest = *look.highest;
    const bool isLong = report.question.range.end - report.question.range.start > DAY;
    std::string text = "largest deviation " + Fixed(highest.peakDeviations, 1) + ", " +
                       figures.delay(highest.peakDelay) + " at " +
                       (isLong ? LocalTime : TimeOfDay)(highest.peakTime, report.zoneOffset);
    const std::vector<Event>& events = look.finding.events;  // what was before the range among them
    if (look.events.empty() && !events.empty() && events.back().end < report.question.range.start) {
        text += "; before the range it was slow, " +
                LocalTimes(events.back().start, events.back().end, report.zoneOffset);
    }
    return text;
}

}  // namespace explain

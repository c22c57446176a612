#include "explain/wording.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <string_view>

#include "explain/report.h"

namespace explain {
namespace {

constexpr double MAJORITY = 0.5;
constexpr int64_t RECENT = 86400;  // seconds; how old a row is says something of an incident only
constexpr double CLOSE = 0.05;     // shares that differ by less are nearly equal

// What is in braces stands for the reason's numbers and names; "{samples}" for a count with its word.
constexpr struct {
    ReasonKind kind;
    std::string_view sentence;
} SENTENCES[] = {
    {ReasonKind::MISSING_INTERVALS, "{intervals} without a row"},
    {ReasonKind::OBSERVATION_POINT, "an observation point: without request counts it takes no part"},
    {ReasonKind::CONSTANT_DELAY, "constant over the range"},
    {ReasonKind::NO_ROWS_IN_EVENT, "no rows during the event"},
    {ReasonKind::NO_ROWS, "no rows in the range"},
    {ReasonKind::FEW_BEFORE_EVENT, "only {samples} before the event, {needed} are needed"},
    {ReasonKind::FEW_FOR_SIGMA, "only {samples}: three-sigma needs {needed} to fire"},
    {ReasonKind::CLOCK_JUMPED, "the clock jumped: rows were put in the order of their times"},
    {ReasonKind::FEW_IN_COMMON, "too few intervals in common with the point above: {count} of {needed}"},
    {ReasonKind::NO_HIGH_SAMPLE, "no sample lies high above the others"},
    {ReasonKind::NO_REQUESTS, "there were no requests in the event"},
    {ReasonKind::NO_REQUEST_COUNTS,
     "an observation point: without request counts there is nothing to divide"},
    {ReasonKind::NO_GRAPH, "the configuration has no graph {subject}"},
    {ReasonKind::NO_POINT_IN_GRAPH, "the graph {graph} has no point {subject}"},
    {ReasonKind::NO_ROWS_OF_POINT, "there are no rows of {subject} in the range"},
    {ReasonKind::NO_ROWS_OF_DETECTOR, "there are no rows of the detector's points in the range"},
    {ReasonKind::FEW_ROWS_OF_DETECTOR,
     "there are too few rows of the detector's points in the range: only {samples}: three-sigma needs "
     "{needed} to fire. Name a longer range"},
    {ReasonKind::NO_ROWS_AT_ALL, "the statistics database has no rows, or cannot be read"},
    {ReasonKind::OUTSIDE_STATISTICS,
     "the range lies outside the statistics, which go from {from} to {until}"},
    {ReasonKind::ANOTHER_ZONE, "the tables are named in {zone}: use --zone {option}"},
    {ReasonKind::UNREADABLE_POINT, "the statistics of {subject} could not be read"},
    {ReasonKind::UNREADABLE_DATABASE, "the statistics database cannot be read, or has no tables"},
    {ReasonKind::BAD_CONFIGURATION, "the configuration is not what it should be: {subject}"},
    {ReasonKind::BAD_VALUE, "the configuration or the statistics hold a bad value: {subject}"},
};

// As --zone takes it.
std::string ZoneOption(int64_t zoneOffset) {
    std::string zone = ZoneText(zoneOffset);
    zone.erase(zone.find(':'), 1);
    return zone;
}

// A reason behind what it is a reason for. What others say in it may end as it likes.
std::string AnswerFor(const std::string& what, const Reason& reason) {
    const std::string sentence = SentenceOf(reason);
    return what + ": " + sentence + (sentence.back() == '.' ? "" : ".");
}

std::string CountOf(size_t least, size_t most) {
    return (least == most ? "" : std::to_string(least) + " to ") + std::to_string(most);
}

std::string Filled(std::string_view name, const Reason& reason, size_t most) {
    return name == "samples"     ? Counted(reason.count, most, "sample")
           : name == "intervals" ? Counted(reason.count, most, "interval")
           : name == "count"     ? CountOf(reason.count, most)
           : name == "needed"    ? std::to_string(reason.needed)
           : name == "graph"     ? reason.graph
           : name == "from"      ? LocalTime(reason.from, reason.zoneOffset)
           : name == "until"     ? LocalTime(reason.until, reason.zoneOffset)
           : name == "zone"      ? ZoneText(reason.zoneOffset)
           : name == "option"    ? ZoneOption(reason.zoneOffset)
                                 : reason.subject;
}

// The second candidate, where it is hardly behind the first.
std::string RivalOf(const std::vector<Candidate>& candidates, ShareFigure figure) {
    if (candidates.size() < 2 || candidates[0].share - candidates[1].share > CLOSE) {
        return {};
    }
    return " " + candidates[1].point + " holds nearly as much: " + figure(candidates[1].share) + ".";
}

std::string PointAnswer(const Analysis& analysis, ShareFigure figure) {
    const Candidate& first = analysis.candidates.front();
    const std::string share = figure(first.share) + " of the extra delay";
    const std::string rival = RivalOf(analysis.candidates, figure);
    if (first.point != analysis.point) {
        return first.point + " (" + first.graph + ") holds " + share + "." + rival;
    }
    const std::string below = first.share >= MAJORITY ? "nothing below it in this graph explains the delay."
                                                      : "no single point below it explains more.";
    return first.point + " itself holds " + share + ": " + below + rival;
}

// What is told of an event that is within the usual, before it is divided all the same.
std::string WeakOf(const Analysis& analysis) {
    const Evidence& top = analysis.findings.front().evidence;
    const double usual = *top.baselineDelay;
    const std::string times =
        usual > 0.0 ? Fixed(*top.eventDelay / usual, 1) + " times as slow as usual, " : "";
    return analysis.point + " is " + times + Fixed(*top.deviations, 1) +
           " deviations: within what is usual. ";
}

}  // namespace

std::string TimeOfDay(int64_t time, int64_t zoneOffset) {
    const std::string text = LocalTime(time, zoneOffset);
    return text.substr(text.find(' ') + 1);
}

std::string LocalTimes(int64_t start, int64_t end, int64_t zoneOffset) {
    const std::string first = LocalTime(start, zoneOffset);
    const std::string last = LocalTime(end, zoneOffset);
    const size_t day = first.find(' ');
    const bool isSameDay = first.compare(0, day, last, 0, last.find(' ')) == 0;
    return start == end ? first : first + " to " + (isSameDay ? TimeOfDay(end, zoneOffset) : last);
}

std::string Fixed(double value, int decimals) {
    std::array<char, 400> text{};  // the largest number has 309 digits
    std::snprintf(text.data(), text.size(), "%.*f", decimals, value);
    return text.data();
}

std::string Percent(double share) {
    return Fixed(share * 100.0, 1) + " %";
}

std::string SentenceOf(const Reason& reason) {
    return SentenceOf(reason, reason.count);
}

std::string SentenceOf(const Reason& reason, size_t most) {
    const auto* const row = std::find_if(std::begin(SENTENCES), std::end(SENTENCES),
                                         [&](const auto& one) { return one.kind == reason.kind; });
    std::string sentence;
    for (std::string_view rest = row->sentence; !rest.empty();) {
        const size_t open = std::min(rest.find('{'), rest.size());
        sentence += rest.substr(0, open);
        rest.remove_prefix(open);
        if (!rest.empty()) {
            const size_t close = rest.find('}');
            sentence += Filled(rest.substr(1, close - 1), reason, most);
            rest.remove_prefix(close + 1);
        }
    }
    return sentence;
}

const char* WordOf(Verdict verdict) {
    switch (verdict) {
        case Verdict::POINT:
            return "point";
        case Verdict::LOAD:
            return "load";
        case Verdict::NOTHING:
            return "nothing";
        case Verdict::CANNOT_TELL:
            break;
    }
    return "cannot tell";
}

const char* WordOf(Nature nature) {
    switch (nature) {
        case Nature::USUAL:
            return "usual";
        case Nature::LOAD:
            return "load";
        case Nature::DEVICE:
            return "device";
        case Nature::UNKNOWN:
            break;
    }
    return "unknown";
}

const char* WordOf(BaselinePart part) {
    switch (part) {
        case BaselinePart::FIRST_HALF:
            return "first half";
        case BaselinePart::SECOND_HALF:
            return "second half";
        case BaselinePart::FIRST_THIRD:
            return "first third";
        case BaselinePart::MIDDLE_THIRD:
            return "middle third";
        case BaselinePart::LAST_THIRD:
            return "last third";
        case BaselinePart::WITHOUT_LAST_HOUR:
            return "without the last hour";
        case BaselinePart::WHOLE:
            break;
    }
    return "whole";
}

const char* WordOf(Certainty certainty) {
    switch (certainty) {
        case Certainty::SURE:
            return "sure";
        case Certainty::LIKELY:
            return "likely";
        case Certainty::UNSURE:
            break;
    }
    return "unsure";
}

std::string AnswerOf(const Analysis& analysis, ShareFigure figure) {
    if (analysis.isWeak) {
        return WeakOf(analysis) + PointAnswer(analysis, figure);
    }
    switch (analysis.verdict) {
        case Verdict::POINT:
            return PointAnswer(analysis, figure);
        case Verdict::LOAD:
            return "Load: the requests rose and the delay with them. No point is to blame.";
        case Verdict::NOTHING:
            return AnswerFor("Nothing anomalous", *analysis.reason);
        case Verdict::CANNOT_TELL:
            break;
    }
    return AnswerFor("Cannot tell", *analysis.reason);
}

std::string DeviationsOf(double deviations) {
    return Fixed(std::fabs(deviations), 1) + " deviations " + (deviations < 0.0 ? "below" : "above") +
           " the usual";
}

std::string EqualLoadOf(const std::optional<double>& ratio) {
    return ratio ? Fixed(*ratio, 2) + " times the delay of before"
                 : "not known: too few intervals before had as many requests";
}

std::string MeaningOf(Nature nature) {
    switch (nature) {
        case Nature::DEVICE:
            return "device: slower than before, not because of more requests";
        case Nature::LOAD:
            return "load: the delay follows the requests";
        case Nature::USUAL:
            return "no extra delay";
        case Nature::UNKNOWN:
            break;
    }
    return "cannot be told";
}

std::string MarginOf(const std::vector<Candidate>& candidates, ShareFigure figure) {
    const double second = candidates.size() > 1 ? candidates[1].share : 0.0;
    return "margin to the second: " + figure(candidates.front().share - second);
}

std::string AgreementOf(const Analysis& analysis) {
    return "same point in " + std::to_string(analysis.Agreements()) + " of " +
           std::to_string(analysis.trials.size()) + " baselines";
}

std::string ModulesOf(const Analysis& analysis, ShareFigure figure) {
    std::string text;
    for (const ModuleShare& one : analysis.modules) {
        text += (text.empty() ? "" : ", ") +
                (one.module.empty() ? std::string(BETWEEN_NODES) : "module " + one.module) + " " +
                figure(one.share);
    }
    return text;
}

std::string WalkOf(const Analysis& analysis, int64_t zoneOffset) {
    const Walk& walk = *analysis.walk;
    const std::string from = "from " + LocalTimes(walk.window.start, walk.window.end, zoneOffset) + " ";
    if (!walk.point) {
        return from + "has no result";
    }
    if (analysis.verdict != Verdict::POINT) {
        return from + "names " + *walk.point;
    }
    const bool agrees = *walk.point == analysis.candidates.front().point;
    return from + "names " + *walk.point + (agrees ? ": the two agree" : ": the two do not agree");
}

std::string BasisOf(const Report& report) {
    const Coverage& coverage = report.coverage;
    std::string text = coverage.expected > 0 ? std::to_string(coverage.intervals) + " of " +
                                                   Counted(coverage.expected, "interval")
                                             : Counted(coverage.intervals, "interval");
    text += ", " + std::to_string(coverage.pointsWithRows) + " of " + Counted(coverage.points, "point");
    if (coverage.newest) {
        const int64_t age = std::max<int64_t>(0, report.madeAt - *coverage.newest);
        text += ", newest row " + TimeOfDay(*coverage.newest, report.zoneOffset) +
                (age < RECENT ? " (" + Duration(age) + " old)" : "");
    }
    return text;
}

std::string LargestOf(const Look& look, int64_t zoneOffset) {
    if (!look.highest) {
        return look.samples == 0 ? "no rows in the range" : "too few rows";
    }
    return Fixed(look.highest->peakDeviations, 1) + " deviations, " + Fixed(look.highest->peakDelay, 0) +
           " us at " + LocalTime(look.highest->peakTime, zoneOffset);
}

std::string NothingOf(const Report& report) {
    return report.coverage.IsPart()
               ? "Nothing anomalous in what was looked at, which is only a part of the range."
               : "Nothing anomalous: no point was slow, and the detector flags none.";
}

std::string SilenceOf(const Analysis& analysis) {
    switch (analysis.silence) {
        case Silence::FEW:
            return "the detector does not flag it: the range has fewer than " +
                   std::to_string(FEWEST_FOR_SIGMA) + " samples";
        case Silence::FILLED:
            return "the detector does not flag it: the event fills " + Fixed(analysis.eventsFill * 100.0, 0) +
                   " % of the range, and beyond about a tenth nothing can reach three deviations";
        case Silence::OUTSHONE:
            return "the detector does not flag it: a larger event in the range hides it";
        case Silence::SMALL:
            return "the detector does not flag it: it stays within three deviations of the range";
        case Silence::NONE:
            break;
    }
    return {};
}

std::string StateOf(const Event& event) {
    return event.isOngoing ? "still going on at the last sample" : "over";
}

std::string ChanceOf(const ChanceFlags& flags) {
    if (flags.samples == 0) {
        return "No samples were loaded.";
    }
    return std::to_string(flags.flagged) + " of " + Counted(flags.samples, "sample") +
           " lie beyond three deviations; " + Fixed(flags.expected, 1) + " would by chance.";
}

}  // namespace explain

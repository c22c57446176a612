#include <algorithm>

#include "explain/report.h"
#include "explain/wording.h"

namespace explain {
namespace {

std::string WhenOf(const Event& event, int64_t zoneOffset) {
    const std::string when = LocalTimes(event.start, event.end, zoneOffset);
    return event.first == event.last
               ? when + ", one sample"
               : when + ", " + Duration(event.end - event.start) + ", " + Counted(event.count, "high sample");
}

// Which samples say what is usual, and where they lie.
std::string BaselineOf(const Analysis& analysis, const Report& report) {
    const size_t count = analysis.findings.front().evidence.baselineCount;
    if (!analysis.baseline) {
        return "none: no samples beside the events";
    }
    const char* const where = report.question.baseline                         ? ", as named"
                              : analysis.baseline->end < analysis.event->start ? ", before the event"
                                                                               : ", after the event";
    return LocalTimes(analysis.baseline->start, analysis.baseline->end, report.zoneOffset) + where + ", " +
           Counted(count, "sample");
}

// What a value was in the event beside what is usual.
std::string Compared(const std::optional<double>& now, const std::optional<double>& usual,
                     std::string (*written)(double)) {
    if (!now || !usual) {
        return "not known";
    }
    const std::string ratio = *usual > 0.0 ? " (" + Fixed(*now / *usual, 2) + " times)" : "";
    return written(*now) + ", usually " + written(*usual) + ratio;
}

std::string Requests(double requests) {
    return Fixed(requests, requests < 100.0 ? 1 : 0) + " an interval";
}

std::string EqualLoadOf(const std::optional<double>& ratio) {
    return ratio ? Fixed(*ratio, 2) + " times the delay that as many requests usually have"
                 : "not known: too few other intervals have as many requests";
}

std::string MeaningOf(const Evidence& evidence) {
    switch (evidence.nature) {
        case Nature::DEVICE:
            return evidence.equalLoadRatio ? "device: slower than usual, not because of more requests"
                                           : "device: the delay does not follow the requests";
        case Nature::LOAD:
            return "load: the delay follows the requests";
        case Nature::USUAL:
            return "no extra delay";
        case Nature::UNKNOWN:
            break;
    }
    return "cannot be told";
}

}  // namespace

Facts EventFactsOf(const Analysis& analysis, const Report& report, const Figures& figures) {
    if (!analysis.event) {
        return {};
    }
    const Event& event = *analysis.event;
    Facts facts = {
        {"when", WhenOf(event, report.zoneOffset)},
        {"peak", figures.delay(event.peakDelay) + " at " + LocalTime(event.peakTime, report.zoneOffset) +
                     ", " + DeviationsOf(event.peakDeviations)}};
    if (const std::string silence = SilenceOf(analysis); !silence.empty()) {
        facts.push_back({"detector", silence});
    }
    if (!analysis.findings.empty()) {
        facts.push_back({"usual by", BaselineOf(analysis, report)});
    }
    return facts;
}

Facts LoadFactsOf(const Analysis& analysis, const Figures& figures) {
    if (analysis.findings.empty()) {
        return {};
    }
    const Evidence& top = analysis.findings.front().evidence;
    return {{"delay", Compared(top.eventDelay, top.baselineDelay, figures.delay)},
            {"requests", Compared(top.eventRequests, top.baselineRequests, Requests)},
            {"equal load", EqualLoadOf(top.equalLoadRatio)},
            {"so it is", MeaningOf(top)}};
}

std::vector<Event> OthersOf(const Analysis& analysis) {
    std::vector<Event> others;
    std::copy_if(analysis.events.begin(), analysis.events.end(), std::back_inserter(others),
                 [&](const Event& other) { return !analysis.event || other.start != analysis.event->start; });
    return others;
}

std::vector<Event> OnlyListedOf(const Analysis& analysis, const Report& report) {
    std::vector<Event> listed;
    for (const Event& other : OthersOf(analysis)) {
        const bool isExplained =
            std::any_of(report.analyses.begin(), report.analyses.end(), [&](const Analysis& one) {
                return one.point == analysis.point && one.graph == analysis.graph && one.event &&
                       one.event->start == other.start;
            });
        if (!isExplained) {
            listed.push_back(other);
        }
    }
    return listed;
}

std::string AlsoListed(const Report& report, size_t position) {
    const Analysis& analysis = report.analyses[position];
    const auto next = report.analyses.begin() + static_cast<std::ptrdiff_t>(position) + 1;
    const bool isLast = std::none_of(next, report.analyses.end(), [&](const Analysis& other) {
        return other.point == analysis.point && other.graph == analysis.graph;
    });
    const size_t count = isLast ? OnlyListedOf(analysis, report).size() : 0;
    return count == 0 ? "" : "and " + Counted(count, "other event") + ", listed with each answer";
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

}  // namespace explain

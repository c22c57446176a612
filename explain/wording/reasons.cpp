#include <algorithm>
#include <iterator>
#include <string_view>

#include "explain/finding/reason.h"
#include "explain/wording.h"
#include "text/nearest_name.h"

namespace explain {
namespace {

// What is in braces stands for the reason's numbers and names; "{samples}" for a count with its word.
constexpr struct {
    ReasonKind kind;
    std::string_view sentence;
} SENTENCES[] = {
    {ReasonKind::MISSING_INTERVALS, "{intervals} without a row"},
    {ReasonKind::ESTIMATED_INTERVALS, "{intervals} of the event estimated from the rows beside"},
    {ReasonKind::OBSERVATION_POINT, "an observation point: without request counts it takes no part"},
    {ReasonKind::CONSTANT_DELAY, "constant over the range"},
    {ReasonKind::NO_ROWS_IN_EVENT, "no rows during the event"},
    {ReasonKind::NO_ROWS, "no rows in the range"},
    {ReasonKind::FEW_BEFORE_EVENT, "only {samples} before the event, {needed} are needed"},
    {ReasonKind::FEW_IN_BASELINE, "the baseline that was named has only {samples}, {needed} are needed"},
    {ReasonKind::FEW_FOR_SIGMA, "only {samples}: three-sigma needs {needed} to fire"},
    {ReasonKind::CLOCK_JUMPED, "the clock jumped: rows were put in the order of their times"},
    {ReasonKind::FEW_IN_COMMON, "too few intervals in common with the point above: {count} of {needed}"},
    {ReasonKind::NO_HIGH_SAMPLE, "no sample lies high above the others"},
    {ReasonKind::NO_REQUESTS, "there were no requests in the event"},
    {ReasonKind::NO_REQUEST_COUNTS,
     "an observation point: without request counts there is nothing to divide"},
    {ReasonKind::NO_GRAPH, "the configuration has no graph {subject}"},
    {ReasonKind::NO_POINT_IN_GRAPH, "the graph {graph} has no point {subject}{nearest}"},
    {ReasonKind::NO_ROWS_OF_POINT, "there are no rows of {subject} in the range"},
    {ReasonKind::NO_ROWS_OF_DETECTOR, "there are no rows of the detector's points in the range"},
    {ReasonKind::FEW_ROWS_OF_DETECTOR,
     "there are too few rows of the detector's points in the range: only {samples}: three-sigma needs "
     "{needed} to fire. Name a longer range"},
    {ReasonKind::NO_ROWS_AT_ALL, "the statistics database has no rows, or cannot be read"},
    {ReasonKind::OUTSIDE_STATISTICS,
     "the range lies outside the statistics, which go from {from} to {until}"},
    {ReasonKind::ANOTHER_ZONE, "the tables are named in {zone}{other}: use --zone {option}"},
    {ReasonKind::UNREADABLE_POINT, "the statistics of {subject} could not be read"},
    {ReasonKind::UNREADABLE_DATABASE, "the statistics database cannot be read, or has no tables"},
    {ReasonKind::UNREADABLE_HEALINGS, "the healing database cannot be read"},
    {ReasonKind::NO_ERROR_COUNTS, "the statistics ({subject}) have no counts of errors"},
    {ReasonKind::BAD_CONFIGURATION, "the configuration is not what it should be: {subject}"},
    {ReasonKind::BAD_VALUE, "the configuration or the statistics hold a bad value: {subject}"},
};

// As --zone takes it.
std::string ZoneOption(int64_t zoneOffset) {
    std::string zone = ZoneText(zoneOffset);
    zone.erase(zone.find(':'), 1);
    return zone;
}

std::string OtherZoneOf(const Reason& reason) {
    return reason.otherZone ? " here and in " + ZoneText(*reason.otherZone) +
                                  " elsewhere, as over a change of daylight saving time"
                            : "";
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
           : name == "other"     ? OtherZoneOf(reason)
           : name == "nearest"   ? DidYouMean(reason.subject, reason.known)
           : name == "option"    ? ZoneOption(reason.zoneOffset)
                                 : reason.subject;
}

}  // namespace

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

std::string FailureOf(const Reason& reason, const std::string& failed) {
    const bool isReading = reason.kind == ReasonKind::NO_ROWS_AT_ALL ||
                           reason.kind == ReasonKind::UNREADABLE_POINT ||
                           reason.kind == ReasonKind::UNREADABLE_DATABASE;
    if (!isReading || failed.empty()) {
        return SentenceOf(reason);
    }
    const bool isLocked = failed.find("locked") != std::string::npos;
    return (reason.kind == ReasonKind::UNREADABLE_POINT ? SentenceOf(reason)
                                                        : "the statistics database cannot be read") +
           ": " + failed + (isLocked ? ". Another program writes to it: try again" : "");
}

}  // namespace explain

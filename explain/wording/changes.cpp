#include "explain/change.h"
#include "explain/finding/reason.h"
#include "explain/report.h"
#include "explain/wording.h"

namespace explain {
namespace {

constexpr int64_t DAY_SECONDS = 86400;

// "2030 us (2.4 times)".
std::string SlownessOf(const Change& change) {
    return Fixed(*change.delay, 0) + " us" + (change.times ? " (" + Fixed(*change.times, 1) + " times)" : "");
}

// "BDM_DISK_READ 99 %".
std::string BlameOf(const Cause& cause) {
    if (cause.point.empty()) {
        return "because of more requests";
    }
    return (cause.certainty == Certainty::UNSURE ? "perhaps " : "") + cause.point + " " +
           Fixed(cause.share * 100.0, 0) + " %";
}

std::string SlowOf(const Change& change) {
    return SlownessOf(change) + (change.cause ? ", " + BlameOf(*change.cause) : "");
}

}  // namespace

std::string SentenceOf(const Change& change, int64_t zoneOffset) {
    const std::string lasted = Duration(change.seconds);
    switch (change.kind) {
        case ChangeKind::SLOW:
            return change.point + " slow, " + SlowOf(change);
        case ChangeKind::WAS_SLOW:
            return change.point + " was slow for " + lasted + ", " + SlowOf(change);
        case ChangeKind::CAUSE:
            return change.point + " still slow, now " + BlameOf(*change.cause);
        case ChangeKind::USUAL:
            return change.point + " usual again after " + lasted;
        case ChangeKind::ACCEPTED:
            return change.point + " slow for " + lasted + ": that counts as usual from now on";
        case ChangeKind::UNREADABLE:
            return change.reason;
        case ChangeKind::READABLE:
            return "the statistics database can be read again after " + lasted;
        case ChangeKind::SILENT:
            return change.newest ? "no rows since " + LocalTime(*change.newest, zoneOffset) : "no rows yet";
        case ChangeKind::ERRORS:
            return change.type + ": " + Counted(static_cast<size_t>(change.count), "error") +
                   ", more than usual, " + BlameOf(*change.cause);
        case ChangeKind::ERRORS_OVER:
            return change.type + ": no more than usual again after " + lasted + ", " +
                   Counted(static_cast<size_t>(change.count), "error");
        case ChangeKind::HEALED:
            return change.reason;
        case ChangeKind::ROWS:
            break;
    }
    return "rows again after " + lasted;
}

std::string LineOf(const Change& change, int64_t now, int64_t zoneOffset) {
    const bool isToday = (change.time + zoneOffset) / DAY_SECONDS == (now + zoneOffset) / DAY_SECONDS;
    return (isToday ? TimeOfDay(change.time, zoneOffset) : LocalTime(change.time, zoneOffset)) + " " +
           SentenceOf(change, zoneOffset);
}

std::string TroubleOf(const Reason& reason, const std::string& failed) {
    const bool isReading =
        reason.kind == ReasonKind::UNREADABLE_POINT || reason.kind == ReasonKind::UNREADABLE_DATABASE;
    return !isReading ? SentenceOf(reason)
                      : "the statistics database cannot be read" + (failed.empty() ? "" : ": " + failed);
}

std::string IntervalOf(int64_t seconds) {
    return "looks every " + Duration(seconds) + " at the last hour, and tells what changes";
}

std::string LastSeenOf(const Report& report) {
    return "As it was at " + LocalTime(report.madeAt, report.zoneOffset) +
           ": nothing could be looked at since.";
}

const char* WordOf(ChangeKind kind) {
    switch (kind) {
        case ChangeKind::SLOW:
            return "slow";
        case ChangeKind::WAS_SLOW:
            return "was slow";
        case ChangeKind::CAUSE:
            return "cause";
        case ChangeKind::USUAL:
            return "usual";
        case ChangeKind::ACCEPTED:
            return "accepted";
        case ChangeKind::UNREADABLE:
            return "unreadable";
        case ChangeKind::READABLE:
            return "readable";
        case ChangeKind::SILENT:
            return "no rows";
        case ChangeKind::ERRORS:
            return "errors";
        case ChangeKind::ERRORS_OVER:
            return "errors over";
        case ChangeKind::HEALED:
            return "healed";
        case ChangeKind::ROWS:
            break;
    }
    return "rows";
}

}  // namespace explain

#include "agent/agent_time.h"

#include <cerrno>
#include <chrono>
#include <ctime>
#include <limits>
#include <ratio>

#include "host/process/error_lines.h"
#include "host/process/interrupt.h"
#include "host/process/statements.h"
#include "text/local_time.h"
#include "text/printable.h"

namespace zorv {
namespace {
using Tick = std::chrono::duration<uint64_t, std::ratio<1, 250>>;

constexpr int64_t MONTHS_OF_CYCLE = 4800;  // the calendar repeats every 400 years
constexpr int64_t SECONDS_OF_CYCLE = int64_t{146097} * 86400;

// A command that waits in silence looks as if it hung.
void TellWhyItWaits(const std::string& reason) {
    PrintErrorLines(std::string(program_invocation_short_name) + ": waiting to try again" +
                    (reason.empty() ? "" : ": " + Printable(reason)) + " (Ctrl-C stops)\n");
}
}  // namespace
}  // namespace zorv

uint64_t vopx_get_jiffies() {
    return std::chrono::duration_cast<zorv::Tick>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void vopx_10msleep(uint32_t ticks) {
    if (zorv::IsFirstWaitOfCommand()) {
        const std::string reason = zorv::FailedStatements();
        if (!zorv::GiveUpAtFirstTry(reason)) {
            zorv::TellWhyItWaits(reason);
        }
    }
    zorv::SleepUnlessInterrupted(std::chrono::milliseconds(int64_t{10} * ticks));
}

int64_t vopx_time_getlocaltime(int64_t* seconds) {
    const time_t now = std::time(nullptr);
    const int64_t local = now + ZoneOffsetAt(now);
    if (seconds != nullptr) {
        *seconds = local;
    }
    return local;
}

void vopx_time_gmtime(int64_t seconds, VOPX_TIME_S* out) {
    *out = {};
    tm utc{};
    if (gmtime_r(&seconds, &utc) == nullptr) {
        return;
    }
    const int64_t year = int64_t{utc.tm_year} + 1900;
    if (year <= std::numeric_limits<int32_t>::max()) {
        *out = {utc.tm_sec, utc.tm_min, utc.tm_hour, utc.tm_mday, utc.tm_mon + 1, static_cast<int32_t>(year)};
    }
}

int64_t vopx_time_mktime(const VOPX_TIME_S* in) {
    // timegm() counts years from 1900 in an int and cannot be given every year: it gets the same month of
    // the cycle that began in 2000, or of the one before, and the cycles in between are added.
    const int64_t months = int64_t{in->year} * 12 + in->month - 1;
    const int64_t cycles = months / zorv::MONTHS_OF_CYCLE - 5;
    tm utc{};
    utc.tm_year = 2000 - 1900;
    utc.tm_mon = static_cast<int>(months % zorv::MONTHS_OF_CYCLE);
    utc.tm_mday = in->day;
    utc.tm_hour = in->hour;
    utc.tm_min = in->minute;
    utc.tm_sec = in->second;
    return timegm(&utc) + cycles * zorv::SECONDS_OF_CYCLE;
}

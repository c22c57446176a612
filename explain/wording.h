// How the reports write times, numbers and enumerations.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "text/local_time.h"  // LocalTime(), ZoneText(): whoever writes times writes these
#include "text/printable.h"   // and Counted()

namespace explain {

enum class Nature;
enum class Verdict;

// The time of day of a local time, as "14:03:00". `zoneOffset` is in seconds east of UTC.
std::string TimeOfDay(int64_t time, int64_t zoneOffset);

// "45 s", "3 min 30 s", "1 h 5 min".
std::string Duration(int64_t seconds);

// With so many digits after the point.
std::string Fixed(double value, int decimals);

// A share of 0 to 1 as "84.3 %".
std::string Percent(double share);

// "only 10 samples: three-sigma needs 11 to fire".
std::string TooFewForSigma(size_t count);

// "point", "load", "nothing", "cannot tell"; "device", "load", "usual", "unknown".
const char* WordOf(Verdict verdict);
const char* WordOf(Nature nature);

}  // namespace explain

// The time forms of the storage system. UTC is in seconds since 1970; local time is UTC plus the whole hours
// of the zone's offset, as everyone who reads the statistics takes it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lumosim {

// This machine's zone offset in seconds east of UTC; minutes beyond the whole hours are dropped.
int64_t ZoneOffset();

// YYYYMMDDhhmmss of local time.
std::string CompactTime(int64_t utc, int64_t zoneOffset);

// Local time as year/month/day hour:minute:second without leading zeros: 2023/1/5 14:3:0.
std::string ReadableTime(int64_t utc, int64_t zoneOffset);

// The reverse of CompactTime(). Nothing when the text is not 14 digits, not a date of the calendar, or not
// between 1971 and 2999.
std::optional<int64_t> ParseCompactTime(std::string_view text, int64_t zoneOffset);

}  // namespace lumosim

// Zones as an operator writes them, and the one of this process.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Seconds east of UTC of "+0800", "+08:00", "+08", "+8" or "Z"; nothing for what is none of these, or farther
// than any zone. Any thread.
std::optional<int64_t> OffsetOf(std::string_view zone);

// What is wrong with `zone`, an offset as above or the name of a zone that this machine knows, such as
// "Asia/Shanghai". Empty: nothing. Any thread.
std::string FaultOfZone(const std::string& zone);

// Makes the offset that `zone`, in which nothing is wrong, has now the zone of this process and of the
// programs that it starts; without a zone, that of the machine. It is cut to whole hours, as the plug-in
// counts, and a change of daylight saving time passes it by, as it does the plug-in, which asks for the
// offset once. Returns, in a line, what an operator should know of that: that minutes were cut off, or that
// TZ names no zone. Usually empty. Not thread-safe: call it before anything asks for local time.
std::string KeepZone(const std::optional<std::string>& zone = std::nullopt);

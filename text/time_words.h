// Times as an operator writes them. Besides compact local time (20230105140300) these are
//   now, -30m                       the moment, and so many seconds (s), minutes (m), hours (h), days (d)
//                                   before
//   2023/1/5 14:3:0                 local time; also 2023-01-05 14:03:00; without the seconds, or at midnight
//   2023-01-05T14:03:00             the same in one word; with a zone behind it (Z, +08:00) it is that zone's
//   today 14:3:0, yesterday 14:3:0  the same on a day counted from now
// The parts of a time stand in one word with a blank, or in two words. Local time is UTC plus the zone's
// offset at the moment, for all times: so does the plug-in count.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

// The moment that `now` means.
struct LocalClock {
    int64_t time = 0;        // UTC seconds since 1970
    int64_t zoneOffset = 0;  // seconds east of UTC
};

// This machine's, at the UTC second `time`.
LocalClock ClockAt(int64_t time);

// A text that is no time; what() tells the operator why, and how a time is written.
class TimeError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Whether `word` is a length of time: a number of minutes, or one with its unit, such as 90s, 5m, 4h, 1d.
bool IsLength(const std::string& word);

// Seconds of such a length. Throws TimeError for what is none, and for 0.
int64_t LengthOf(const std::string& word);

// Turns the start and the end of a range, which stand in `words` from index `first` on, into compact local
// times: `words` then has one word for each. Returns the range as text, for the operator to see what was
// understood. A length with its unit in the place of both is the range of that length up to now. Where
// nothing is in another form than compact local time or a number of minutes, or there are no such words,
// nothing changes and the result is empty: whoever takes the words has to check them. Throws TimeError when
// one of the two is no time or the end is missing; `words` is then unchanged.
std::string TurnRange(std::vector<std::string>& words, size_t first, const LocalClock& clock);

// The UTC second that `text` means. Throws TimeError.
int64_t TimeOf(const std::string& text, const LocalClock& clock);

#include "text/time_words.h"

#include <algorithm>
#include <ctime>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

#include "text/local_time.h"
#include "text/printable.h"
#include "text/zone.h"

namespace {
constexpr int64_t DAY = 86400;
constexpr int64_t LAST_SECOND = 253402300799;  // of the year 9999: years have four digits
constexpr size_t COMPACT_LENGTH = 14;
constexpr std::string_view DIGITS = "0123456789";
constexpr const char* FORMS =
    "; a time is now, -30m (or s, h, d), today, yesterday, 2023/1/5 14:3:0, 2023-01-05T14:03:00+08:00 or "
    "20230105140300";

[[noreturn]] void Throw(const std::string& text, const char* reason) {
    throw TimeError("'" + Printable(text, 40) + "' is no time" + reason + FORMS);
}

bool IsDigit(char letter) {
    return DIGITS.find(letter) != std::string_view::npos;
}

// Moves the number that `text` begins with out of it.
std::optional<int> TakeNumber(std::string_view& text, size_t fewest, size_t most) {
    const size_t count = std::min(text.find_first_not_of(DIGITS), text.size());
    if (count < fewest || count > most) {
        return std::nullopt;
    }
    const int number = std::stoi(std::string(text.substr(0, count)));
    text.remove_prefix(count);
    return number;
}

// The same for a number that `before` stands before.
std::optional<int> TakeNumberAfter(char before, std::string_view& text) {
    if (text.empty() || text.front() != before) {
        return std::nullopt;
    }
    text.remove_prefix(1);
    return TakeNumber(text, 1, 2);
}

// Seconds of the date as if its zone were UTC. Nothing for a date that the calendar lacks: it would come
// back as another one.
std::optional<int64_t> SecondsOf(int year, int month, int day, int hour, int minute, int second) {
    tm date{};
    date.tm_year = year - 1900;
    date.tm_mon = month - 1;
    date.tm_mday = day;
    date.tm_hour = hour;
    date.tm_min = minute;
    date.tm_sec = second;
    tm same = date;
    const time_t seconds = timegm(&same);
    const bool isKept = same.tm_mon == date.tm_mon && same.tm_mday == day && same.tm_hour == hour &&
                        same.tm_min == minute && same.tm_sec == second;
    return isKept ? std::optional<int64_t>(seconds) : std::nullopt;
}

// Seconds of a length with its unit, such as "30m".
std::optional<int64_t> SecondsOfLength(std::string_view text) {
    constexpr std::pair<std::string_view, int64_t> UNITS[] = {{"s", 1}, {"m", 60}, {"h", 3600}, {"d", DAY}};
    const std::optional<int> count = TakeNumber(text, 1, 9);
    const auto* const unit =
        std::find_if(std::begin(UNITS), std::end(UNITS), [&](const auto& row) { return row.first == text; });
    return count && unit != std::end(UNITS) ? std::optional<int64_t>(*count * unit->second) : std::nullopt;
}

// What one time is made of.
struct Parts {
    std::string day;    // or the whole time
    std::string clock;  // may be empty; with its zone, if it has one
};

class Reader {
public:
    Reader(Parts toRead, const LocalClock& clock)
        : parts(std::move(toRead)), now(clock.time + clock.zoneOffset), zoneOffset(clock.zoneOffset) {}

    // Local seconds. Throws TimeError.
    int64_t Read() const {
        const int64_t local = parts.clock.empty() && !IsDay() ? Moment() : Day() + Clock();
        if (local < 0 || local > LAST_SECOND) {
            Fail(": it is not between 1970 and 9999");
        }
        return local;
    }

private:
    [[noreturn]] void Fail(const char* reason) const {
        Throw(parts.day + (parts.clock.empty() ? "" : " " + parts.clock), reason);
    }

    bool IsDay() const {
        return parts.day == "today" || parts.day == "yesterday" ||
               (IsDigit(parts.day[0]) && parts.day.find_first_not_of(DIGITS) == 4);
    }

    int64_t Moment() const {
        if (parts.day == "now") {
            return now;
        }
        std::string_view rest = parts.day;
        if (!rest.empty() && rest.front() == '-') {
            rest.remove_prefix(1);
            const std::optional<int64_t> length = SecondsOfLength(rest);
            if (!length) {
                Fail("");
            }
            return now - *length;
        }
        if (rest.size() != COMPACT_LENGTH || rest.find_first_not_of(DIGITS) != std::string_view::npos) {
            Fail("");
        }
        const auto number = [&](size_t at, size_t count) { return std::stoi(parts.day.substr(at, count)); };
        return Checked(
            SecondsOf(number(0, 4), number(4, 2), number(6, 2), number(8, 2), number(10, 2), number(12, 2)));
    }

    int64_t Day() const {
        if (parts.day == "today" || parts.day == "yesterday") {
            return now - now % DAY - (parts.day == "yesterday" ? DAY : 0);
        }
        std::string_view rest = parts.day;
        const std::optional<int> year = TakeNumber(rest, 4, 4);
        const char separator = !rest.empty() && rest.front() == '/' ? '/' : '-';
        const std::optional<int> month = TakeNumberAfter(separator, rest);
        const std::optional<int> day = TakeNumberAfter(separator, rest);
        if (!year || !month || !day || !rest.empty()) {
            Fail("");
        }
        return Checked(SecondsOf(*year, *month, *day, 0, 0, 0));
    }

    int64_t Clock() const {
        if (parts.clock.empty()) {
            return 0;
        }
        const size_t zoneAt = std::min(parts.clock.find_first_of("+-Z"), parts.clock.size());
        std::string_view rest(parts.clock.data(), zoneAt);
        const std::optional<int> hour = TakeNumber(rest, 1, 2);
        const std::optional<int> minute = TakeNumberAfter(':', rest);
        const std::optional<int> second = rest.empty() ? 0 : TakeNumberAfter(':', rest);
        const std::optional<int64_t> zone =
            zoneAt == parts.clock.size() ? zoneOffset : OffsetOf(parts.clock.substr(zoneAt));
        if (!hour || !minute || !second || !zone || !rest.empty()) {
            Fail("");
        }
        return Checked(SecondsOf(1970, 1, 1, *hour, *minute, *second)) - *zone + zoneOffset;
    }

    int64_t Checked(const std::optional<int64_t>& seconds) const {
        if (!seconds) {
            Fail(": the calendar or the clock does not have it");
        }
        return *seconds;
    }

    const Parts parts;
    const int64_t now;         // local seconds
    const int64_t zoneOffset;  // of whoever is asked, seconds east of UTC
};

// Whether a word is the beginning of a time in another form than compact. Numbers are left to whoever takes
// them, negative ones too.
bool IsTimeWord(const std::string& text) {
    const std::string word = text.substr(0, text.find(' '));
    if (word == "now" || word == "today" || word == "yesterday") {
        return true;
    }
    const bool isLength = word.size() > 2 && word[0] == '-' && IsDigit(word[1]) && !IsDigit(word.back());
    return isLength || (!word.empty() && IsDigit(word[0]) && word.find_first_of("-/:") != std::string::npos);
}

// The time that begins at `index`, which is moved behind it.
Parts TakeParts(const std::vector<std::string>& words, size_t& index) {
    const std::string& word = words[index++];
    const size_t separator = !word.empty() && IsDigit(word[0]) ? word.find('T') : word.npos;
    if (separator != word.npos && separator + 1 < word.size()) {
        return {word.substr(0, separator), word.substr(separator + 1)};
    }
    const size_t blank = word.find(' ');
    if (blank != word.npos) {
        const size_t clock = std::min(word.find_first_not_of(' ', blank), word.size());
        return {word.substr(0, blank), word.substr(clock)};
    }
    const bool isFollowed = index < words.size() && words[index].find(':') < 3;
    return {word, isFollowed ? words[index++] : ""};
}

// The local seconds of the start and the end of the range that begins at `index`, which is moved behind it.
std::pair<int64_t, int64_t> TakeRange(const std::vector<std::string>& words, size_t& index,
                                      const LocalClock& clock) {
    const std::string& first = words[index];
    if (SecondsOfLength(first)) {
        ++index;
        return {Reader({'-' + first, ""}, clock).Read(), clock.time + clock.zoneOffset};
    }
    const int64_t start = Reader(TakeParts(words, index), clock).Read();
    if (index == words.size()) {
        throw TimeError("'" + Printable(first, 40) + "' begins a range without an end; such as: -30m now");
    }
    return {start, Reader(TakeParts(words, index), clock).Read()};
}
}  // namespace

LocalClock ClockAt(int64_t time) {
    return {time, ZoneOffsetAt(time)};
}

bool IsLength(const std::string& word) {
    constexpr size_t MOST_DIGITS = 9;
    const bool isNumber =
        !word.empty() && word.size() <= MOST_DIGITS && word.find_first_not_of(DIGITS) == word.npos;
    return isNumber || SecondsOfLength(word);
}

int64_t LengthOf(const std::string& word) {
    const int64_t seconds =
        IsLength(word) ? SecondsOfLength(word).value_or(SecondsOfLength(word + 'm').value_or(0)) : 0;
    if (seconds == 0) {
        throw TimeError("'" + Printable(word, 40) +
                        "' is no length of time, such as 60 or 60m (minutes), 90s, 4h or 1d");
    }
    return seconds;
}

std::string TurnRange(std::vector<std::string>& words, size_t first, const LocalClock& clock) {
    const auto isTurned = [&](size_t index) { return index < words.size() && IsTimeWord(words[index]); };
    const bool isLength = first < words.size() && SecondsOfLength(words[first]);
    if (!isLength && !isTurned(first) && !isTurned(first + 1)) {
        return {};
    }
    size_t index = first;
    const auto [start, end] = TakeRange(words, index, clock);
    const auto at = [&](size_t position) { return words.begin() + static_cast<std::ptrdiff_t>(position); };
    words.erase(at(first), at(index));
    words.insert(at(first), {CompactTime(start, 0), CompactTime(end, 0)});
    return LocalTime(start, 0) + " to " + LocalTime(end, 0) + ", zone " + ZoneText(clock.zoneOffset);
}

int64_t TimeOf(const std::string& text, const LocalClock& clock) {
    size_t index = 0;
    return Reader(TakeParts({text}, index), clock).Read() - clock.zoneOffset;
}

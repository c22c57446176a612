#include "explain/request.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <utility>

#include "cli/program.h"
#include "fault_common/fault_vocabulary.h"
#include "fault_spectrum_graph/fault_detect_object.h"
#include "text/local_time.h"

namespace explain {
namespace {

constexpr int64_t LONGEST_MINUTES = 2880;  // as the plug-in's commands take
constexpr int64_t MINUTE = 60;             // seconds

Range RangeBetween(int64_t start, int64_t end, int64_t zoneOffset) {
    return {CompactTime(start, zoneOffset), CompactTime(end, zoneOffset), start, end};
}

int64_t MinutesOf(const std::string& word) {
    int64_t minutes = 0;
    const char* const end = word.data() + word.size();
    const auto [rest, error] = std::from_chars(word.data(), end, minutes);
    if (error != std::errc() || rest != end || minutes < 1 || minutes > LONGEST_MINUTES) {
        throw cli::UsageError("'" + word + "' is no length of time in minutes, from 1 to " +
                              std::to_string(LONGEST_MINUTES));
    }
    return minutes;
}

// Of words as an operator writes them.
Range RangeOf(std::vector<std::string> words, const LocalClock& clock) {
    const std::string understood = TurnRange(words, 0, clock);
    if (words.size() > 2) {
        throw cli::UsageError("'" + words[2] + "' is too much after a START and an END; --help tells more");
    }
    if (!understood.empty()) {
        std::fprintf(stderr, "%s\n", understood.c_str());
    }
    if (words.size() == 1) {
        return RangeBetween(clock.time - MinutesOf(words.front()) * MINUTE, clock.time, clock.zoneOffset);
    }
    const int64_t start = TimeOf(words.front(), clock);
    const int64_t end = TimeOf(words.back(), clock);
    if (start >= end || end - start > LONGEST_MINUTES * MINUTE) {
        throw cli::UsageError("the end has to be after the start, at most two days");
    }
    return RangeBetween(start, end, clock.zoneOffset);
}

// The points that the detector flags; one whose rows it cannot take is there as well: its analysis says why.
std::vector<std::string> FlaggedPoints(const Range& range) {
    FaultDetectObject all;
    all.InitObject();
    std::vector<std::string> flagged;
    size_t most = 0;
    for (const std::string& point : all.points) {
        FaultDetectObject detector;
        detector.points = {point};
        try {
            detector.GetData(range.startDate, range.endDate);
        } catch (const std::logic_error&) {  // of a conversion
            flagged.push_back(point);
            continue;
        }
        most = std::max(most, detector.data[point]["avgdelay"].size());
        if (!detector.DoDetect(range.startDate, range.endDate).empty()) {
            flagged.push_back(point);
        }
    }
    if (flagged.empty() && most == 0) {
        throw NoData({ReasonKind::NO_ROWS_OF_DETECTOR});
    }
    if (flagged.empty() && most < FEWEST_FOR_SIGMA) {
        throw NoData({ReasonKind::FEW_ROWS_OF_DETECTOR, most, FEWEST_FOR_SIGMA});
    }
    return flagged;
}

}  // namespace

Request RequestOf(const Options& options, const LocalClock& clock) {
    Request request{RangeOf(options.times, clock), std::nullopt, clock.zoneOffset};
    if (options.at) {
        request.at = TimeOf(*options.at, clock);
        if (*request.at < request.range.startTime || *request.at > request.range.endTime) {
            throw cli::UsageError("the time of --at is not within the range");
        }
    }
    return request;
}

std::vector<Subject> SubjectsOf(const Options& options, const Range& range) {
    std::vector<Subject> subjects;
    for (const std::string& point :
         options.point ? std::vector<std::string>{*options.point} : FlaggedPoints(range)) {
        if (options.graph) {
            subjects.push_back({point, *options.graph});
            continue;
        }
        const auto [first, last] = g_mapPointSubPoints.equal_range(point);
        if (first == last) {
            throw cli::UsageError("no graph is known for " + point + ": name one with --graph");
        }
        std::transform(first, last, std::back_inserter(subjects), [](const auto& entry) {
            return Subject{entry.first, entry.second};
        });
    }
    return subjects;
}

}  // namespace explain

#include "explain/request.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "cli/program.h"
#include "explain/wording.h"
#include "fault_common/fault_vocabulary.h"
#include "fault_spectrum_graph/fault_detect_object.h"
#include "text/nearest_name.h"

namespace explain {
namespace {

constexpr int64_t DAY = 86400;        // seconds
constexpr int64_t LONGEST = 2 * DAY;  // as the plug-in's commands take
constexpr const char* HOST_POINTS = "hosts";

Window WindowBetween(int64_t start, int64_t end) {
    if (start >= end || end - start > LONGEST) {
        throw cli::UsageError("the end has to be after the start, at most two days");
    }
    return {start, end};
}

// Of words as an operator writes them.
Window RangeOf(std::vector<std::string> words, const LocalClock& clock) {
    const std::string understood = TurnRange(words, 0, clock);
    if (words.size() > 2) {
        throw cli::UsageError("'" + words[2] + "' is too much after a START and an END; --help tells more");
    }
    if (!understood.empty()) {
        std::fprintf(stderr, "%s\n", understood.c_str());
    }
    return words.size() == 1 ? WindowBetween(clock.time - LengthOf(words.front()), clock.time)
                             : WindowBetween(TimeOf(words.front(), clock), TimeOf(words.back(), clock));
}

// A START and an END of one word each.
Window PairOf(const std::vector<std::string>& words, const LocalClock& clock) {
    return WindowBetween(TimeOf(words.front(), clock), TimeOf(words.back(), clock));
}

// The stretch of the same length as the range, some time ago: a START and an END, "yesterday", or how long
// ago.
Window BaselineOf(const std::vector<std::string>& words, const Window& range, const LocalClock& clock) {
    if (words.size() > 1) {
        return PairOf(words, clock);
    }
    const int64_t ago = words.front() == "yesterday" ? DAY : clock.time - TimeOf(words.front(), clock);
    if (ago <= 0) {
        throw cli::UsageError("'" + words.front() + "' is not in the past; --help tells more of --baseline");
    }
    return {range.start - ago, range.end - ago};
}

void CheckWithin(const Window& range, const Window& window, const char* option) {
    if (!range.Holds(window.start) || !range.Holds(window.end)) {
        throw cli::UsageError(std::string("the time of ") + option + " is not within the range");
    }
}

// The points at which hosts enter: those that the detector looks at.
std::vector<std::string> HostPoints() {
    FaultDetectObject detector;
    detector.InitObject();
    return {detector.points.begin(), detector.points.end()};
}

void Add(const PointRequest& point, std::vector<PointRequest>& points) {
    const auto known = std::find_if(points.begin(), points.end(),
                                    [&](const PointRequest& one) { return one.name == point.name; });
    if (known == points.end()) {
        points.push_back(point);
    } else {
        known->when = std::min(known->when, point.when);
    }
}

// In the order of their first mention.
std::vector<PointRequest> PointsOf(const std::vector<std::string>& named, const Question& question) {
    std::vector<PointRequest> points;
    const auto addHosts = [&](PointRequest::When when) {
        for (const std::string& point : HostPoints()) {
            Add({point, when}, points);
        }
    };
    for (const std::string& name : named) {
        name == HOST_POINTS ? addHosts(PointRequest::IF_THERE) : Add({name, PointRequest::ALWAYS}, points);
    }
    if (named.empty()) {
        addHosts(question.at || question.during ? PointRequest::IF_THERE : PointRequest::IF_SLOW);
    }
    return points;
}

Question QuestionOf(const Options& options, const LocalClock& clock) {
    Question question;
    if (!options.during.empty()) {
        question.during = PairOf(options.during, clock);
    }
    question.range = options.times.empty() ? question.during.value() : RangeOf(options.times, clock);
    if (question.during) {
        CheckWithin(question.range, *question.during, "--during");
    }
    if (options.at) {
        question.at = TimeOf(*options.at, clock);
        CheckWithin(question.range, {*question.at, *question.at}, "--at");
    }
    if (!options.baseline.empty()) {
        question.baseline = BaselineOf(options.baseline, question.range, clock);
    }
    return question;
}

}  // namespace

std::vector<std::string> Request::GraphsOf(const std::string& point) const {
    if (graph) {
        return {*graph};
    }
    const auto [first, last] = g_mapPointSubPoints.equal_range(point);
    if (first == last) {
        std::vector<std::string> known;
        std::transform(g_mapPointSubPoints.begin(), g_mapPointSubPoints.end(), std::back_inserter(known),
                       [](const auto& entry) { return entry.first; });
        throw cli::UsageError("no graph is known for " + point + ": name one with --graph" +
                              DidYouMean(point, known));
    }
    std::vector<std::string> graphs;
    std::transform(first, last, std::back_inserter(graphs), [](const auto& entry) { return entry.second; });
    return graphs;
}

Request RequestOf(const Options& options, const LocalClock& clock) {
    Request request;
    request.question = QuestionOf(options, clock);
    request.points = PointsOf(options.points, request.question);
    request.graph = options.graph;
    request.wantsErrors = std::all_of(options.points.begin(), options.points.end(),
                                      [](const std::string& point) { return point == HOST_POINTS; });
    request.isWatched = options.watch;
    // Neither a watch nor the overview in a terminal tells of it.
    request.isCrossChecked =
        !request.isWatched && (!options.overview || options.json || options.html.has_value());
    request.zoneOffset = clock.zoneOffset;
    for (const PointRequest& point : request.points) {
        request.GraphsOf(point.name);  // so that a misspelt one is told before anything is loaded
    }
    return request;
}

}  // namespace explain

#include "explain/errors/error_analysis.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "explain/errors/error_division.h"
#include "explain/errors/intervals.h"
#include "explain/finding/coverage.h"
#include "fault_common/fault_vocabulary.h"

namespace explain {
namespace {

constexpr size_t MOST_INCIDENTS = 8;  // of a type, as of the events of a point
constexpr size_t GAP = 1;             // intervals at the end of which errors were spared
constexpr size_t REACH = 2;           // intervals that a time which is named may be off

// Makes of the errors of all points what the report tells of them.
class ErrorSurvey {
public:
    ErrorSurvey(const Question& asked, SampleStore& store, ErrorStore& kept)
        : question(asked),
          graph(ReadErrorGraph()),
          errors(kept.Of(store, graph.CountedPoints())),
          intervals(TimesOf(store), std::max<int64_t>(1, CoverageOf(store.Points(), asked.range).step)),
          first(intervals.CountBefore(asked.range.start)),
          end(intervals.CountBefore(asked.range.end + 1)) {}

    Errors Done() {
        Find();
        Errors all;
        all.areLookedAt = !graph.nodes.empty();
        for (size_t column = 0; column < ERROR_COLUMNS; ++column) {
            if (ErrorLook look = LookAt(column); look.count > 0) {
                all.looks.push_back(std::move(look));
            }
            AddAnalyses(column, all.analyses);
        }
        std::stable_sort(all.analyses.begin(), all.analyses.end(), IsMoreUrgent);
        return all;
    }

private:
    static bool IsMoreUrgent(const ErrorAnalysis& a, const ErrorAnalysis& b) {
        return a.event.isOngoing != b.event.isOngoing ? a.event.isOngoing : a.event.start > b.event.start;
    }

    std::vector<int64_t> TimesOf(const SampleStore& store) const {
        std::vector<int64_t> times;
        for (const auto& [name, data] : store.Points()) {
            for (const Sample& sample : data.samples) {
                times.push_back(sample.time);
            }
        }
        for (const auto& [name, columns] : errors) {
            for (const ErrorCounts& counts : columns) {
                std::transform(counts.begin(), counts.end(), std::back_inserter(times),
                               [](const ErrorCount& one) { return one.time; });
            }
        }
        return times;
    }

    IntervalCounts CountsOf(const ErrorCounts& counts) const {
        IntervalCounts byInterval;
        for (const ErrorCount& one : counts) {
            const size_t number = intervals.NumberOf(one.time);
            if (byInterval.empty() || byInterval.back().interval != number) {
                byInterval.push_back({number, 0});
            }
            byInterval.back().count += one.count;
        }
        return byInterval;
    }

    CountFrame Frame() const {
        CountFrame frame;
        frame.intervals = intervals.Count();
        for (size_t i = 0; i < frame.intervals; ++i) {
            frame.telling.push_back(!question.baseline || question.baseline->Holds(intervals.TimeOf(i)));
        }
        const auto count = static_cast<double>(frame.intervals);
        const auto series = static_cast<double>(graph.CountedPoints().size() * ERROR_COLUMNS);
        frame.looks = std::max(1.0, series * count * std::log2(count + 1.0));  // runs of growing length
        return frame;
    }

    void Find() {
        const CountFrame frame = Frame();
        for (const auto& [name, columns] : errors) {
            for (size_t column = 0; column < ERROR_COLUMNS; ++column) {
                ErrorSeries& series = findings[name][column];
                series.counts = CountsOf(columns[column]);
                for (const CountEvent& event : FindCountEvents(series.counts, frame)) {
                    if (event.last >= first && event.first < end && IsAsked(event)) {
                        series.events.push_back(event);
                    }
                }
            }
        }
    }

    bool IsAsked(const CountRun& run) const {
        const auto reaches = [&](const Window& window) {
            const size_t from = intervals.CountBefore(window.start);
            const size_t until = intervals.CountBefore(window.end + 1);
            return run.last + REACH >= from && run.first < until + REACH;
        };
        return (!question.at || reaches({*question.at, *question.at})) &&
               (!question.during || reaches(*question.during));
    }

    // At the end of the range, or no farther from it than errors of the run are from each other.
    bool IsOngoing(const IntervalCounts& counts, const CountRun& run) const {
        size_t gap = GAP;
        for (size_t i = 1; i < counts.size(); ++i) {
            if (counts[i - 1].interval >= run.first && counts[i].interval <= run.last) {
                gap = std::max(gap, counts[i].interval - counts[i - 1].interval - 1);
            }
        }
        return end > 0 && end - 1 - std::min(run.last, end - 1) <= gap;
    }

    ErrorEvent EventOf(const IntervalCounts& counts, const CountEvent& run) const {
        ErrorEvent event;
        event.first = run.first;
        event.last = run.last;
        event.start = intervals.TimeOf(run.first);
        event.end = intervals.TimeOf(run.last);
        event.count = run.count;
        event.expected = run.rate * static_cast<double>(run.Length());
        event.isOngoing = IsOngoing(counts, run);
        for (const IntervalCount& one : counts) {
            if (one.interval >= run.first && one.interval <= run.last && one.count > event.peakCount) {
                event.peakCount = one.count;
                event.peakTime = intervals.TimeOf(one.interval);
            }
        }
        return event;
    }

    ErrorLook LookAt(size_t column) const {
        ErrorLook look;
        look.type = TypeOf(column);
        std::map<int64_t, int64_t> counts;
        for (const auto& [name, columns] : findings) {
            ErrorPoint point;
            point.point = name;
            for (const IntervalCount& one : columns[column].counts) {
                if (one.interval >= first && one.interval < end) {
                    counts[intervals.TimeOf(one.interval)] += one.count;
                    point.count += one.count;
                }
            }
            for (const CountEvent& event : columns[column].events) {
                point.events.push_back(EventOf(columns[column].counts, event));
            }
            look.count += point.count;
            if (point.count > 0) {
                look.points.push_back(std::move(point));
            }
        }
        for (const auto& [time, count] : counts) {
            look.counts.push_back({time, count});
        }
        std::stable_sort(look.points.begin(), look.points.end(),
                         [](const ErrorPoint& a, const ErrorPoint& b) { return a.count > b.count; });
        return look;
    }

    ErrorShare ShareOf(const IncidentPoint& point, size_t column) const {
        const ErrorNode& node = graph.nodes[point.node];
        ErrorShare share;
        share.point = node.point;
        share.graph = node.graph;
        share.advice = node.advice;
        share.share = point.share;
        share.count = point.count;
        share.extra = point.extra;
        share.since = intervals.TimeOf(point.first);
        share.below = point.below;
        const IntervalCounts& counts = findings.at(node.counted)[point.column].counts;
        for (const IntervalCount& one : counts) {
            if (one.interval >= first && one.interval < end) {
                share.counts.push_back({intervals.TimeOf(one.interval), one.count});
            }
        }
        share.isOngoing = IsOngoing(counts, {point.first, point.last, point.count});
        if (point.column != column) {
            share.type = TypeOf(point.column);
        }
        return share;
    }

    // Of all points together; the counts are those of the first entry.
    ErrorEvent WholeEvent(const Incident& incident) const {
        const IncidentPoint& entry = incident.points[incident.entries.front()];
        const IntervalCounts& counts = findings.at(graph.nodes[entry.node].counted)[entry.column].counts;
        CountEvent run;
        run.first = entry.first;
        run.last = entry.last;
        ErrorEvent event = EventOf(counts, run);
        event.count = entry.count;
        event.expected = static_cast<double>(entry.count) - entry.extra;
        for (const IncidentPoint& point : incident.points) {
            event.first = std::min(event.first, point.first);
            event.last = std::max(event.last, point.last);
        }
        event.start = intervals.TimeOf(event.first);
        event.end = intervals.TimeOf(event.last);
        return event;
    }

    void AddAnalyses(size_t column, std::vector<ErrorAnalysis>& analyses) const {
        std::vector<ErrorAnalysis> found;
        for (const Incident& incident : DivideErrors(graph, findings, column)) {
            ErrorAnalysis& analysis = found.emplace_back();
            analysis.type = TypeOf(column);
            analysis.entries = incident.entries;
            analysis.event = WholeEvent(incident);
            for (const IncidentPoint& point : incident.points) {
                analysis.points.push_back(ShareOf(point, column));
                analysis.event.isOngoing = analysis.event.isOngoing || analysis.points.back().isOngoing;
            }
            analysis.certainty = CertaintyOfShares(
                analysis.points.front().share, analysis.points.size() > 1 ? analysis.points[1].share : 0.0);
        }
        std::stable_sort(found.begin(), found.end(), IsMoreUrgent);
        found.resize(std::min(found.size(), MOST_INCIDENTS));
        analyses.insert(analyses.end(), found.begin(), found.end());
    }

    const Question& question;
    const ErrorGraph graph;
    const std::map<std::string, PointErrors>& errors;  // by the name under which they are counted
    const Intervals intervals;
    const size_t first;  // of the range's intervals
    const size_t end;    // behind the last one
    ErrorFindings findings;
};

}  // namespace

ErrorType TypeOf(size_t column) {
    ErrorType type;
    type.index = -1 - static_cast<int32_t>(column);
    type.column = "errCode" + std::to_string(column);
    for (const auto& [name, index] : g_mapTypeIdx) {
        type.name = index == type.index ? name : type.name;
    }
    return type;
}

Errors SurveyErrors(const Question& question, SampleStore& store, ErrorStore& errors) {
    return ErrorSurvey(question, store, errors).Done();
}

}  // namespace explain

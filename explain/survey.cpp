#include "explain/survey.h"

#include <json/value.h>

#include <algorithm>
#include <map>
#include <memory>
#include <stdexcept>

#include "explain/analysis/gaps.h"
#include "explain/analysis/order.h"
#include "explain/analysis/own_delay.h"
#include "explain/errors/error_analysis.h"
#include "explain/finding/healing.h"
#include "explain/finding/table_zone.h"
#include "fault_common/fault_vocabulary.h"
#include "fault_spectrum_graph/fault_detect_object.h"
#include "fault_spectrum_graph/fault_json_object.h"

namespace explain {
namespace {

constexpr int64_t HOUR = 3600;

// How far back before a range what is usual is looked for.
constexpr int64_t LOOK_BACK_RANGES = 2;
constexpr int64_t LEAST_LOOK_BACK = 4 * HOUR;
constexpr int64_t MOST_LOOK_BACK = 24 * HOUR;

// Why there are no rows in the range.
Reason WhyNoRows(const Request& request) {
    const std::vector<TableSpan> tables = TableSpans();
    if (tables.empty()) {
        return {ReasonKind::NO_ROWS_AT_ALL};
    }
    Reason reason{ReasonKind::OUTSIDE_STATISTICS};
    reason.zoneOffset = request.zoneOffset;
    reason.from = tables.front().rows.start;
    reason.until = tables.front().rows.end;
    for (const TableSpan& table : tables) {
        reason.from = std::min(reason.from, table.rows.start);
        reason.until = std::max(reason.until, table.rows.end);
    }
    const Window& range = request.question.range;
    if (range.end >= reason.from && range.start <= reason.until) {
        reason.kind = ReasonKind::NO_ROWS_OF_DETECTOR;
    }
    return reason;
}

// In which of two zones the tables of the range are named. That further in the east finds those of both.
int64_t ZoneIn(const Window& range, const std::vector<TableSpan>& tables, const ZoneChange& change) {
    return range.end <= tables[change.first - 1].rows.end   ? change.before
           : range.start >= tables[change.first].rows.start ? change.after
                                                            : std::max(change.before, change.after);
}

// The zone in which the tables are named, where their rows contradict the request's and agree with another,
// or with two.
std::optional<Reason> WhyZone(const Request& request) {
    const std::vector<TableSpan> tables = TableSpans();
    Reason reason{ReasonKind::ANOTHER_ZONE};
    if (const std::optional<int64_t> zone = ZoneOfTables(tables, request.zoneOffset)) {
        reason.zoneOffset = *zone;
    } else if (const std::optional<ZoneChange> change = ZoneChangeOf(tables)) {
        reason.zoneOffset = ZoneIn(request.question.range, tables, *change);
        reason.otherZone = change->before + change->after - reason.zoneOffset;
    } else {
        return std::nullopt;
    }
    return reason.zoneOffset == request.zoneOffset ? std::nullopt : std::optional(reason);
}

// Answers one report's questions, point by point.
class Surveyor {
public:
    Surveyor(const Request& toAnswer, Stores& stores, Report& toFill)
        : request(toAnswer),
          question(toAnswer.question),
          store(stores.samples),
          errorStore(stores.errors),
          report(toFill) {}

    void Look() {
        for (const PointRequest& point : request.points) {
            try {
                report.looks.push_back(
                    LookAt(point.name, store.Of(point.name).samples, question.range, question.baseline));
            } catch (const std::logic_error&) {  // of a conversion: the other points keep their answers
                unreadable.emplace(point.name, ReasonOfFailure());
                report.looks.emplace_back().point = point.name;
            }
        }
        report.coverage = Covered();
        if (unreadable.empty()) {
            CheckRows();
        }
    }

    // What keeps errors from being told leaves the delays their answers.
    void LookAtErrors() {
        try {
            Errors errors = SurveyErrors(question, store, errorStore);
            report.areErrorsLookedAt = errors.areLookedAt;
            report.errorLooks = std::move(errors.looks);
            report.errors = std::move(errors.analyses);
        } catch (...) {
            report.errorsReason = ReasonOfFailure();
        }
    }

    void LookAtHealings() {
        const Window& range = question.range;
        try {
            report.healings = HealingsIn({range.start - HEALING_LOOK_BACK, range.end});
        } catch (...) {
            report.healingsReason = ReasonOfFailure();
        }
    }

    void Analyse() {
        for (size_t i = 0; i < report.looks.size(); ++i) {
            const explain::Look& look = report.looks[i];
            if (IsAsked(request.points[i].when, look)) {
                for (const std::string& graph : request.GraphsOf(look.point)) {
                    ++subjects;
                    AnalyseGuarded(look, graph);
                }
            }
        }
        if (failures > 0 && failures == subjects && report.errors.empty() && !IsAnyQuiet()) {
            throw NoData(*report.analyses.back().reason);
        }
        SortAnswers(report.analyses);
        report.coverage = Covered();
        const bool isAnswered = std::any_of(report.analyses.begin(), report.analyses.end(),
                                            [](const Analysis& analysis) { return analysis.HasAnswer(); });
        if (report.coverage.IsPart() && !isAnswered) {
            CheckZone();
        }
        report.flags = CountFlags(store.Points(), question.range);
        if (request.isWatched && !unreadable.empty()) {
            throw NoData(unreadable.begin()->second);  // the report has what can be told
        }
    }

private:
    // Points with a bad value were looked at as well, and have no rows.
    Coverage Covered() const {
        Coverage coverage = CoverageOf(store.Points(), question.range);
        coverage.points += unreadable.size();
        return coverage;
    }

    // Throws NoData when an answer would look like an all clear although nothing was looked at.
    void CheckRows() const {
        if (report.coverage.intervals == 0) {
            CheckNames();
            CheckZone();
            throw NoData(WhyNoRows(request));
        }
        size_t most = 0;
        for (const explain::Look& look : report.looks) {
            most = std::max(most, store.Points().at(look.point).samples.size());
        }
        const bool isNamed =
            std::any_of(request.points.begin(), request.points.end(),
                        [](const PointRequest& point) { return point.when != PointRequest::IF_SLOW; });
        if (most < FEWEST_FOR_EVENTS && !isNamed) {
            throw NoData({ReasonKind::FEW_ROWS_OF_DETECTOR, most, FEWEST_FOR_EVENTS});
        }
    }

    void CheckZone() const {
        if (const std::optional<Reason> zone = WhyZone(request)) {
            throw NoData(*zone);
        }
    }

    // That the points which were named stand in their graphs.
    void CheckNames() const {
        for (const PointRequest& point : request.points) {
            for (const std::string& graph : request.GraphsOf(point.name)) {
                if (point.when == PointRequest::ALWAYS) {
                    ReadGraphWorld(point.name, {graph});
                }
            }
        }
    }

    bool IsAsked(PointRequest::When when, const explain::Look& look) const {
        return unreadable.count(look.point) > 0 || when == PointRequest::ALWAYS ||
               (when == PointRequest::IF_THERE && look.samples > 0) || !look.flagged.empty() ||
               !look.events.empty();
    }

    // Whether the report is worth something although nothing could be explained: that a point was not slow.
    bool IsAnyQuiet() const {
        for (size_t i = 0; i < report.looks.size(); ++i) {
            const explain::Look& look = report.looks[i];
            if (!IsAsked(request.points[i].when, look) && !look.finding.deviations.empty()) {
                return true;
            }
        }
        return false;
    }

    void AnalyseGuarded(const explain::Look& look, const std::string& graph) {
        try {
            AnalyseEvents(look, graph);
        } catch (...) {
            ++failures;
            AddWithout(look, graph, Verdict::CANNOT_TELL, ReasonOfFailure(graph));
        }
    }

    void AnalyseEvents(const explain::Look& look, const std::string& graph) {
        if (const auto found = unreadable.find(look.point); found != unreadable.end()) {
            throw NoData(found->second);
        }
        const auto world = std::make_shared<GraphWorld>(Load(look.point, graph));
        FillGaps(store.Points(), *world);
        FillOwnDelays(*world);
        const Samples& samples = world->points.at(look.point).samples;
        if (look.samples == 0) {
            throw NoData({ReasonKind::NO_ROWS_OF_POINT, 0, 0, look.point});
        }
        const std::vector<Event> events = EventsToExplain(question, look, samples);
        for (const Event& event : events) {
            report.analyses.push_back(Explain(question, look, graph, world, event));
            if (request.isCrossChecked && report.analyses.back().HasAnswer()) {
                CrossCheck(question, look, report.analyses.back());
            }
        }
        if (!events.empty()) {
            return;
        }
        if (look.finding.deviations.empty()) {
            AddWithout(look, graph, Verdict::CANNOT_TELL, WhyTooFew(samples));
        } else {
            AddWithout(look, graph, question.during ? Verdict::CANNOT_TELL : Verdict::NOTHING,
                       {question.during ? ReasonKind::NO_ROWS_IN_EVENT : ReasonKind::NO_HIGH_SAMPLE});
        }
        report.analyses.back().world = world;
    }

    // What comes to the point in its other graphs is not its own: they are part of it, as far as they can be
    // read.
    GraphWorld Load(const std::string& point, const std::string& graph) {
        std::vector<std::string> readable{graph};
        std::vector<Reason> unread;
        const auto [first, last] = g_mapPointSubPoints.equal_range(point);
        for (auto other = first; other != last; ++other) {
            if (other->second == graph || !FaultJsonObject::GetInstance().IsMember(other->second)) {
                continue;
            }
            try {
                LoadGraphWorld(point, {other->second}, store);
                readable.push_back(other->second);
            } catch (...) {
                unread.push_back(ReasonOfFailure(other->second));
            }
        }
        GraphWorld world = LoadGraphWorld(point, readable, store);
        world.unread = std::move(unread);
        return world;
    }

    // Why nothing tells what is usual.
    Reason WhyTooFew(const Samples& samples) const {
        if (!question.baseline) {
            return {ReasonKind::FEW_FOR_SIGMA, samples.size(), FEWEST_FOR_EVENTS};
        }
        const auto [first, end] = PositionsIn(samples, *question.baseline);
        return {ReasonKind::FEW_IN_BASELINE, end - first, FEWEST_FOR_EVENTS};
    }

    void AddWithout(const explain::Look& look, const std::string& graph, Verdict verdict,
                    const Reason& reason) {
        Analysis& analysis = report.analyses.emplace_back();
        analysis.point = look.point;
        analysis.graph = graph;
        analysis.verdict = verdict;
        analysis.reason = reason;
        analysis.events = look.events;
    }

    const Request& request;
    const Question& question;
    SampleStore& store;
    ErrorStore& errorStore;
    Report& report;
    std::map<std::string, Reason> unreadable;  // points with a bad value
    size_t subjects = 0;
    size_t failures = 0;
};

}  // namespace

std::vector<Window> StretchesOf(const Question& question) {
    const Window& range = question.range;
    if (question.baseline) {
        std::vector<Window> stretches{range, *question.baseline};
        if (range.end >= question.baseline->start && question.baseline->end >= range.start) {
            stretches = {{std::min(range.start, question.baseline->start),
                          std::max(range.end, question.baseline->end)}};
        } else if (question.baseline->start < range.start) {
            std::swap(stretches.front(), stretches.back());
        }
        return stretches;
    }
    const int64_t back =
        std::clamp(LOOK_BACK_RANGES * (range.end - range.start), LEAST_LOOK_BACK, MOST_LOOK_BACK);
    return {{range.start - back, range.end}};
}

Reason ReasonOfFailure(const std::string& graph) {
    const std::string where = graph.empty() ? "" : graph + ": ";
    try {
        throw;
    } catch (const NoData& error) {
        return error.Why();
    } catch (const Json::Exception& error) {
        return {ReasonKind::BAD_CONFIGURATION, 0, 0, where + error.what()};
    } catch (const std::logic_error& error) {  // of a conversion
        return {ReasonKind::BAD_VALUE, 0, 0, where + error.what()};
    }
}

void Survey(const Request& request, Stores& stores, Report& report) {
    report.arePointsNamed = !request.wantsErrors;
    Surveyor surveyor(request, stores, report);
    surveyor.Look();
    if (request.wantsErrors) {
        surveyor.LookAtErrors();
    }
    surveyor.LookAtHealings();
    surveyor.Analyse();
}

}  // namespace explain

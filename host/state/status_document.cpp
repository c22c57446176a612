#include "host/state/document.h"
#include "host/state/host_status.h"
#include "text/local_time.h"

namespace zorv {
namespace {
Json::Value ValueOf(const FileStatus& file) {
    Json::Value value;
    value["path"] = TextValue(file.path);
    value["bytes"] = file.bytes ? NumberValue(static_cast<uint64_t>(*file.bytes)) : Json::Value();
    value["changed"] = file.changed ? TimeValue(*file.changed) : Json::Value();
    value["problem"] = TextOrNull(file.problem);
    return value;
}

Json::Value ValueOf(const Coverage& coverage) {
    Json::Value value;
    value["intervals"] = NumberValue(coverage.intervals);
    value["expected"] = coverage.expected == 0 ? Json::Value() : NumberValue(coverage.expected);
    value["step_seconds"] = coverage.step == 0 ? Json::Value() : Json::Value(Json::Int64{coverage.step});
    value["has_gaps"] = coverage.isPart;
    return value;
}

Json::Value ValueOf(const StatisticsStatus& statistics, int64_t now) {
    Json::Value value;
    value["file"] = ValueOf(statistics.file);
    value["earliest"] = TextOrNull(statistics.earliest);
    value["rows"] = value["newest_age_seconds"] = value["last_hour"] = Json::Value();
    if (statistics.rows) {
        value["rows"]["start"] = TimeValue(statistics.rows->start);
        value["rows"]["end"] = TimeValue(statistics.rows->end);
        value["newest_age_seconds"] = Json::Int64{now - statistics.rows->end};
        value["last_hour"] = ValueOf(statistics.lastHour);
    }
    value["problem"] =
        TextOrNull(statistics.rowsProblem.empty() ? statistics.earliestProblem : statistics.rowsProblem);
    return value;
}

Json::Value ValueOf(const RouteFile& file) {
    Json::Value graphs(Json::arrayValue);
    for (const RouteGraph& one : file.graphs) {
        Json::Value graph;
        graph["name"] = TextValue(one.name);
        graph["nodes"] = NumberValue(one.nodes);
        graph["edges"] = NumberValue(one.edges);
        graphs.append(graph);
    }
    return graphs;
}

Json::Value ValueOf(const AlarmCounts& counts) {
    Json::Value value;
    value["sent"] = NumberValue(counts.sent);
    value["suppressed"] = NumberValue(counts.suppressed);
    value["lost"] = NumberValue(counts.lost);
    return value;
}

Json::Value ValueOf(const std::vector<StartupResult>& rows) {
    Json::Value list(Json::arrayValue);
    for (const StartupResult& row : rows) {
        Json::Value value;
        value["name"] = TextValue(row.name);
        value["result"] = row.result;
        list.append(value);
    }
    return list;
}
}  // namespace

Json::Value ValueOf(const HostStatus& status) {
    const std::string& problem =
        status.configurationProblem.empty() ? status.graphs.problem : status.configurationProblem;
    Json::Value value;
    value["is_sound"] = status.IsSound();
    value["master"] = status.master;
    value["zone"] = ZoneText(ZoneOffsetAt(status.now));
    value["statistics"] = ValueOf(status.statistics, status.now);
    value["heal_events"] = ValueOf(status.healEvents);
    value["configuration"]["file"] = ValueOf(status.configuration);
    value["configuration"]["graphs"] = ValueOf(status.graphs);
    value["configuration"]["problem"] = TextOrNull(problem);
    value["switch"] = ValueOf(status.faultSwitch);
    value["alarms"] = ValueOf(status.alarms);
    value["startup"] = ValueOf(status.startup);
    return value;
}
}  // namespace zorv

#include <json/writer.h>

#include <algorithm>
#include <cmath>

#include "fleet/reports/report.h"
#include "fleet/reports/wording.h"
#include "text/local_time.h"
#include "text/utf8.h"

namespace fleet {
namespace {

constexpr int VERSION = 1;
constexpr unsigned SIGNIFICANT_DIGITS = 9;

Json::Value Text(const std::string& text) {
    return ValidUtf8(text);
}

Json::Value Number(double value) {
    return std::isfinite(value) ? Json::Value(value) : Json::Value();
}

Json::Value Time(int64_t time, int64_t zoneOffset) {
    Json::Value value;
    std::string local = LocalTime(time, zoneOffset) + ZoneText(zoneOffset);
    std::replace(local.begin(), local.end(), ' ', 'T');
    value["epoch"] = static_cast<Json::Int64>(time);
    value["local"] = local;
    return value;
}

Json::Value PeersValue(const Standing& standing) {
    Json::Value value;
    if (standing.peers) {
        value["median_us"] = Number(standing.peers->median);
        value["deviations"] = Number(standing.peers->deviations);
        value["nodes"] = static_cast<Json::UInt64>(standing.peers->count);
    }
    return value;
}

Json::Value CandidateValue(const Candidate& candidate, const Role& role, const Outcome& outcome) {
    Json::Value value;
    value["point"] = Text(candidate.point);
    value["graph"] = Text(candidate.graph);
    value["share"] = Number(candidate.share);
    value["delay_us"] = candidate.delay ? Number(candidate.delay->now) : Json::Value();
    value["usual_delay_us"] = candidate.delay ? Number(candidate.delay->usual) : Json::Value();
    value["peers"] = PeersValue(StandingOf(outcome, role.node, candidate.point, role.window));
    return value;
}

Json::Value NodeValue(const Outcome& outcome, size_t node) {
    Json::Value value;
    value["node"] = Text(outcome.nodes[node].name);
    value["verdict"] = VerdictOf(outcome, node);
    value["since"] = value["ongoing"] = Json::Value();
    value["candidates"] = Json::Value(Json::arrayValue);
    if (const Role* const role = MainRoleOf(outcome, node)) {
        value["since"] = Time(role->window.start, outcome.nodes[node].zoneOffset);
        value["ongoing"] = role->isOngoing;
        for (const Candidate& candidate : role->candidates) {
            value["candidates"].append(CandidateValue(candidate, *role, outcome));
        }
    }
    return value;
}

Json::Value RoleValue(const Role& role, const Outcome& outcome) {
    Json::Value value;
    value["node"] = Text(outcome.nodes[role.node].name);
    value["point"] = Text(role.at.point);
    if (role.IsCause()) {
        value["share"] = Number(role.at.share);
    }
    return value;
}

Json::Value IncidentValue(const Incident& incident, const Outcome& outcome) {
    const Role& first = incident.causes.empty() ? incident.symptoms.front() : incident.causes.front();
    const int64_t zone = outcome.nodes[first.node].zoneOffset;
    Json::Value value;
    value["since"] = Time(incident.window.start, zone);
    value["until"] = Time(incident.window.end, zone);
    value["ongoing"] = incident.isOngoing;
    value["causes"] = value["symptoms"] = Json::Value(Json::arrayValue);
    for (const Role& role : incident.causes) {
        value["causes"].append(RoleValue(role, outcome));
    }
    for (const Role& role : incident.symptoms) {
        value["symptoms"].append(RoleValue(role, outcome));
        value["symptoms"][value["symptoms"].size() - 1].removeMember("share");
    }
    return value;
}

}  // namespace

std::string JsonReport(const Outcome& outcome) {
    Json::Value document;
    document["version"] = VERSION;
    document["nodes"] = document["incidents"] = Json::Value(Json::arrayValue);
    for (size_t node = 0; node < outcome.nodes.size(); ++node) {
        document["nodes"].append(NodeValue(outcome, node));
    }
    for (const Incident& incident : outcome.fold.incidents) {
        document["incidents"].append(IncidentValue(incident, outcome));
    }
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["precision"] = SIGNIFICANT_DIGITS;
    return Json::writeString(builder, document) + "\n";
}

}  // namespace fleet

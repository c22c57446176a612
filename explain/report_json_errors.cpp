#include "explain/report_json_values.h"
#include "explain/wording.h"

namespace explain {
namespace {

Json::Value TypeValue(const ErrorType& type) {
    Json::Value value;
    value["name"] = JsonTextOrNull(type.name);
    value["index"] = type.index;
    value["column"] = type.column;
    return value;
}

Json::Value EventValue(const ErrorEvent& event, int64_t zoneOffset) {
    Json::Value value = JsonWindow(event, zoneOffset);
    value["intervals"] = JsonCount(event.last - event.first + 1);
    value["count"] = JsonWhole(event.count);
    value["expected"] = JsonNumber(event.expected);
    value["peak"] = JsonTime(event.peakTime, zoneOffset);
    value["peak_count"] = JsonWhole(event.peakCount);
    value["ongoing"] = event.isOngoing;
    return value;
}

Json::Value LookValue(const ErrorLook& look, int64_t zoneOffset) {
    Json::Value value;
    value["type"] = TypeValue(look.type);
    value["count"] = JsonWhole(look.count);
    value["points"] = JsonList(look.points, [=](const ErrorPoint& one) {
        Json::Value point;
        point["point"] = JsonText(one.point);
        point["count"] = JsonWhole(one.count);
        point["events"] =
            JsonList(one.events, [=](const ErrorEvent& event) { return EventValue(event, zoneOffset); });
        return point;
    });
    return value;
}

Json::Value ShareValue(const ErrorShare& share, int64_t zoneOffset) {
    Json::Value value;
    value["point"] = JsonText(share.point);
    value["graph"] = JsonText(share.graph);
    value["advice"] = JsonText(share.advice);
    value["share"] = JsonNumber(share.share);
    value["count"] = JsonWhole(share.count);
    value["extra"] = JsonNumber(share.extra);
    value["since"] = JsonTime(share.since, zoneOffset);
    value["ongoing"] = share.isOngoing;
    value["counted_as"] = share.type ? TypeValue(*share.type) : Json::Value();
    value["below"] = JsonList(share.below, JsonCount);
    return value;
}

Json::Value AnalysisValue(const ErrorAnalysis& analysis, int64_t zoneOffset) {
    Json::Value value;
    value["type"] = TypeValue(analysis.type);
    value["entries"] = JsonList(analysis.entries, JsonCount);
    value["event"] = EventValue(analysis.event, zoneOffset);
    value["certainty"] = WordOf(analysis.certainty);
    value["points"] =
        JsonList(analysis.points, [=](const ErrorShare& share) { return ShareValue(share, zoneOffset); });
    return value;
}

}  // namespace

Json::Value ErrorsValue(const Report& report) {
    const int64_t zone = report.zoneOffset;
    Json::Value value;
    value["reason"] = report.errorsReason ? JsonText(SentenceOf(*report.errorsReason)) : Json::Value();
    value["types"] = JsonList(report.errorLooks, [=](const ErrorLook& one) { return LookValue(one, zone); });
    value["analyses"] =
        JsonList(report.errors, [=](const ErrorAnalysis& one) { return AnalysisValue(one, zone); });
    return value;
}

Json::Value HealingsValue(const Report& report) {
    if (report.healingsReason) {
        return {};
    }
    return JsonList(report.healings, [&](const Healing& healing) {
        Json::Value value;
        value["time"] = JsonTime(healing.time, report.zoneOffset);
        value["kind"] = JsonText(healing.kind);
        value["module"] = JsonText(healing.module);
        value["cause"] = JsonText(healing.cause);
        value["node"] = JsonWhole(healing.node);
        value["here"] = healing.isHere;
        return value;
    });
}

}  // namespace explain

#include "explain/change.h"
#include "explain/report_json_values.h"
#include "explain/wording.h"

namespace explain {
namespace {

Json::Value CauseValue(const Cause& cause) {
    Json::Value value;
    value["point"] = JsonTextOrNull(cause.point);
    value["share"] = cause.share;
    value["certainty"] = WordOf(cause.certainty);
    return value;
}

}  // namespace

std::string JsonChange(const Change& change, int64_t now, int64_t zoneOffset) {
    Json::Value value;
    value["version"] = 1;
    value["kind"] = WordOf(change.kind);
    value["time"] = JsonTime(change.time, zoneOffset);
    value["seen"] = JsonTime(now, zoneOffset);
    value["point"] = JsonTextOrNull(change.point);
    value["delay_us"] = JsonNumber(change.delay);
    value["times_usual"] = JsonNumber(change.times);
    value["cause"] = change.cause ? CauseValue(*change.cause) : Json::Value();
    value["seconds"] = change.seconds > 0 ? JsonWhole(change.seconds) : Json::Value();
    value["newest"] = change.newest ? JsonTime(*change.newest, zoneOffset) : Json::Value();
    value["type"] = JsonTextOrNull(change.type);
    value["errors"] = change.type.empty() ? Json::Value() : JsonWhole(change.count);
    value["sentence"] = JsonText(SentenceOf(change, zoneOffset));
    return JsonLine(value);
}

}  // namespace explain

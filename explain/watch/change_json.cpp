#include <json/writer.h>

#include <algorithm>

#include "explain/change.h"
#include "explain/wording.h"
#include "text/utf8.h"

namespace explain {
namespace {

constexpr unsigned SIGNIFICANT_DIGITS = 9;

Json::Value TimeValue(int64_t time, int64_t zoneOffset) {
    Json::Value value;
    std::string local = LocalTime(time, zoneOffset) + ZoneText(zoneOffset);
    std::replace(local.begin(), local.end(), ' ', 'T');
    value["epoch"] = static_cast<Json::Int64>(time);
    value["local"] = local;
    return value;
}

Json::Value CauseValue(const Cause& cause) {
    Json::Value value;
    value["point"] = cause.point.empty() ? Json::Value() : Json::Value(ValidUtf8(cause.point));
    value["share"] = cause.share;
    value["certainty"] = WordOf(cause.certainty);
    return value;
}

}  // namespace

std::string JsonChange(const Change& change, int64_t now, int64_t zoneOffset) {
    Json::Value value;
    value["version"] = 1;
    value["kind"] = WordOf(change.kind);
    value["time"] = TimeValue(change.time, zoneOffset);
    value["seen"] = TimeValue(now, zoneOffset);
    value["point"] = change.point.empty() ? Json::Value() : Json::Value(ValidUtf8(change.point));
    value["delay_us"] = change.delay ? Json::Value(*change.delay) : Json::Value();
    value["times_usual"] = change.times ? Json::Value(*change.times) : Json::Value();
    value["cause"] = change.cause ? CauseValue(*change.cause) : Json::Value();
    value["seconds"] = change.seconds > 0 ? static_cast<Json::Int64>(change.seconds) : Json::Value();
    value["newest"] = change.newest ? TimeValue(*change.newest, zoneOffset) : Json::Value();
    value["sentence"] = ValidUtf8(SentenceOf(change, zoneOffset));
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["precision"] = SIGNIFICANT_DIGITS;
    return Json::writeString(builder, value);
}

}  // namespace explain

#include "explain/report_json_values.h"

#include <json/writer.h>

#include <cmath>

#include "text/local_time.h"
#include "text/utf8.h"

namespace explain {

Json::Value JsonText(const std::string& text) {
    return ValidUtf8(text);
}

Json::Value JsonTextOrNull(const std::string& text) {
    return text.empty() ? Json::Value() : JsonText(text);
}

Json::Value JsonCount(size_t count) {
    return static_cast<Json::UInt64>(count);
}

Json::Value JsonWhole(int64_t number) {
    return static_cast<Json::Int64>(number);
}

Json::Value JsonNumber(double value) {
    return std::isfinite(value) ? Json::Value(value) : Json::Value();
}

Json::Value JsonNumber(const std::optional<double>& value) {
    return value ? JsonNumber(*value) : Json::Value();
}

Json::Value JsonTime(int64_t time, int64_t zoneOffset) {
    Json::Value value;
    value["epoch"] = static_cast<Json::Int64>(time);
    value["local"] = IsoTime(time, zoneOffset);
    return value;
}

Json::Value JsonWindow(const Window& window, int64_t zoneOffset) {
    Json::Value value;
    value["start"] = JsonTime(window.start, zoneOffset);
    value["end"] = JsonTime(window.end, zoneOffset);
    return value;
}

std::string JsonLine(const Json::Value& document) {
    constexpr unsigned SIGNIFICANT_DIGITS = 9;
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["precision"] = SIGNIFICANT_DIGITS;
    return Json::writeString(builder, document);
}

}  // namespace explain

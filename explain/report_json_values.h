// What all parts of the JSON report are written with. Inside report_json and the JSON of a watch only.
#pragma once

#include <json/value.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "explain/finding/series.h"
#include "explain/report.h"

namespace explain {

// Bytes that are no UTF-8 are shown as such.
Json::Value JsonText(const std::string& text);
Json::Value JsonTextOrNull(const std::string& text);  // empty text stands for what is not known
Json::Value JsonCount(size_t count);
Json::Value JsonWhole(int64_t number);
// Null for what is no finite number, or not known.
Json::Value JsonNumber(double value);
Json::Value JsonNumber(const std::optional<double>& value);

// Seconds since 1970 and the local time, `zoneOffset` seconds east of UTC.
Json::Value JsonTime(int64_t time, int64_t zoneOffset);
Json::Value JsonWindow(const Window& window, int64_t zoneOffset);

// `items` as an array, each as `written` has it.
template <typename Item, typename Writer>
Json::Value JsonList(const std::vector<Item>& items, const Writer& written) {
    Json::Value list(Json::arrayValue);
    for (const Item& item : items) {
        list.append(written(item));
    }
    return list;
}

// A document on one line, without its end: the same for the same one.
std::string JsonLine(const Json::Value& document);

// The members of the document that tell of errors and healings; the latter null where they cannot be told.
Json::Value ErrorsValue(const Report& report);
Json::Value HealingsValue(const Report& report);

}  // namespace explain

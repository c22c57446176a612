// Where alarms are kept.
#pragma once

namespace zorv {
// One JSON object a line, under the root.
constexpr const char* ALARM_FILE = "/VRA/coffer_log/log/alarm/alarms.jsonl";
}  // namespace zorv

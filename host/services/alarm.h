// Where alarms are kept.
#pragma once

// One JSON object a line, under the root.
constexpr const char* ALARM_FILE = "/VRA/coffer_log/log/alarm/alarms.jsonl";

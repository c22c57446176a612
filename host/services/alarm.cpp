#include "host/services/alarm.h"

#include <json/writer.h>

#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>

#include "agent/agent_alarm.h"
#include "host/process/error_lines.h"
#include "host/process/files.h"
#include "host/process/settings.h"
#include "host/services/alarm_counts.h"
#include "host/services/log.h"
#include "text/printable.h"

namespace zorv {
namespace {
std::string AlarmLine(uint32_t module, uint64_t alarmId, uint32_t type, const char* text) {
    Json::Value alarm;
    alarm["time"] = static_cast<Json::Int64>(std::time(nullptr));
    alarm["node"] = GetHostSettings().node;
    alarm["module"] = module;
    alarm["alarmId"] = static_cast<Json::UInt64>(alarmId);
    alarm["type"] = type;
    alarm["text"] = text;
    Json::StreamWriterBuilder writer;
    writer["indentation"] = "";
    return Json::writeString(writer, alarm);
}

uint32_t RaiseAlarm(uint32_t module, uint64_t alarmId, uint32_t type, const char* text) {
    char start[80];
    std::snprintf(start, sizeof start, "alarm 0x%" PRIX64 " of module %u, type %u: ", alarmId, module, type);
    PrintErrorLines(start + Printable(text) + '\n');
    const std::string path = RootedPath(ALARM_FILE);
    if (!MakeDirectoryOf(path) || !AppendLine(path, AlarmLine(module, alarmId, type, text))) {
        HOST_LOG(VPLOG_LEVEL_ERROR, "%s cannot be written: %s", path.c_str(), std::strerror(errno));
        return 1;
    }
    return 0;
}
}  // namespace
}  // namespace zorv

uint32_t ALM_SendAlarm(uint32_t module, uint64_t alarmId, uint32_t type, const char* text) {
    const uint32_t result = zorv::Guarded(
        "alarm", 1U, [=] { return zorv::RaiseAlarm(module, alarmId, type, text == nullptr ? "" : text); });
    zorv::CountAlarm(result == 0);
    return result;
}

#include "host/state/document.h"

#include <json/writer.h>

#include <ctime>

#include "agent/agent_console.h"
#include "agent/agent_message.h"
#include "text/local_time.h"
#include "text/utf8.h"

namespace zorv {
Json::Value TimeValue(int64_t time) {
    const std::string local = IsoTime(time, ZoneOffsetAt(time));
    Json::Value value;
    value["epoch"] = static_cast<Json::Int64>(time);
    value["local"] = local.empty() ? Json::Value() : Json::Value(local);
    return value;
}

Json::Value TextValue(const std::string& text) {
    return ValidUtf8(text);
}

Json::Value TextOrNull(const std::string& text) {
    return text.empty() ? Json::Value() : TextValue(text);
}

Json::Value NumberValue(uint64_t number) {
    return static_cast<Json::UInt64>(number);
}

void PrintDocument(const std::string& command, const Json::Value& answer, const std::string& problem) {
    Json::Value document;
    document["version"] = 1;
    document["command"] = command;
    document["node"] = NumberValue(ZORV_GetLocalNid());
    document["made_at"] = TimeValue(std::time(nullptr));
    document["problem"] = TextOrNull(problem);
    document["answer"] = answer;
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    DBG_Print("%s\n", Json::writeString(builder, document).c_str());
}
}  // namespace zorv

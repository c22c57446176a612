// The services themselves: each keeps what it was asked for, and answers as it was told to.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <thread>

#include "agent/agent_alarm.h"
#include "agent/agent_heal.h"
#include "agent/agent_log.h"
#include "agent/agent_memory.h"
#include "agent/agent_storage.h"
#include "agent/agent_thread.h"
#include "agent/agent_time.h"
#include "support/recording_state.h"

namespace {

constexpr uint64_t HALF_JIFFIES_PER_TICK = 5;
constexpr uint32_t MASTER_NODE = 1;
constexpr uint32_t LOCAL_NODE = 2;

std::string FormatText(const char* format, va_list arguments) __attribute__((format(printf, 1, 0)));
std::string FormatText(const char* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    std::string text(static_cast<size_t>(vsnprintf(nullptr, 0, format, again)), '\0');
    va_end(again);
    vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

std::string PayloadOf(const void* data, uint32_t length) {
    return data == nullptr ? std::string() : std::string(static_cast<const char*>(data), length);
}

}  // namespace

uint64_t vopx_get_jiffies() {
    uint64_t now = 0;
    std::function<void()> hook;
    {
        const AgentAccess access;
        now = access.state.halfJiffies / 2;
        hook = access.state.onClock;
    }
    if (hook) {
        hook();
    }
    return now;
}

void vopx_10msleep(uint32_t ticks) {
    size_t number = 0;
    std::function<void(size_t)> hook;
    {
        const AgentAccess access;
        access.record.sleeps.push_back(ticks);
        access.state.halfJiffies += ticks * HALF_JIFFIES_PER_TICK;
        number = access.record.sleeps.size();
        hook = access.state.onSleep;
    }
    if (hook) {
        hook(number);
    }
}

int64_t vopx_time_getlocaltime(int64_t* seconds) {
    const int64_t now = AgentAccess().state.localTime;
    if (seconds != nullptr) {
        *seconds = now;
    }
    return now;
}

void vopx_time_gmtime(int64_t seconds, VOPX_TIME_S* out) {
    const time_t time = seconds;
    tm fields{};
    *out = gmtime_r(&time, &fields) == nullptr
               ? VOPX_TIME_S{}
               : VOPX_TIME_S{fields.tm_sec,  fields.tm_min,     fields.tm_hour,
                             fields.tm_mday, fields.tm_mon + 1, fields.tm_year + 1900};
}

int64_t vopx_time_mktime(const VOPX_TIME_S* in) {
    tm fields{};
    fields.tm_sec = in->second;
    fields.tm_min = in->minute;
    fields.tm_hour = in->hour;
    fields.tm_mday = in->day;
    fields.tm_mon = in->month - 1;
    fields.tm_year = in->year - 1900;
    return timegm(&fields);
}

void vplog(uint32_t module, uint32_t level, const char* file, uint32_t line, const char* function,
           uint32_t /*reserved*/, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::string text = FormatText(format, arguments);
    va_end(arguments);
    AgentAccess().record.logs.push_back({module, level, file, line, function, text});
}

void DBG_Print(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::string text = FormatText(format, arguments);
    va_end(arguments);
    AgentAccess().record.console += text;
}

int32_t memset_s(void* dest, size_t destMax, int32_t value, size_t count) {
    const int32_t result = AgentAccess().ResultOf("memset_s");
    if (result != 0 || dest == nullptr || count > destMax) {
        return result != 0 ? result : 1;
    }
    memset(dest, value, count);
    return 0;
}

int32_t snprintf_s(char* dest, size_t destMax, size_t count, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::string text = FormatText(format, arguments);
    va_end(arguments);
    const int32_t result = AgentAccess().ResultOf("snprintf_s");
    if (result != 0 || dest == nullptr || count >= destMax) {
        return result != 0 ? result : -1;
    }
    const std::string shown = text.substr(0, count);
    memcpy(dest, shown.c_str(), shown.size() + 1);
    return shown == text ? static_cast<int32_t>(shown.size()) : -1;
}

int32_t create_thread_nopreempt_raw(VOPX_THREAD_ENTRY entry, void* arg, uint32_t /*flags*/) {
    const int32_t result = AgentAccess().ResultOf("create_thread_nopreempt_raw");
    if (result == 0) {
        std::thread(entry, arg).detach();
    }
    return result;
}

uint32_t Zorvdebug_RegDiagnose(const char* group, ZORV_DIAG_CMD_S* table) {
    const AgentAccess access;
    access.record.commandGroups[group] = table;
    return access.StatusOf("Zorvdebug_RegDiagnose");
}

uint32_t ALM_SendAlarm(uint32_t module, uint64_t alarmId, uint32_t type, const char* text) {
    const AgentAccess access;
    access.record.alarms.push_back({module, alarmId, type, text});
    return access.StatusOf("ALM_SendAlarm");
}

uint32_t HealReadZorvModePrivateIni(const char* path, int32_t* value, uint32_t /*flag*/) {
    const AgentAccess access;
    const auto kept = access.record.iniValues.find(path);
    const uint32_t result = access.StatusOf("HealReadZorvModePrivateIni");
    if (result != 0 || kept == access.record.iniValues.end()) {
        return result != 0 ? result : 1;
    }
    *value = kept->second;
    return 0;
}

uint32_t HealWriteZorvModePrivateIni(const char* path, int32_t value, uint32_t /*flag*/) {
    const AgentAccess access;
    const uint32_t result = access.StatusOf("HealWriteZorvModePrivateIni");
    if (result == 0) {
        access.record.iniValues[path] = value;
    }
    return result;
}

uint32_t ZORV_ModulesStartup(ZORV_MODULE_INIT_S* rows, uint32_t count) {
    uint32_t failed = 0;
    for (uint32_t i = 0; i < count; ++i) {
        AgentAccess().record.startupRows.push_back(rows[i]);
        failed += rows[i].init() != 0 ? 1U : 0U;
    }
    const uint32_t result = AgentAccess().StatusOf("ZORV_ModulesStartup");
    return result != 0 ? result : failed;
}

uint32_t ZORV_ThreadPoolAddTimerTaskSub(ZORV_TIMER_TASK_S* task, uint32_t module, const char* function,
                                        uint32_t line) {
    const AgentAccess access;
    access.record.timers.push_back({*task, module, function, line});
    return access.StatusOf("ZORV_ThreadPoolAddTimerTaskSub");
}

uint32_t ZORV_CommRegMsgHandle(uint32_t opcode, ZORV_MSG_HANDLER handler) {
    const AgentAccess access;
    access.record.handlers[opcode] = handler;
    return access.StatusOf("ZORV_CommRegMsgHandle");
}

uint32_t ZORV_CommSendAckMsg(ZORV_COMM_INFO_S* info, void* data, uint32_t length) {
    const AgentAccess access;
    access.record.acknowledgements.push_back({*info, PayloadOf(data, length)});
    return access.StatusOf("ZORV_CommSendAckMsg");
}

void ZORV_CommFillinCommInfoInner(ZORV_COMM_INFO_S* info, uint32_t dstNid, uint32_t module, uint32_t opcode,
                                  uint32_t length, uint32_t needReply) {
    *info = {LOCAL_NODE, dstNid, module, opcode, length, needReply, 0};
}

uint32_t ZORV_CommSendRequestMsg(ZORV_COMM_INFO_S* info, void* request, ZORV_COMM_RET_S* reply) {
    const AgentAccess access;
    access.record.requests.push_back({*info, PayloadOf(request, info->msgLen)});
    const uint32_t result = access.StatusOf("ZORV_CommSendRequestMsg");
    if (result == 0 && access.state.reply) {
        const std::string& payload = *access.state.reply;
        // Exactly as long as the answer, so that reading past its end is seen.
        reply->data = malloc(payload.size());
        reply->length = static_cast<uint32_t>(payload.size());
        memcpy(reply->data, payload.data(), payload.size());
        ++access.record.repliesToFree;
    }
    return result;
}

void ZORV_CommFreeRetData(ZORV_COMM_RET_S* reply) {
    --AgentAccess().record.repliesToFree;
    free(reply->data);
    reply->data = nullptr;
}

uint32_t ZORV_GetMasterNid() {
    return MASTER_NODE;
}

uint32_t ZORV_GetLocalNid() {
    return LOCAL_NODE;
}

const char* vopx_root_directory() {
    const AgentAccess access;
    return access.state.roots.empty() ? nullptr : access.state.roots.back().c_str();
}

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
#include "support/recording_agent.h"

namespace {

// The next result of `service`: 0 unless it is to fail.
int32_t ResultOf(const char* service) {
    Agent agent;
    const auto failure = agent->failures.find(service);
    return failure == agent->failures.end() || failure->second.second-- > 0 ? 0 : failure->second.first;
}

uint32_t StatusOf(const char* service) {
    return static_cast<uint32_t>(ResultOf(service));
}

__attribute__((format(printf, 1, 0))) std::string FormatText(const char* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    std::string text(static_cast<size_t>(vsnprintf(nullptr, 0, format, again)), '\0');
    va_end(again);
    vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

}  // namespace

// Hooks run unlocked: they may wait for other threads.
uint64_t vopx_get_jiffies() {
    const uint64_t now = Agent()->jiffies;
    const auto hook = Agent()->onClock;
    hook();
    return now;
}

void vopx_10msleep(uint32_t ticks) {
    Agent()->sleeps.push_back(ticks);
    Agent()->jiffies += ticks * 5 / 2;
    const size_t number = Agent()->sleeps.size();
    const auto hook = Agent()->onSleep;
    hook(number);
}

int64_t vopx_time_getlocaltime(int64_t* seconds) {
    const int64_t now = Agent()->localTime;
    if (seconds != nullptr) {
        *seconds = now;
    }
    return now;
}

void vopx_time_gmtime(int64_t seconds, VOPX_TIME_S* out) {
    tm fields{};
    const bool fits = gmtime_r(&seconds, &fields) != nullptr;
    *out = fits ? VOPX_TIME_S{fields.tm_sec,  fields.tm_min,     fields.tm_hour,
                              fields.tm_mday, fields.tm_mon + 1, fields.tm_year + 1900}
                : VOPX_TIME_S{};
}

int64_t vopx_time_mktime(const VOPX_TIME_S* in) {
    tm fields{in->second, in->minute, in->hour, in->day, in->month - 1, in->year - 1900, 0, 0, 0, 0, nullptr};
    return timegm(&fields);
}

void vplog(uint32_t module, uint32_t level, const char* file, uint32_t line, const char* function,
           uint32_t /*reserved*/, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    Agent()->logs.push_back({module, level, line, file, function, FormatText(format, arguments)});
    va_end(arguments);
}

void DBG_Print(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    Agent agent;  // before the text is made: the right side of an assignment comes first
    agent->console += FormatText(format, arguments);
    va_end(arguments);
}

int32_t memset_s(void* dest, size_t destMax, int32_t value, size_t count) {
    const int32_t result = count > destMax ? 1 : ResultOf(__func__);
    if (result == 0) {
        memset(dest, value, count);
    }
    return result;
}

int32_t snprintf_s(char* dest, size_t destMax, size_t count, const char* format, ...) {
    const int32_t result = count >= destMax ? -1 : ResultOf(__func__);
    if (result != 0) {
        return result;
    }
    va_list arguments;
    va_start(arguments, format);
    const int length = vsnprintf(dest, count + 1, format, arguments);
    va_end(arguments);
    return static_cast<size_t>(length) > count ? -1 : length;
}

int32_t create_thread_nopreempt_raw(VOPX_THREAD_ENTRY entry, void* arg, uint32_t /*flags*/) {
    const int32_t result = ResultOf(__func__);
    if (result == 0) {
        std::thread(entry, arg).detach();
    }
    return result;
}

uint32_t Zorvdebug_RegDiagnose(const char* group, ZORV_DIAG_CMD_S* table) {
    Agent()->commandGroups[group] = table;
    return StatusOf(__func__);
}

uint32_t ALM_SendAlarm(uint32_t module, uint64_t alarmId, uint32_t type, const char* text) {
    Agent()->alarms.emplace_back(module, alarmId, type, text);
    return StatusOf(__func__);
}

uint32_t HealReadZorvModePrivateIni(const char* path, int32_t* value, uint32_t /*flag*/) {
    const uint32_t result = Agent()->iniValues.count(path) == 0 ? 1 : StatusOf(__func__);
    if (result == 0) {
        *value = Agent()->iniValues[path];
    }
    return result;
}

uint32_t HealWriteZorvModePrivateIni(const char* path, int32_t value, uint32_t /*flag*/) {
    const uint32_t result = StatusOf(__func__);
    if (result == 0) {
        Agent()->iniValues[path] = value;
    }
    return result;
}

uint32_t ZORV_ModulesStartup(ZORV_MODULE_INIT_S* rows, uint32_t count) {
    Agent()->startupRows.assign(rows, rows + count);
    uint32_t result = StatusOf(__func__);
    for (uint32_t i = 0; i < count; ++i) {
        result += rows[i].init() != 0 ? 1U : 0U;
    }
    return result;
}

uint32_t ZORV_ThreadPoolAddTimerTaskSub(ZORV_TIMER_TASK_S* task, uint32_t module, const char* function,
                                        uint32_t line) {
    Agent()->timers.push_back({*task, module, line, function});
    return StatusOf(__func__);
}

uint32_t ZORV_CommRegMsgHandle(uint32_t opcode, ZORV_MSG_HANDLER handler) {
    Agent()->handlers[opcode] = handler;
    return StatusOf(__func__);
}

uint32_t ZORV_CommSendAckMsg(ZORV_COMM_INFO_S* info, void* data, uint32_t length) {
    Agent()->acknowledgements.push_back({*info, std::string(static_cast<const char*>(data), length)});
    return StatusOf(__func__);
}

void ZORV_CommFillinCommInfoInner(ZORV_COMM_INFO_S* info, uint32_t dstNid, uint32_t module, uint32_t opcode,
                                  uint32_t length, uint32_t needReply) {
    *info = {ZORV_GetLocalNid(), dstNid, module, opcode, length, needReply, 0};
}

uint32_t ZORV_CommSendRequestMsg(ZORV_COMM_INFO_S* info, void* request, ZORV_COMM_RET_S* reply) {
    Agent agent;
    agent->requests.push_back({*info, std::string(static_cast<const char*>(request), info->msgLen)});
    const uint32_t result = StatusOf(__func__);
    if (result == 0 && agent->reply) {
        // Exactly as long as the answer, so that reading past its end is seen.
        const std::string answer = *agent->reply;
        *reply = {malloc(answer.size()), static_cast<uint32_t>(answer.size()), 0};
        memcpy(reply->data, answer.data(), answer.size());
        ++agent->repliesToFree;
    }
    return result;
}

void ZORV_CommFreeRetData(ZORV_COMM_RET_S* reply) {
    --Agent()->repliesToFree;
    free(reply->data);
    reply->data = nullptr;
}

uint32_t ZORV_GetMasterNid() {
    return 1;
}

uint32_t ZORV_GetLocalNid() {
    return 2;
}

const char* vopx_root_directory() {
    return Agent()->roots.back().c_str();
}

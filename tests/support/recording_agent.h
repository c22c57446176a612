// The agent's services as tests want them: whatever the plug-in does to its agent is kept, each service can
// be made to fail, the clock moves only when it is told to, and nothing sleeps. Threads and the calendar are
// real.
//
// One recorder serves the process. Any thread may call; what is returned is a copy.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "agent/agent_console.h"
#include "agent/agent_message.h"
#include "agent/agent_startup.h"
#include "agent/agent_timer.h"

struct LogLine {
    uint32_t module, level;
    std::string file;
    uint32_t line;
    std::string function, text;
};

// What tests compare: "3 fault_database.cpp FaultDataBaseInit: sqlite3_open faild:14", with "0x" for every
// address that is not null; and the same with the line number behind the file.
using Lines = std::vector<std::string>;
std::string Brief(const LogLine& line);
std::string Full(const LogLine& line);

struct AlarmCall {
    uint32_t module;
    uint64_t id;
    uint32_t type;
    std::string text;
};

struct TimerCall {
    ZORV_TIMER_TASK_S task;
    uint32_t module;
    std::string function;
    uint32_t line;
};

// A request or an acknowledgement: its header and its payload's bytes.
struct MessageCall {
    ZORV_COMM_INFO_S info;
    std::string payload;
};

// Everything that the plug-in did since the last Reset().
struct AgentRecord {
    std::vector<LogLine> logs;
    std::string console;
    std::vector<uint32_t> sleeps;  // ticks of each vopx_10msleep()
    std::vector<AlarmCall> alarms;
    std::vector<TimerCall> timers;
    std::vector<ZORV_MODULE_INIT_S> startupRows;
    std::map<std::string, const ZORV_DIAG_CMD_S*> commandGroups;
    std::map<uint32_t, ZORV_MSG_HANDLER> handlers;
    std::vector<MessageCall> requests;
    std::vector<MessageCall> acknowledgements;
    int repliesToFree = 0;
    std::map<std::string, int32_t> iniValues;  // by path; Agent::SetIni() plants some

    Lines Briefs() const;                             // Brief() of each log line
    size_t Count(const std::string& textPart) const;  // log lines that contain it
};

namespace Agent {

// Forgets everything: record, failures, hooks, reply and root. The clock starts at 1,000,000 jiffies and at
// 2021-08-04 00:00:00 local time.
void Reset();

AgentRecord Record();
std::string TakeConsole();  // what was printed; and forgets it
Lines TakeLines();          // Brief() of each log line; and forgets them

// From its `fromCall`-th call from now on, `service` (a function's name) does nothing and returns `result`.
void Fail(const std::string& service, int32_t result = 1, int fromCall = 1);

void SetJiffies(uint64_t now);
void SetLocalTime(int64_t seconds);
void OnClock(std::function<void()> hook);        // runs after each reading of the jiffies
void OnSleep(std::function<void(size_t)> hook);  // runs in each sleep, with the number of sleeps so far

void SetIni(const std::string& path, std::optional<int32_t> value);  // none: no such file
void SetReply(std::optional<std::string> payload);  // to each request; none: success without data
void SetReply(int32_t value);
void SetRoot(const std::string& directory);

// Waits until `condition` holds for the record; false when it did not within a generous time.
bool WaitUntil(const std::function<bool(const AgentRecord&)>& condition);

}  // namespace Agent

// The same for a condition that is not part of the record: looked at every few milliseconds.
bool Eventually(const std::function<bool()>& condition);

// The bytes of a number, as messages carry it.
std::string Bytes(int32_t value);

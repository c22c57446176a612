// The agent's services as tests want them: whatever the plug-in does to its agent is kept, each service can
// be made to fail, the clock moves only when it is told to, and nothing sleeps. Threads and the calendar are
// real.
//
// One recorder serves the process. Any thread may call; what is returned is a copy.
#pragma once

#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "agent/agent_console.h"
#include "agent/agent_message.h"
#include "agent/agent_startup.h"
#include "agent/agent_timer.h"

struct LogLine {
    uint32_t module, level, line;
    std::string file, function, text;
};

// What tests compare: "3 fault_database.cpp FaultDataBaseInit: sqlite3_open faild:14", with "0x" for every
// address that is not null; with the line's number: "3 fault_debug.cpp:1127 FaultDiagnoseDebugInit: ...".
using Lines = std::vector<std::string>;
std::string Brief(const LogLine& line, bool withNumber = false);

struct TimerCall {
    ZORV_TIMER_TASK_S task;
    uint32_t module, line;
    std::string function;
};

// A request or an acknowledgement: its header and its payload's bytes.
struct MessageCall {
    ZORV_COMM_INFO_S info;
    std::string payload;
};

// What the plug-in did since the last reset, and what the services do.
struct AgentRecord {
    std::vector<LogLine> logs;
    std::string console;
    std::vector<uint32_t> sleeps;  // ticks of each vopx_10msleep()
    // module, alarm id, type, text
    std::vector<std::tuple<uint32_t, uint64_t, uint32_t, std::string>> alarms;
    std::vector<TimerCall> timers;
    std::vector<ZORV_MODULE_INIT_S> startupRows;
    std::map<std::string, const ZORV_DIAG_CMD_S*> commandGroups;
    std::map<uint32_t, ZORV_MSG_HANDLER> handlers;
    std::vector<MessageCall> requests, acknowledgements;
    int repliesToFree = 0;
    std::map<std::string, int32_t> iniValues;  // by path; tests may plant some

    uint64_t jiffies = 1000000;
    int64_t localTime = 1628035200;                           // 2021-08-04 00:00:00
    std::function<void()> onClock = [] {};                    // runs after each reading of the jiffies
    std::function<void(size_t)> onSleep = [](size_t) {};      // runs in each sleep, with the number of sleeps
    std::optional<std::string> reply;                         // to each request; none: success without data
    std::map<std::string, std::pair<int32_t, int>> failures;  // by service: result, calls before it
    std::list<std::string> roots = {""};  // the last one counts; the plug-in may still read another

    size_t Count(const std::string& textPart) const;  // log lines that contain it
};

// The recorder, for the time of one statement: Agent()->jiffies = 7. Other threads wait meanwhile.
class Agent {
public:
    Agent() { ++inside; }
    ~Agent() { --inside; }
    AgentRecord* operator->() { return &record; }

    // Whether the calling thread is in such a statement: what it allocates there is the recorder's.
    static bool IsInside() { return inside > 0; }

    static void Reset();  // all but the root
    static AgentRecord Record() { return Agent().record; }
    // Both forget what they return: what was printed, and Brief() of each log line.
    static std::string TakeConsole() { return std::exchange(Agent()->console, {}); }
    static Lines TakeLines();

    // From its `fromCall`-th call from now on, `service` (a function's name) does nothing and returns
    // `result`.
    static void Fail(const std::string& service, int32_t result = 1, int fromCall = 1) {
        Agent()->failures[service] = {result, fromCall - 1};
    }
    static void SetRoot(const std::string& directory) { Agent()->roots.push_back(directory); }

private:
    static std::recursive_mutex mutex;
    static AgentRecord& record;
    static thread_local int inside;
    const std::lock_guard<std::recursive_mutex> lock{mutex};
};

// The log lines since the last ones that were taken.
#define EXPECT_LOGGED(...) EXPECT_EQ(Agent::TakeLines(), (Lines{__VA_ARGS__}))

// Waits until `condition` holds; false when it did not within a generous time.
bool Eventually(const std::function<bool()>& condition);

// The bytes of a number, as messages carry it.
std::string Bytes(int32_t value);

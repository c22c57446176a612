// What the recorder keeps, and the one way to it. Inside support/ only.
#pragma once

#include <condition_variable>
#include <list>
#include <mutex>

#include "support/recording_agent.h"

struct AgentFailure {
    int32_t result;
    int callsBefore;
};

struct AgentState {
    std::mutex mutex;
    std::condition_variable changed;
    AgentRecord record;
    std::map<std::string, AgentFailure> failures;
    uint64_t halfJiffies = 2 * 1000000;
    int64_t localTime = 1628035200;
    std::function<void()> onClock;
    std::function<void(size_t)> onSleep;
    std::optional<std::string> reply;
    std::list<std::string>
        roots;  // the last one counts; the plug-in may keep any for the life of the process
};

AgentState& TheAgentState();

// Holds the recorder's lock, and tells those who wait for what was done under it.
struct AgentAccess {
    AgentState& state = TheAgentState();
    const std::lock_guard<std::mutex> lock{state.mutex};
    AgentRecord& record = state.record;

    AgentAccess() = default;
    ~AgentAccess() { state.changed.notify_all(); }
    AgentAccess(const AgentAccess&) = delete;
    AgentAccess& operator=(const AgentAccess&) = delete;

    // The next result of `service`: 0 unless it is to fail.
    int32_t ResultOf(const char* service) const;
    uint32_t StatusOf(const char* service) const { return static_cast<uint32_t>(ResultOf(service)); }
};

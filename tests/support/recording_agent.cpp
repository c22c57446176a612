#include "support/recording_agent.h"

#include <chrono>
#include <cstring>
#include <memory>
#include <thread>
#include <utility>

#include "support/recording_state.h"

namespace {

constexpr std::chrono::seconds DEADLINE(20);

}  // namespace

AgentState& TheAgentState() {
    // Never destroyed: threads of the plug-in outlive main().
    static AgentState& state = *std::make_unique<AgentState>().release();
    return state;
}

int32_t AgentAccess::ResultOf(const char* service) const {
    const auto failure = state.failures.find(service);
    if (failure == state.failures.end()) {
        return 0;
    }
    if (failure->second.callsBefore > 0) {
        --failure->second.callsBefore;
        return 0;
    }
    return failure->second.result;
}

std::string Brief(const LogLine& line) {
    std::string text = line.text;
    for (size_t at = text.find("0x"); at != std::string::npos; at = text.find("0x", at + 2)) {
        text.erase(at + 2, text.find_first_not_of("0123456789abcdef", at + 2) - (at + 2));
    }
    return std::to_string(line.level) + " " + line.file + " " + line.function + ": " + text;
}

std::string Full(const LogLine& line) {
    return std::to_string(line.level) + " " + line.file + ":" + std::to_string(line.line) + " " +
           line.function + ": " + line.text;
}

Lines AgentRecord::Briefs() const {
    Lines lines;
    for (const LogLine& line : logs) {
        lines.push_back(Brief(line));
    }
    return lines;
}

size_t AgentRecord::Count(const std::string& textPart) const {
    size_t count = 0;
    for (const LogLine& line : logs) {
        count += line.text.find(textPart) != std::string::npos ? 1U : 0U;
    }
    return count;
}

bool Eventually(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + DEADLINE;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

std::string Bytes(int32_t value) {
    std::string bytes(sizeof(value), '\0');
    memcpy(bytes.data(), &value, sizeof(value));
    return bytes;
}

namespace Agent {

void Reset() {
    const AgentAccess access;
    const AgentState fresh;
    access.state.record = fresh.record;
    access.state.failures = fresh.failures;
    access.state.halfJiffies = fresh.halfJiffies;
    access.state.localTime = fresh.localTime;
    access.state.onClock = fresh.onClock;
    access.state.onSleep = fresh.onSleep;
    access.state.reply = fresh.reply;
    access.state.roots.emplace_back();
}

AgentRecord Record() {
    return AgentAccess().record;
}

std::string TakeConsole() {
    return std::exchange(AgentAccess().record.console, {});
}

Lines TakeLines() {
    const AgentAccess access;
    Lines lines = access.record.Briefs();
    access.record.logs.clear();
    return lines;
}

void Fail(const std::string& service, int32_t result, int fromCall) {
    AgentAccess().state.failures[service] = {result, fromCall - 1};
}

void SetJiffies(uint64_t now) {
    AgentAccess().state.halfJiffies = 2 * now;
}

void SetLocalTime(int64_t seconds) {
    AgentAccess().state.localTime = seconds;
}

void OnClock(std::function<void()> hook) {
    AgentAccess().state.onClock = std::move(hook);
}

void OnSleep(std::function<void(size_t)> hook) {
    AgentAccess().state.onSleep = std::move(hook);
}

void SetIni(const std::string& path, std::optional<int32_t> value) {
    const AgentAccess access;
    access.record.iniValues.erase(path);
    if (value) {
        access.record.iniValues[path] = *value;
    }
}

void SetReply(std::optional<std::string> payload) {
    AgentAccess().state.reply = std::move(payload);
}

void SetReply(int32_t value) {
    SetReply(Bytes(value));
}

void SetRoot(const std::string& directory) {
    AgentAccess().state.roots.push_back(directory);
}

bool WaitUntil(const std::function<bool(const AgentRecord&)>& condition) {
    AgentState& state = TheAgentState();
    std::unique_lock lock(state.mutex);
    return state.changed.wait_until(lock, std::chrono::system_clock::now() + DEADLINE,
                                    [&] { return condition(state.record); });
}

}  // namespace Agent

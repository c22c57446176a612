#include "support/recording_agent.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>

std::recursive_mutex Agent::mutex;
thread_local int Agent::inside = 0;
// Never destroyed: threads of the plug-in outlive main().
AgentRecord& Agent::record = *std::make_unique<AgentRecord>().release();

std::string Brief(const LogLine& line, bool withNumber) {
    std::string text = line.text;
    for (size_t at = text.find("0x"); at != std::string::npos; at = text.find("0x", at + 2)) {
        text.erase(at + 2, text.find_first_not_of("0123456789abcdef", at + 2) - (at + 2));
    }
    const std::string number = withNumber ? ":" + std::to_string(line.line) : "";
    return std::to_string(line.level) + " " + line.file + number + " " + line.function + ": " + text;
}

size_t AgentRecord::Count(const std::string& textPart) const {
    const auto contains = [&](const LogLine& line) { return line.text.find(textPart) != std::string::npos; };
    return static_cast<size_t>(std::count_if(logs.begin(), logs.end(), contains));
}

void Agent::Reset() {
    Agent agent;
    AgentRecord fresh;
    fresh.roots.swap(agent->roots);
    agent.record = std::move(fresh);
}

Lines Agent::TakeLines() {
    Lines lines;
    for (const LogLine& line : std::exchange(Agent()->logs, {})) {
        lines.push_back(Brief(line));
    }
    return lines;
}

bool Eventually(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

std::string Bytes(int32_t value) {
    return {reinterpret_cast<const char*>(&value), sizeof(value)};
}

#include <fcntl.h>
#include <json/reader.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cinttypes>
#include <cstring>
#include <deque>
#include <memory>
#include <optional>
#include <sstream>

#include "agent/agent_console.h"
#include "host/console/commands.h"
#include "host/process/files.h"
#include "host/process/settings.h"
#include "host/services/alarm.h"
#include "host/state/document.h"
#include "text/local_time.h"
#include "text/printable.h"

namespace zorv {
namespace {
constexpr size_t USUAL_COUNT = 20;
constexpr size_t LARGEST_COUNT = 1000;
constexpr off_t BYTES_READ = off_t{4} << 20;  // of the file's end
constexpr size_t LONGEST_TEXT = 200;

size_t CountIn(const Words& words) {
    size_t count = USUAL_COUNT;
    if (words.size() == 2) {
        const char* const end = words[1].data() + words[1].size();
        const auto [stop, error] = std::from_chars(words[1].data(), end, count);
        count = error == std::errc() && stop == end ? count : 0;
    }
    if (words.size() > 2 || count == 0 || count > LARGEST_COUNT) {
        throw UsageError("usage: alarms [N] [--json], N from 1 to " + std::to_string(LARGEST_COUNT));
    }
    return count;
}

// Whole lines from the end of the alarm file; nothing when there is no file.
std::string EndOfFile(const std::string& path) {
    const OwnedFd file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file && errno == ENOENT) {
        return {};
    }
    struct stat status {};
    std::string text;
    off_t start = 0;
    ssize_t got = -1;
    if (file && fstat(file.Get(), &status) == 0) {
        start = std::max<off_t>(status.st_size - BYTES_READ, 0);
        text.resize(static_cast<size_t>(status.st_size - start));
        got = pread(file.Get(), text.data(), text.size(), start);
    }
    if (got < 0) {
        throw std::runtime_error(path + " cannot be read: " + std::strerror(errno));
    }
    text.resize(static_cast<size_t>(got));
    return start == 0 ? text : text.substr(std::min(text.find('\n'), text.size() - 1) + 1);
}

std::deque<std::string> LastLines(const std::string& text, size_t count) {
    std::istringstream stream(text);
    std::deque<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
        if (lines.size() > count) {
            lines.pop_front();
        }
    }
    return lines;
}

bool IsAlarm(const Json::Value& alarm) {
    return alarm.isObject() && alarm["time"].isInt64() && alarm["alarmId"].isUInt64() &&
           alarm["node"].isUInt() && alarm["module"].isUInt() && alarm["type"].isUInt() &&
           alarm["text"].isString();
}

std::optional<Json::Value> Parse(const std::string& line) {
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    Json::Value alarm;
    try {
        if (reader->parse(line.data(), line.data() + line.size(), &alarm, nullptr) && IsAlarm(alarm)) {
            return alarm;
        }
    } catch (const std::exception&) {
        return std::nullopt;  // nested too deep
    }
    return std::nullopt;
}

std::string IdOf(const Json::Value& alarm) {
    char id[24];
    std::snprintf(id, sizeof id, "0x%" PRIX64, alarm["alarmId"].asUInt64());
    return id;
}

void PrintAlarm(const std::string& line) {
    const std::optional<Json::Value> alarm = Parse(line);
    if (!alarm.has_value()) {
        DBG_Print("%s\n", ("no alarm: " + Printable(line, LONGEST_TEXT)).c_str());
        return;
    }
    const int64_t time = (*alarm)["time"].asInt64();
    DBG_Print("%-19s  %-6u  %-6u  %-4u  %-18s  %s\n", LocalTime(time, ZoneOffsetAt(time)).c_str(),
              (*alarm)["node"].asUInt(), (*alarm)["module"].asUInt(), (*alarm)["type"].asUInt(),
              IdOf(*alarm).c_str(), Printable((*alarm)["text"].asString(), LONGEST_TEXT).c_str());
}

void PrintAlarms(const std::deque<std::string>& lines) {
    if (lines.empty()) {
        DBG_Print("There are no alarms.\n");
        return;
    }
    DBG_Print("%-19s  %-6s  %-6s  %-4s  %-18s  %s\n", "time", "node", "module", "type", "alarm", "text");
    for (const std::string& line : lines) {
        PrintAlarm(line);
    }
}

Json::Value ValueOf(const std::deque<std::string>& lines) {
    Json::Value answer;
    answer["alarms"] = answer["no_alarms"] = Json::Value(Json::arrayValue);
    for (const std::string& line : lines) {
        std::optional<Json::Value> alarm = Parse(line);
        if (!alarm) {
            answer["no_alarms"].append(TextValue(line));
            continue;
        }
        Json::Value value;
        value["time"] = TimeValue((*alarm)["time"].asInt64());
        value["alarm"] = IdOf(*alarm);
        value["text"] = TextValue((*alarm)["text"].asString());
        for (const char* const name : {"node", "module", "type"}) {
            value[name] = (*alarm)[name];
        }
        answer["alarms"].append(value);
    }
    return answer;
}
}  // namespace

ExitStatus RunAlarms(const Words& words, ConsoleState& state) {
    const std::deque<std::string> lines = LastLines(EndOfFile(RootedPath(ALARM_FILE)), CountIn(words));
    if (state.wantsJson) {
        PrintDocument(words.front(), ValueOf(lines));
    } else {
        PrintAlarms(lines);
    }
    return STATUS_OK;
}
}  // namespace zorv

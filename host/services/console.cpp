#include "host/services/console.h"

#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <string>
#include <string_view>

#include "host/process/immortal.h"
#include "host/services/log.h"
#include "text/printable.h"

namespace zorv {
namespace {
constexpr std::string_view ERROR_START = "\t\t[ERROR]: ";
constexpr std::string_view INNER_ERROR = "\ninner error\n";

struct Groups {
    std::mutex mutex;
    std::vector<std::string> names;
    std::vector<RegisteredCommand> commands;
};

struct Screen {
    std::mutex mutex;
    Printed printed;
};

std::atomic<int> g_outputError{0};

Groups& AllGroups() {
    static Groups& groups = MakeImmortal<Groups>();
    return groups;
}

Screen& TheScreen() {
    static Screen& screen = MakeImmortal<Screen>();
    return screen;
}

void Print(std::string_view text) {
    {
        Screen& screen = TheScreen();
        const std::lock_guard<std::mutex> lock(screen.mutex);
        screen.printed.hasErrorLine |=
            text.substr(0, ERROR_START.size()) == ERROR_START || text == INNER_ERROR;
        screen.printed.last = text;
    }
    // What a database or a configuration holds must not act on a terminal; a file or a pipe gets every byte.
    static const bool isTerminal = isatty(STDOUT_FILENO) == 1;
    const std::string shown = isTerminal ? Printable(text, text.npos, "\n\t") : std::string(text);
    const bool printed =
        std::fwrite(shown.data(), 1, shown.size(), stdout) == shown.size() && std::fflush(stdout) == 0;
    int none = 0;
    if (!printed) {
        g_outputError.compare_exchange_strong(none, errno == 0 ? EIO : errno);
    }
}

bool IsComplete(const ZORV_DIAG_CMD_S* table) {
    for (; table->name != nullptr; ++table) {
        if (table->handler == nullptr) {
            return false;
        }
    }
    return true;
}

uint32_t AddGroup(const char* group, const ZORV_DIAG_CMD_S* table) {
    Groups& groups = AllGroups();
    const std::lock_guard<std::mutex> lock(groups.mutex);
    for (const std::string& name : groups.names) {
        if (name == group) {
            return 1;
        }
    }
    std::vector<RegisteredCommand> commands = groups.commands;
    for (; table->name != nullptr; ++table) {
        commands.push_back({group, table});
    }
    groups.names.emplace_back(group);
    groups.commands = std::move(commands);
    return 0;
}
}  // namespace

std::vector<RegisteredCommand> RegisteredCommands() {
    Groups& groups = AllGroups();
    const std::lock_guard<std::mutex> lock(groups.mutex);
    return groups.commands;
}

Printed GetPrinted() {
    Screen& screen = TheScreen();
    const std::lock_guard<std::mutex> lock(screen.mutex);
    return screen.printed;
}

void ForgetPrinted() {
    Screen& screen = TheScreen();
    const std::lock_guard<std::mutex> lock(screen.mutex);
    screen.printed = {};
}

int OutputError() {
    return g_outputError;
}
}  // namespace zorv

void DBG_Print(const char* format, ...) {
    va_list args;
    va_start(args, format);
    zorv::Guarded("console output", 0, [&] {
        zorv::Print(FormatText(format, args));
        return 0;
    });
    va_end(args);
}

uint32_t Zorvdebug_RegDiagnose(const char* group, ZORV_DIAG_CMD_S* table) {
    if (group == nullptr || table == nullptr || !zorv::IsComplete(table)) {
        return 1;
    }
    return zorv::Guarded("console registration", 1U, [=] { return zorv::AddGroup(group, table); });
}

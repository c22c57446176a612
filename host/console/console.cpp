#include "host/console/console.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <optional>

#include "host/console/command_table.h"
#include "host/process/interrupt.h"
#include "host/services/console.h"
#include "text/printable.h"
#include "text/time_words.h"

namespace zorv {
namespace {
void Report(const std::string& place, const std::string& text) {
    std::fprintf(stderr, "zorv-local: %s%s\n", place.c_str(), Printable(text, text.npos, "\n").c_str());
}

// Of an interrupted command: it failed because of that.
void ReportFailure(const std::string& place, const std::string& text) {
    if (!Interrupted()) {
        Report(place, text);
    }
}

// The words with START and END, of which the first stands at `place`, as compact local times; what was
// understood is told on stderr.
Words WithCompactTimes(Words words, size_t place) {
    try {
        const std::string understood = TurnRange(words, place, ClockAt(std::time(nullptr)));
        if (!understood.empty()) {
            std::fprintf(stderr, "%s\n", understood.c_str());
        }
    } catch (const TimeError& error) {
        throw UsageError(error.what());
    }
    return words;
}

ExitStatus Dispatch(const Words& words, ConsoleState& state) {
    const Command command = CommandNamed(words.front());
    return command.run(command.start == 0 ? words : WithCompactTimes(words, command.start), state);
}
}  // namespace

bool Console::IsProgram(const std::string& name) {
    const std::optional<Command> command = FindCommand(name);
    return command && command->isProgram;
}

ExitStatus Console::RunLine(std::string_view line, const std::string& place) {
    try {
        const Words words = SplitLine(line);
        const ExitStatus status = words.empty() ? STATUS_OK : Run(words, place);
        return status != STATUS_OK && IsProgram(words.front()) ? STATUS_FAILED : status;
    } catch (const UsageError& error) {
        Report(place, error.what());
        return STATUS_USAGE;
    }
}

ExitStatus Console::Run(const Words& words, const std::string& place) {
    const CommandRun run;
    ExitStatus status = STATUS_OK;
    try {
        ForgetPrinted();
        status = Dispatch(words, state);
        status = GetPrinted().hasErrorLine ? STATUS_FAILED : status;
    } catch (const UsageError& error) {
        Report(place, error.what());
        status = STATUS_USAGE;
    } catch (const std::exception& error) {
        ReportFailure(place, error.what());
        status = STATUS_FAILED;
    } catch (...) {
        ReportFailure(place, "the command ended with an unknown exception");
        status = STATUS_FAILED;
    }
    if (OutputError() != 0) {
        if (OutputError() != EPIPE) {  // of a pipe's end whoever closed it knows
            Report(place, std::string("cannot print the results: ") + std::strerror(OutputError()));
        }
        state.leaving = true;
        status = STATUS_FAILED;
    }
    if (Interrupted()) {
        Report(place, "interrupted: what is printed above is not all");
        status = STATUS_FAILED;
    }
    return status;
}
}  // namespace zorv

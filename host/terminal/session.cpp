#include "host/terminal/session.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <optional>
#include <string>

#include "host/capture/inputs.h"
#include "host/console/commands.h"
#include "host/process/interrupt.h"
#include "host/process/settings.h"
#include "host/services/console.h"
#include "host/terminal/completion.h"
#include "host/terminal/history_file.h"
#include "host/terminal/line_editor.h"
#include "text/printable.h"

namespace zorv {
namespace {
constexpr size_t LONGEST_LINE = size_t{16} << 20;  // enough for any command; an endless line must end

// Reads one line without its end; of a longer one no more than LONGEST_LINE + 1 bytes are kept.
bool ReadLine(std::streambuf& input, std::string& line) {
    using Traits = std::streambuf::traits_type;
    line.clear();
    int letter = input.sbumpc();
    if (letter == Traits::eof()) {
        return false;
    }
    for (; letter != Traits::eof() && letter != '\n'; letter = input.sbumpc()) {
        if (line.size() <= LONGEST_LINE) {
            line += Traits::to_char_type(letter);
        }
    }
    return true;
}

// None where lines would go into a file that is read, or into a capture; which is told.
std::string AllowedHistoryPath() {
    const std::string path = HistoryPath();
    const HostSettings& settings = GetHostSettings();
    const Inputs inputs = {settings.capture.value_or(settings.root), settings.capture.has_value()};
    const std::optional<std::string> reason = path.empty() ? std::nullopt : WhyNotWritten(path, inputs);
    if (reason) {
        std::fprintf(stderr, "The history is not kept: %s\n", Printable(*reason).c_str());
    }
    return reason ? "" : path;
}
}  // namespace

ExitStatus RunLinesOfInput(Console& console) {
    std::ios::sync_with_stdio(false);
    ExitStatus worst = STATUS_OK;
    std::string line;
    for (size_t number = 1; !console.IsLeaving() && ReadLine(*std::cin.rdbuf(), line); ++number) {
        const std::string place = "line " + std::to_string(number) + ": ";
        if (line.size() > LONGEST_LINE) {
            std::fprintf(stderr, "zorv-local: %slonger than %zu bytes\n", place.c_str(), LONGEST_LINE);
            worst = std::max(worst, STATUS_USAGE);
            continue;
        }
        worst = std::max(worst, console.RunLine(line, place));
    }
    return worst;
}

ExitStatus RunTerminal(Console& console) {
    TakeInterrupts();
    const std::string historyPath = AllowedHistoryPath();
    LineEditor editor(isatty(STDOUT_FILENO) == 1 ? stdout : stderr, historyPath, WordsAfter);
    std::fputs("'help' lists the commands, TAB completes them; 'quit' or Ctrl-D leaves.\n", stderr);
    bool isTold = false;
    const auto tellProblem = [&] {
        if (!isTold && !editor.HistoryProblem().empty()) {
            std::fprintf(stderr, "The history is not kept: %s: %s\n", Printable(historyPath).c_str(),
                         editor.HistoryProblem().c_str());
            isTold = true;
        }
    };
    tellProblem();
    TellConfigurationErrors();
    while (!console.IsLeaving()) {
        const std::optional<std::string> line = editor.Read();
        tellProblem();
        if (!line.has_value()) {
            std::fputs("\n", stderr);
            break;
        }
        console.RunLine(*line, "");
    }
    return OutputError() == 0 ? STATUS_OK : STATUS_FAILED;
}
}  // namespace zorv

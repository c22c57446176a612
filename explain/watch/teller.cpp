#include "explain/watch/teller.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "explain/output.h"
#include "explain/overview.h"
#include "explain/watch/exposition.h"
#include "explain/wording.h"
#include "host/process/files.h"
#include "host/process/screen.h"
#include "text/printable.h"

namespace explain {
using namespace zorv;
namespace {

constexpr const char* TO_TOP_WITHOUT_WRAPPING = "\x1b[H\x1b[?7l";
constexpr const char* CLEAR_REST_OF_LINE = "\x1b[K";
constexpr const char* CLEAR_BELOW_AND_WRAP = "\x1b[J\x1b[?7h";

void TellError(const std::string& text) {
    std::fprintf(stderr, "zorv-explain: %s\n", Printable(text).c_str());
}

// Columns and rows; none where it does not say.
std::pair<size_t, size_t> TerminalSize() {
    winsize window{};
    ioctl(STDOUT_FILENO, TIOCGWINSZ, &window);
    return {window.ws_col, window.ws_row};
}

// As many lines as there is room for, over what was there before.
std::string Painted(const std::string& text, size_t rows) {
    std::string painted = TO_TOP_WITHOUT_WRAPPING;
    size_t begin = 0;
    for (size_t row = 1; begin < text.size() && (rows == 0 || row < rows); ++row) {
        const size_t end = text.find('\n', begin);
        painted += text.substr(begin, end - begin) + CLEAR_REST_OF_LINE + "\n";
        begin = end + 1;
    }
    return painted + CLEAR_BELOW_AND_WRAP;
}

}  // namespace

Teller::Teller(const Options& options)
    : isJson(options.json),
      isPainted(!options.json && isatty(STDOUT_FILENO) == 1),
      textFile(options.textFile) {}

bool Teller::Tell(Sight sight, const ChangeList& changed, const Changes& changes) {
    const int64_t now = sight.report.madeAt;
    const int64_t zoneOffset = sight.report.zoneOffset;
    isOld = sight.IsUnread() || (sight.failure && sight.report.looks.empty());
    if (!isOld) {
        report = std::move(sight.report);
    }
    if (textFile) {
        WriteTextFile(changes, now);
    }
    std::string text;
    for (const Change& change : changed) {
        headline = Printable(LineOf(change, now, zoneOffset));
        text += (isJson ? JsonChange(change, now, zoneOffset) : headline) + "\n";
    }
    return isPainted ? Paint() : Print(text);
}

void Teller::TellInterval(std::chrono::seconds interval) {
    if (!isPainted && toldInterval != interval) {
        TellError(IntervalOf(interval.count()));
    }
    toldInterval = interval;
}

bool Teller::Glance() {
    pollfd output{STDOUT_FILENO, 0, 0};
    const bool isRead = poll(&output, 1, 0) <= 0 || (output.revents & (POLLERR | POLLHUP)) == 0;
    return isRead && (!isPainted || TerminalSize() == size || Paint());
}

bool Teller::Print(const std::string& text) const {
    try {
        PrintAnswer(text);
    } catch (const OutputError& error) {
        if (error.what()[0] != '\0') {
            throw;
        }
        return false;
    }
    return true;
}

bool Teller::Paint() {
    size = TerminalSize();
    const bool hasSeen = report.madeAt > 0;
    // The newest first: a screen of few rows cuts the end.
    std::string text = headline.empty() ? "" : headline + "\n\n";
    if (hasSeen) {
        text += (isOld ? LastSeenOf(report) + "\n\n" : "") + OverviewText(report, StyleOf(STDOUT_FILENO));
    }
    return Print(Painted(text, size.second));
}

void Teller::WriteTextFile(const Changes& changes, int64_t now) {
    constexpr mode_t FOR_ALL_TO_READ = 0644;
    std::error_code ignored;
    const bool isWritten = WriteFile(*textFile, ExpositionOf(report, changes, now)) &&
                           (!std::filesystem::is_regular_file(*textFile, ignored) ||
                            chmod(textFile->c_str(), FOR_ALL_TO_READ) == 0);
    const std::string reason =
        isWritten ? "" : "'" + *textFile + "' cannot be written: " + std::strerror(errno);
    if (!isWritten && !hasWritten) {
        throw OutputError(reason);
    }
    if (!isWritten && !isFailureTold) {
        TellError(reason);
    }
    isFailureTold = !isWritten;
    hasWritten = true;
}

}  // namespace explain

#include "host/process/error_lines.h"

#include <unistd.h>

#include <cstdio>
#include <mutex>
#include <utility>

#include "host/process/immortal.h"

namespace zorv {
namespace {
struct Lines {
    std::mutex mutex;
    int wakeDescriptor = -1;  // below 0: nobody holds the lines
    std::string held;
};

Lines& TheLines() {
    static Lines& lines = MakeImmortal<Lines>();
    return lines;
}

void Hold(Lines& lines, std::string_view text) {
    if (lines.held.empty()) {
        const char none = 0;
        static_cast<void>(write(lines.wakeDescriptor, &none, sizeof none) == sizeof none);
    }
    lines.held += text;
}

void Print(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
}
}  // namespace

void PrintErrorLines(std::string_view text) {
    Lines& lines = TheLines();
    const std::lock_guard<std::mutex> lock(lines.mutex);
    lines.wakeDescriptor < 0 ? Print(text) : Hold(lines, text);
}

ErrorLinesHeld::ErrorLinesHeld(int wakeDescriptor) {
    Lines& lines = TheLines();
    const std::lock_guard<std::mutex> lock(lines.mutex);
    lines.wakeDescriptor = wakeDescriptor;
}

ErrorLinesHeld::~ErrorLinesHeld() {
    Lines& lines = TheLines();
    const std::lock_guard<std::mutex> lock(lines.mutex);
    lines.wakeDescriptor = -1;
    Print(std::exchange(lines.held, ""));
}

std::string ErrorLinesHeld::Take() {
    Lines& lines = TheLines();
    const std::lock_guard<std::mutex> lock(lines.mutex);
    return std::exchange(lines.held, "");
}
}  // namespace zorv

// Programs that this one starts and waits for.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace zorv {
// Where a child's streams lead: to this process's own when null, else what it prints is appended there.
struct ChildStreams {
    std::string* output = nullptr;
    std::string* errors = nullptr;
    std::function<void()> onMore = nullptr;  // called, if any, when more may have been appended
};

struct ChildLimits {
    std::chrono::milliseconds time{0};  // none when 0
    size_t bytes = size_t{1} << 28;     // of either stream, when it is kept; the rest is read and left out
    // It does not get the terminal's signals: its time is over, too, when one of a TidyEnd has come. What it
    // has started itself, and left in its process group, ends with it.
    bool endsTidily = false;
};

struct ChildEnd {
    int status = 0;       // its exit status, unless a signal ended it
    int signal = 0;       // 0: none
    bool isLate = false;  // its time was over, and it was ended
};

// The program `name` in the directory of this one.
std::string ProgramBeside(const std::string& name);

// Runs `program`, which is looked for in PATH unless it has a slash, with the arguments and without standard
// input, and waits for its end; it gets the terminal's signals, unless it endsTidily. What is too late is
// ended by SIGTERM, and two seconds later by SIGKILL. Throws std::runtime_error, with an operator's sentence,
// when it cannot be run. Several threads may each have a child.
ChildEnd RunChild(const std::string& program, const std::vector<std::string>& arguments,
                  const ChildStreams& streams = {}, const ChildLimits& limits = {});
}  // namespace zorv

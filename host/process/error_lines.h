// Lines for the operator on stderr: never into the middle of a line that is being typed.
#pragma once

#include <string>
#include <string_view>

namespace zorv {
// Prints `text`, one or more whole lines with their ends, to stderr in one piece. While there is an
// ErrorLinesHeld the text waits there. Any thread.
void PrintErrorLines(std::string_view text);

// While it lives, lines for stderr are kept for the thread that owns it. There is one at a time.
class ErrorLinesHeld {
public:
    // When the first line is there to be taken, a byte with the value 0 is written to `wakeDescriptor`.
    explicit ErrorLinesHeld(int wakeDescriptor);
    // Prints what nobody has taken.
    ~ErrorLinesHeld();
    ErrorLinesHeld(const ErrorLinesHeld&) = delete;
    ErrorLinesHeld& operator=(const ErrorLinesHeld&) = delete;

    // The lines since the last call; the caller prints them.
    std::string Take();
};
}  // namespace zorv

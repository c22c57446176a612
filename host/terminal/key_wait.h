// Waiting for the next key of a line that is being typed, and for what else concerns the screen meanwhile.
#pragma once

#include <optional>
#include <string>

#include "host/process/error_lines.h"

namespace zorv {
// While it lives, signals that would change the screen or leave it in disorder are heard here. Belongs to one
// thread; there is one at a time.
class KeyWait {
public:
    // With `holdsLines`, lines for stderr are heard here too instead of being printed.
    explicit KeyWait(bool holdsLines);
    ~KeyWait();
    KeyWait(const KeyWait&) = delete;
    KeyWait& operator=(const KeyWait&) = delete;

    enum class Event {
        KEY,        // standard input can be read
        LINES,      // there are lines to print
        RESIZED,    // the terminal has another size
        CONTINUED,  // the process was stopped and goes on
        ENDED       // EndSignal() is to end the process
    };

    // Blocks until one of them is there.
    Event Next();

    std::string TakeLines() { return lines.has_value() ? lines->Take() : ""; }

    // The number of the signal that asked for the end; 0: none did.
    int EndSignal() const { return endSignal; }

private:
    std::optional<ErrorLinesHeld> lines;
    int endSignal = 0;
};
}  // namespace zorv

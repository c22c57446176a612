// The lines that an operator typed, kept from one session to the next.
#pragma once

#include <string>
#include <vector>

namespace zorv {
constexpr int HISTORY_LINES = 1000;

// Where the history is kept: ZORV_LOCAL_HISTFILE, or a file of the operator's state directory. Empty when it
// is not kept: that variable is empty or /dev/null, or there is no home.
std::string HistoryPath();

// Lines in a file that several consoles share; only its owner can read it. A console that ends in the middle
// of a call leaves a whole file. Belongs to one thread; blocks on file I/O, and a second at most for the
// others: after a failure nothing is kept any more.
class HistoryFile {
public:
    // Makes the folders of `path`; an empty path keeps nothing.
    explicit HistoryFile(std::string path);

    // The last HISTORY_LINES lines, the newest last. Removes the older ones from the file.
    std::vector<std::string> Load();

    // Adds a line, without its end, at the end of the file. One that is too long for a command is not kept.
    void Add(const std::string& line);

    // Why the file could not be read or written the last time; empty when it could.
    const std::string& Problem() const { return problem; }

private:
    const std::string path;
    std::string problem;
};
}  // namespace zorv

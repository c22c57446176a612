// Which files are looked at, so that no program writes on one of them.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zorv {
// What a program looks at.
struct Inputs {
    std::string directory;              // stands before the fixed paths; empty: nothing does
    bool isCapture = false;             // nothing in `directory` may change
    std::vector<std::string> others{};  // files that are read as well; empty names count for nothing
};

// Why nothing may be written to the file `path`: it is one of the inputs (the configuration, the databases
// and what SQLite keeps beside them, the switch's file, the alarms), or it is, or would be, in the capture.
// What the names mean counts, not how they are written: links of either kind, "..", and files that are not
// there yet. Two sentences for the operator; nothing when `path` may be written.
// Looks at names only: it opens no file, so it may be called whenever databases are open. Any thread.
std::optional<std::string> WhyNotWritten(const std::string& path, const Inputs& inputs);

// Whether two paths mean one file, in the same way.
bool IsOneFile(const std::string& path, const std::string& other);
}  // namespace zorv

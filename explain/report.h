// What the program answers, and its three forms.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "explain/analysis/analysis.h"
#include "explain/errors/error_analysis.h"
#include "explain/finding/coverage.h"
#include "explain/finding/healing.h"

namespace explain {

// What was looked at, and with what: enough to look again.
struct Stamp {
    std::string program;  // versions
    std::string sqlite;
    std::string jsoncpp;
    std::string configurationHash;  // SHA-256 of the file in hexadecimal; empty when it could not be read
    std::string databaseHash;
    std::string command;  // as it was typed, quoted for a shell where needed
};

// Words as a shell takes them back.
std::string ShellLine(const std::vector<std::string>& words);

// Versions, hashes and command line. Reads the files `configuration` and `database` as plain files: call it
// before the first connection to the database is opened, because closing a plain file drops SQLite's locks on
// it. Blocks on file I/O.
Stamp MakeStamp(const std::vector<std::string>& arguments, const std::string& configuration,
                const std::string& database);

struct Report {
    Stamp stamp;
    std::vector<std::string> again;   // the words of a command that asks the same of other points and times
    bool arePointsNamed = false;      // by whoever asks: else they are all at which hosts enter
    bool isInConsole = false;         // where that is typed: else in a shell
    std::optional<std::string> node;  // whose statistics these are
    Question question;
    int64_t zoneOffset = 0;  // seconds east of UTC
    int64_t madeAt = 0;      // UTC; now
    Coverage coverage;
    ChanceFlags flags;        // over all points that were loaded
    std::vector<Look> looks;  // one for each point that was asked for, or at which hosts enter
    std::vector<Analysis> analyses;
    bool areErrorsLookedAt = false;      // of all points of the graphs of error codes
    std::vector<ErrorLook> errorLooks;   // in the order of the columns; types without errors are left out
    std::vector<ErrorAnalysis> errors;   // what still goes on first, then the latest
    std::optional<Reason> errorsReason;  // why the errors cannot be told; none of them is then
    std::vector<Healing> healings;  // of the range and of HEALING_LOOK_BACK before it, in the order of time
    std::optional<Reason> healingsReason;  // why they cannot be told
};

// For a terminal: columns that are straight in a fixed-width font, lines of at most 80 cells, no escape
// sequences. Text that comes from outside is shown with its control characters escaped.
std::string TextReport(const Report& report);

// One JSON document that follows docs/explain.schema.json. Numbers are numbers, what is not known is null;
// the same report gives the same bytes.
std::string JsonReport(const Report& report);

// One HTML page without scripts and without anything from a network, the same for the same report. Text that
// comes from outside is escaped, and shown with its control characters as escapes.
std::string HtmlReport(const Report& report);

}  // namespace explain

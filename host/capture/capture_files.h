// Where a node's files lie in a folder that holds a copy of them.
#pragma once

#include <map>
#include <string>

#include "agent/agent_storage.h"
#include "agent/agent_switch.h"
#include "host/services/alarm.h"

namespace zorv {
constexpr const char* STATISTICS_FILE = LUMO_DATABASE_FILE;  // of two literals, which look like two elements

// The fixed paths of what is read from a node.
constexpr const char* NODE_FILES[] = {STATISTICS_FILE, ZORV_HEAL_DATABASE_FILE, ZORV_ROUTE_CONFIG_FILE,
                                      FAULT_DIAG_SWITCH_FILE, ALARM_FILE};

// At their fixed paths below the folder, or below one that is at most two levels down; or anywhere in these,
// by their names alone.
class CaptureFiles {
public:
    // Looks through `folder`, but not behind links; `archive` is what it was unpacked from, if it was. Throws
    // CaptureError when it holds several nodes. Opens no file.
    explicit CaptureFiles(const std::string& folder, const std::string& archive = "");

    // What stands before the fixed paths; the folder itself when they lead nowhere.
    const std::string& Directory() const { return directory; }

    // Those that lie elsewhere, by their fixed paths.
    const std::map<std::string, std::string>& Moved() const { return moved; }

    // The captured file that a fixed path stands for; where it would be when it is missing.
    std::string PathOf(const std::string& fixedPath) const;

    // The same as the operator knows it: in the archive, if there is one.
    std::string ShownPathOf(const std::string& fixedPath) const;

    // Where else a file that is missing was looked for, a sentence behind a blank; empty: nowhere.
    std::string LookedAt(const std::string& fixedPath) const;

private:
    const std::string folder, shown;  // the archive's name, or the folder's
    std::string directory;
    bool isSearched = false;
    std::map<std::string, std::string> moved;
};
}  // namespace zorv

// The proof of what was looked at.
#pragma once

#include <string>
#include <vector>

#include "explain/report.h"

namespace explain {

// Versions, hashes and command line. Reads the configuration and the database below `directory` as plain
// files: call it before the first connection to the database is opened, because closing a plain file drops
// SQLite's locks on it. Blocks on file I/O.
Stamp MakeStamp(const std::vector<std::string>& arguments, const std::string& directory);

}  // namespace explain

// The alarms that this host and those before it have raised on the same root.
#pragma once

#include "host/console/command_line.h"

// Runs "alarms [N]"; `words` begins with "alarms". Prints the last alarms of the alarm file, the newest last.
// Throws UsageError for other words, and std::runtime_error when the file cannot be read. Blocks on file I/O.
void RunAlarmsCommand(const Words& words);

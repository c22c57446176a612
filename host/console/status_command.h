// What this host works on.
#pragma once

#include "host/console/command_line.h"

// Runs "status"; `words` must be that one word. Prints the files, what the databases and the configuration
// hold, the switch, the alarms since the program's start and the start-up rows. Blocks for one question to
// the statistics database, which is not repeated, and one to the master node. Throws UsageError for more
// words.
void RunStatusCommand(const Words& words);

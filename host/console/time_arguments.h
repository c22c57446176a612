// The times among a command's arguments.
#pragma once

#include "host/console/command_line.h"

// The words of a command line with START and END as compact local times, as the plug-in's commands take them;
// what was understood is told on stderr. Words of other commands stay as they are. Throws UsageError when a
// time is none.
Words WithCompactTimes(Words words);

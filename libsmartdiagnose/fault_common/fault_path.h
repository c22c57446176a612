// The files that the plug-in reads, as they lie on this machine.
#pragma once

#include <string>

// `fixedPath`, one of agent/agent_storage.h, behind the root directory that the agent may define. Any thread.
std::string FaultPath(const char* fixedPath);

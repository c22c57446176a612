// The plug-in's console commands.
#pragma once

#include <cstdint>

// Registers the command group "smartdiagnose" with the agent's console. Returns 0, or 1 when the agent
// refuses it (logged). Called once, at start-up.
uint32_t FaultDiagnoseDebugInit();

// The plug-in's entry and its start-up steps. The agent calls them on its start-up thread, once.
#pragma once

#include <cstdint>

#include "fault_common/fault_export.h"

// The only entry: hands the start-up table to the agent, which runs the steps below. A failure is logged and
// absorbed; returns 0 always.
extern "C" FAULT_EXPORT uint32_t ZorvSmartDiagnoseInit();

// Creates the route configuration and reads its file. Returns 0 always: without a readable file the
// configuration is empty.
FAULT_EXPORT uint32_t ZorvSmartDiagnoseJsonObjectInit();

// Starts the hourly timer. Returns 1 when the agent refuses it.
FAULT_EXPORT uint32_t ZorvSmartDiagnoseTimerInit();

// A placeholder: the switch registers its handlers in a step of its own. Returns 0.
FAULT_EXPORT uint32_t ZorvSmartDiagnoseMsgHandleInit();

// Opens the databases and starts their watcher. Databases that do not open do not fail the step: the watcher
// tries again at the next change of the statistics file. Returns 1 when the watcher did not start.
FAULT_EXPORT uint32_t ZorvSmartDiagnoseDataBaseInit();

// Registers the console commands. Returns 1 when the agent refuses them.
FAULT_EXPORT uint32_t ZorvSmartDiagnoseDebugInit();

// The cluster-wide fault diagnosis switch (values and messages: agent/agent_switch.h). The master node keeps
// the value in a file; this unit answers the messages that set and get it, and asks the master for it.
#pragma once

#include <cstdint>

#include "agent/agent_message.h"
#include "fault_common/fault_export.h"

// Start-up step: registers the two handlers below. Returns the sum of the two registrations' results.
FAULT_EXPORT uint32_t ZorvFaultDiagSwitchMsgHandleInit();

// Stores the value of a set message, whatever it is, and acknowledges with the result of the storing. A
// malformed message is logged and not acknowledged. Runs on the agent's message threads; returns 0.
uint32_t ZorvSetFaultDiagSwitchMsgHandle(ZORV_COMM_INFO_S* info, char* msg, void* context);

// Acknowledges a get message with the value in the file, -1 when it cannot be read. Threads and result as
// above.
uint32_t ZorvGetFaultDiagSwitchMsgHandle(ZORV_COMM_INFO_S* info, char* msg, void* context);

// The switch's value: 1, 2 or 3. Asks the master each time; the node's own file stands in for a master that
// does not answer, and 2 for any value that cannot be had or is out of range. Blocks for as long as the
// agent's message service waits for an answer. Not to be called from a message handler.
int32_t ZorvCoreGetFaultDiagSwitch();

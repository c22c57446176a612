// The cluster-wide fault diagnosis switch as seen by every node: its values, its messages, its file.
#pragma once

#include <stdint.h>

// Message opcodes. Every payload is one signed 32-bit number.
//
// SET goes to the node that keeps the file; payload: the new value. The acknowledgement is the result of
// HealWriteZorvModePrivateIni() there (0: stored).
// GET goes to the master; payload: 0. The acknowledgement is the value kept there, or
// FAULT_DIAG_SWITCH_UNREADABLE.
enum { ZORV_OP_SET_FAULTDIAG_SWITCH = 0x70002120, ZORV_OP_GET_FAULTDIAG_SWITCH = 0x70002121 };

enum {
    FAULT_DIAG_SWITCH_UNREADABLE = -1,  // on the wire only
    FAULT_DIAG_SWITCH_ON = 1,           // diagnosis and alarms
    FAULT_DIAG_SWITCH_ON_SILENT = 2,    // diagnosis without alarms; the default
    FAULT_DIAG_SWITCH_OFF = 3           // the commands that obey the switch refuse to run
};

// Where the value is kept; handed to the heal service as it is.
#define FAULT_DIAG_SWITCH_FILE "/VRA/coffer_log/log/heal/data/faultDiagSwitch.ini"

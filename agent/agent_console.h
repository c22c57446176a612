// The operator's console of the host agent.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Prints to the operator's console, printf-style and unbuffered as seen by the operator: what is printed
// stands on the screen in the order of the calls. Called by command handlers on the console's thread.
void DBG_Print(const char* format, ...) __attribute__((format(printf, 1, 2)));

// A command's handler. `argv[0]` to `argv[2]` are the words with which the console reached the command (the
// local host passes "diagnose", the group's name and the command's name), the command's own arguments
// follow; `argc` counts all of them. The texts are the console's and valid for the call only. The console
// runs one handler at a time, on its own thread; a handler may block. The console ignores the result.
typedef uint32_t (*ZORV_DIAG_HANDLER)(int32_t argc, char** argv);

// One command: the word that the operator types, its handler, and the help text that the console shows.
typedef struct {
    const char* name;
    ZORV_DIAG_HANDLER handler;
    const char* help;
} ZORV_DIAG_CMD_S;

// Adds a group of commands to the console. `table` ends with a row of three nulls; it stays the caller's
// and must live as long as the process, as must `group`. Called once per group, during start-up. Returns 0;
// non-zero, and adds nothing, when an argument is null or the group is there already.
uint32_t Zorvdebug_RegDiagnose(const char* group, ZORV_DIAG_CMD_S* table);

#ifdef __cplusplus
}
#endif

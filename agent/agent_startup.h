// The start-up service of the host agent.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// One start-up step: its name (NUL-terminated), what runs it (0 = success), and a word that is the
// service's own and 0 when the table is handed over.
typedef struct {
    char name[32];
    uint32_t (*init)(void);
    uint64_t reserved;
} ZORV_MODULE_INIT_S;

// Runs the steps in table order on the calling thread, the agent's start-up thread. The table stays the
// caller's and must live as long as the process; the service may write to it. Returns 0 when every step
// did. Whether steps after a failed one are run is the agent's choice; the local host runs every step.
uint32_t ZORV_ModulesStartup(ZORV_MODULE_INIT_S* rows, uint32_t count);

#ifdef __cplusplus
}
static_assert(sizeof(ZORV_MODULE_INIT_S) == 48, "part of the binary contract");
#endif

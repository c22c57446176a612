// The timer service of the host agent.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// A timed task: a name of at most 32 characters, the time between two runs in milliseconds, 1 when the task
// repeats (0: it runs once), and what is called with which argument.
typedef struct {
    char name[33];
    uint64_t period;
    uint8_t periodic;
    void (*callback)(void* arg);
    void* arg;
} ZORV_TIMER_TASK_S;

// Adds a task; its first run is one period from now. The record is copied, `task->arg` stays the caller's.
// `module`, `function` and `line` name the caller in the agent's log. Returns 0, or non-zero when the task
// was not added. Runs of one task never overlap; they come on a thread of the service.
uint32_t ZORV_ThreadPoolAddTimerTaskSub(ZORV_TIMER_TASK_S* task, uint32_t module, const char* function,
                                        uint32_t line);

#ifdef __cplusplus
}
static_assert(sizeof(ZORV_TIMER_TASK_S) == 72, "part of the binary contract");
#endif

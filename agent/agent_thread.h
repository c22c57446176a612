// Threads of the host agent.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// What a thread runs. Returning ends the thread; nobody reads the value. No thread is ever cancelled.
typedef int32_t (*VOPX_THREAD_ENTRY)(void* arg);

// Starts a detached thread that runs entry(arg). `arg` stays the caller's and must live as long as the
// thread uses it; `flags` is 0. Returns 0, or non-zero when no thread could be started (`entry` is then
// never called). Any thread may call it; it does not wait for the new thread.
int32_t create_thread_nopreempt_raw(VOPX_THREAD_ENTRY entry, void* arg, uint32_t flags);

#ifdef __cplusplus
}
#endif

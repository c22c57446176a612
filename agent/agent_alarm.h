// The alarm service of the host agent.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Raises alarm `alarmId` in the name of `module`. `type` 1 reports a fault; `text` is copied. Returns 0 when
// the alarm was taken over, non-zero when it was lost. Any thread; may block for as long as the agent takes
// to write the alarm down. The service does not limit the rate: that is the caller's duty.
uint32_t ALM_SendAlarm(uint32_t module, uint64_t alarmId, uint32_t type, const char* text);

#ifdef __cplusplus
}
#endif

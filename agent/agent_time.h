// Time services of the host agent: clocks, calendar, sleeping.
//
// Every function may be called from any thread. None of them fails.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Broken-down time, read and written as UTC. `year` is the full year (2023), `month` runs from 1 to 12,
// `day` from 1 to 31; hour, minute and second count from 0.
typedef struct {
    int32_t second, minute, hour, day, month, year;
} VOPX_TIME_S;

// A tick counter that never goes back and is not touched by changes of the wall clock. A storage node and
// the local host count 250 ticks per second. The start value is arbitrary.
uint64_t vopx_get_jiffies(void);

// Blocks the calling thread for `ticks` times 10 ms. A signal does not shorten the wait; the local host ends
// it early while an operator stops the command that waits.
void vopx_10msleep(uint32_t ticks);

// Local time in seconds: UTC seconds since 1970 plus the zone's offset from UTC, so that
// vopx_time_gmtime() of it yields what a wall clock shows. Returns the value; stores it in `*seconds` too
// unless the pointer is null.
int64_t vopx_time_getlocaltime(int64_t* seconds);

// Breaks down `seconds` since 1970 into `*out`, with no zone applied. A time whose year does not fit 32
// bits yields all fields 0.
void vopx_time_gmtime(int64_t seconds, VOPX_TIME_S* out);

// The reverse of vopx_time_gmtime(): seconds since 1970 of `*in`. Fields out of their range carry over, as
// timegm() does it: 30 February is 1 or 2 March.
int64_t vopx_time_mktime(const VOPX_TIME_S* in);

#ifdef __cplusplus
}
#endif

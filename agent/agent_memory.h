// Bounded memory and text services of the host agent. Any thread; nothing blocks.
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Sets the first `count` bytes of `dest`, a buffer of `destMax` bytes, to `value`. Returns 0; non-zero, and
// leaves the buffer alone, when `dest` is null or `count` exceeds `destMax`.
int32_t memset_s(void* dest, size_t destMax, int32_t value, size_t count);

// Prints at most `count` characters and a terminating NUL into `dest`, a buffer of `destMax` bytes
// (`count` < `destMax`). Returns the number of characters written. A longer text is cut at `count`
// characters, is terminated, and makes the result negative. Bad arguments or a failed conversion make it
// negative too and leave an empty text where there is room for one.
int32_t snprintf_s(char* dest, size_t destMax, size_t count, const char* format, ...)
    __attribute__((format(printf, 4, 5)));

#ifdef __cplusplus
}
#endif

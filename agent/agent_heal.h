// The heal service's INI files: one persisted number per file. Section and key inside the file are the
// service's own, and so is the root directory that it puts before `path`.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Reads the number kept in the file at `path` into `*value`. Returns 0; non-zero, with `*value` unchanged,
// when the file is missing, unreadable or holds no number. `flag` is 0. Any thread; blocks on file I/O.
uint32_t HealReadZorvModePrivateIni(const char* path, int32_t* value, uint32_t flag);

// Replaces the number kept in the file at `path`. The change is atomic and durable: whatever happens, a
// reader finds the old number or the new one. Returns 0 when the new number is on disk; non-zero when the
// old one stands. `flag` is 0. Any thread; blocks on file I/O.
uint32_t HealWriteZorvModePrivateIni(const char* path, int32_t value, uint32_t flag);

#ifdef __cplusplus
}
#endif

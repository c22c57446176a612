// The log service of the host agent.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// The levels in use, most severe first.
enum { VPLOG_LEVEL_ERROR = 3, VPLOG_LEVEL_WARNING = 4, VPLOG_LEVEL_INFO = 5, VPLOG_LEVEL_DEBUG = 7 };

// Writes one line to the agent's log. `module` is the caller's module number, `level` one of the above,
// `file` the base name of the source file, `function` the operation's name; `reserved` is 0. `format` is a
// printf format without a line end. The texts are copied before the call returns.
// May be called from any thread, and from within any other service; it does not fail, and does not block
// on anything but the log's own output.
void vplog(uint32_t module, uint32_t level, const char* file, uint32_t line, const char* function,
           uint32_t reserved, const char* format, ...) __attribute__((format(printf, 7, 8)));

#ifdef __cplusplus
}
#endif

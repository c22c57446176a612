// The one way in which the plug-in logs.
#pragma once

#include <cstdint>

#include "agent/agent_log.h"

// The plug-in's module number towards every service of the agent.
constexpr uint32_t FAULT_MODULE = 422;

enum FaultLogLevel : uint32_t {
    FAULT_ERROR = VPLOG_LEVEL_ERROR,      // something failed
    FAULT_WARNING = VPLOG_LEVEL_WARNING,  // something was refused or left out
    FAULT_INFO = VPLOG_LEVEL_INFO,        // something went as planned
    FAULT_DEBUG = VPLOG_LEVEL_DEBUG       // the rest
};

// Where a log line says it comes from.
struct FaultLogSite {
    const char* file;
    uint32_t line;
    const char* function;
};

// Operators search for file:line, and know a unit by one file name. A unit of several source files defines
// its name before it includes this header; the name of a unit's only file is the unit's.
#ifndef FAULT_UNIT_FILE
#define FAULT_UNIT_FILE __FILE_NAME__
#endif

// The site of the current line; one with a fixed number, whatever line the code is on today; and one that
// names another operation than the current function.
#define FAULT_HERE FAULT_SITE(__LINE__, __func__)
#define FAULT_AT_LINE(line) FAULT_SITE(line, __func__)
#define FAULT_IN(function) FAULT_SITE(__LINE__, function)
#define FAULT_SITE(line, function)      \
    FaultLogSite {                      \
        FAULT_UNIT_FILE, line, function \
    }

// Logs one printf-style line. Any thread.
#define FAULT_LOG(site, level, ...)                                                               \
    do {                                                                                          \
        const FaultLogSite logSite = (site);                                                      \
        vplog(FAULT_MODULE, level, logSite.file, logSite.line, logSite.function, 0, __VA_ARGS__); \
    } while (false)

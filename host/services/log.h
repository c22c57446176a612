// Setting up the log, and the host's own lines in it.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <type_traits>

#include "agent/agent_log.h"

namespace zorv {
enum : uint32_t { HOST_MODULE = 1 };  // the host's own module number, in log lines and messages

// Logs one line of the host itself; the level is one of VPLOG_LEVEL_*.
#define HOST_LOG(level, ...) \
    vplog(zorv::HOST_MODULE, level, __FILE_NAME__, __LINE__, __func__, 0, __VA_ARGS__)

// Sends the log to `file`, which grows from where it ends, or to stderr when the name is empty, and drops
// what is less severe than `level`. Until then warnings and errors go to stderr. Throws a std::exception,
// and changes nothing, when the file cannot be opened. Not thread-safe: call it before other threads log.
void ConfigureLog(const std::string& file, uint32_t level);

// From now on lines for stderr are kept, the newest ones of many, until ShowHeldLog(); without one they are
// never shown. Does nothing where the log goes to a file. Not thread-safe, as ConfigureLog().
void HoldLog();

// Shows the lines that are kept, and the later ones as they come. Any thread.
void ShowHeldLog();

// The boundary around whatever runs in a service, or is called by one: returns what `work` returns, and
// `failure` when it throws; the exception is logged in the name of `service`.
template <typename Work, typename Result = std::invoke_result_t<Work>>
Result Guarded(const char* service, Result failure, Work&& work) noexcept {
    try {
        return work();
    } catch (const std::exception& error) {
        HOST_LOG(VPLOG_LEVEL_ERROR, "%s failed: %s", service, error.what());
    } catch (...) {
        HOST_LOG(VPLOG_LEVEL_ERROR, "%s failed with an unknown exception", service);
    }
    return failure;
}
}  // namespace zorv

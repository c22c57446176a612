// The one boundary at which exceptions end: nothing that the agent calls may throw into it.
#pragma once

#include <exception>
#include <utility>

#include "fault_common/fault_log.h"

// Runs `work` and returns true. An exception that leaves it ends here: it is logged with its text at level 3,
// as of `site`, and the result is false.
template <typename Work>
bool FaultRunGuarded(const FaultLogSite& site, Work&& work) noexcept {
    try {
        std::forward<Work>(work)();
        return true;
    } catch (const std::exception& error) {
        FAULT_LOG(site, FAULT_ERROR, "Unexpected error: %s.", error.what());
    } catch (...) {
        FAULT_LOG(site, FAULT_ERROR, "Unexpected error.");
    }
    return false;
}

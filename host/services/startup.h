// What became of the start-up rows.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zorv {
struct StartupResult {
    std::string name;
    uint32_t result;  // 0: success
};

// The rows that were run, in their order. Any thread.
std::vector<StartupResult> StartupResults();
}  // namespace zorv

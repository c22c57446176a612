// State that outlives static destruction.
#pragma once

#include <memory>
#include <utility>

namespace zorv {
// Makes an object that is never destroyed. The plug-in has no stop function: its threads, and handlers that
// overstay their deadline, use the services until the process is gone.
template <typename T, typename... Args>
T& MakeImmortal(Args&&... args) {
    return *std::make_unique<T>(std::forward<Args>(args)...).release();
}
}  // namespace zorv

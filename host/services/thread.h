// Starting threads.
#pragma once

#include <functional>
#include <thread>

namespace zorv {
// Starts a thread that runs `work`, which must not throw. The thread leaves the terminal's signals to the
// console's thread, whose reading of a line they interrupt. Throws std::system_error when no thread could be
// started.
std::thread StartThread(std::function<void()> work);
}  // namespace zorv

// How programs end that something went wrong in.
#pragma once

#include <functional>
#include <stdexcept>

namespace cli {

// The command line asks for what cannot be; what() tells the operator why.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

constexpr int STATUS_USAGE = 2;

// Returns what `work` returns, an exit status. What leaves it as an exception is told in a line on stderr,
// behind the program's `name` and with control characters as escapes, unless it has no text; the status is
// then STATUS_USAGE for a UsageError and for a TimeError, and `failed` for any other.
int RunProgram(const char* name, int failed, const std::function<int()>& work);

}  // namespace cli

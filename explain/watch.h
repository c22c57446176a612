// Looking again and again.
#pragma once

#include "explain/input.h"
#include "explain/options.h"

namespace explain {

// Looks every interval at the last hour and tells what changes, until SIGINT, SIGTERM or SIGHUP comes or
// nobody reads what is printed any more. Returns the exit status. Throws cli::UsageError, and
// std::runtime_error when the configuration cannot be read; a database that cannot be waits. To be called
// once, on the main thread; from then on these signals and SIGPIPE do not end the process.
int Watch(const Options& options, const Input& input);

}  // namespace explain

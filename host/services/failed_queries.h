// Queries that the plug-in has given up.
#pragma once

#include <cstddef>
#include <string>

namespace zorv {
struct FailedQueries {
    size_t count = 0;
    std::string reason;  // of the last one: file and SQLite's text; empty when SQLite did not refuse it
};

// Counts a query when a line of the plug-in's log, by its format, tells that it was given up. Any thread.
void CountFailedQuery(const char* logFormat);

// Those of the calling thread since the last call. Any thread.
FailedQueries TakeFailedQueries();
}  // namespace zorv

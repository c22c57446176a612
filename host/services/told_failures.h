// Failures of the plug-in that only its log tells: its commands and start-up steps go on without a word.
#pragma once

#include <cstddef>
#include <string>

namespace zorv {
// Takes note of a line of the plug-in's log, by its format. Any thread, as for all of these.
void NoteFailure(const char* logFormat);

struct FailedQueries {
    size_t count = 0;
    std::string reason;  // of the last one: file and SQLite's text; empty when SQLite did not refuse it
};

// The queries that the calling thread has given up since the last call.
FailedQueries TakeFailedQueries();

// Whether the plug-in could not take its configuration.
bool IsConfigurationRefused();
}  // namespace zorv

// SQL statements that the plug-in runs, as its host sees them: both use one SQLite library.
#pragma once

#include <string>

namespace zorv {
// From now on a statement of an interrupted command ends with SQLITE_INTERRUPT, whoever opened its
// connection; statements of other threads go on. So does, on every thread, one that takes steps without end.
// Call it once, before anything opens a database.
void WatchStatements();

// The connections whose last call failed, each with its file's name and SQLite's reason; empty when there is
// none. A connection that is in use at the moment is left out. Any thread; does not block.
std::string FailedStatements();
}  // namespace zorv

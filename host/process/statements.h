// SQL statements that the plug-in runs, as its host sees them: both use one SQLite library.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zorv {
// From now on a statement of an interrupted command ends with SQLITE_INTERRUPT, whoever opened its
// connection; statements of other threads go on. So does, on every thread, one that takes steps without end.
// Call it once, before anything opens a database.
void WatchStatements();

// The connections whose last call failed, each with its file's name and SQLite's reason; empty when there is
// none. A connection that is in use at the moment is left out. Any thread; does not block.
std::string FailedStatements();

// Is told of the statements that one thread runs, while they run. After one that throws it is told nothing
// more.
class StatementListener {
public:
    virtual ~StatementListener() = default;

    // A statement begins; the text is valid for the call. One that fails early may never begin.
    virtual void OnStatement(std::string_view sql) = 0;

    // It has brought a row, whose first column is this as a number.
    virtual void OnRow(int64_t first) = 0;
};

// Tells the listener of the calling thread's statements from now on, in place of the one before; none with
// null. It must live until then.
void ListenToStatements(StatementListener* listener);
}  // namespace zorv

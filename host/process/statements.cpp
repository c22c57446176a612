#include "host/process/statements.h"

#include <sqlite3.h>

#include <filesystem>
#include <mutex>
#include <set>

#include "host/process/immortal.h"
#include "host/process/interrupt.h"

namespace zorv {
namespace {
constexpr int STEPS_BETWEEN_LOOKS = 1000;  // of SQLite's virtual machine, a few microseconds
// Of one statement, a quarter of a minute: enough for a few hundred million rows. One that never ends would
// be a damaged file's, or somebody's who wants it so.
constexpr int64_t MOST_STEPS = 2'000'000'000;

thread_local int64_t g_steps = 0;  // of the statement that runs
thread_local StatementListener* g_listener = nullptr;

// SQLite holds a connection's own mutex when a connection comes or goes. Whoever holds the mutex of the set
// may therefore only try the connection's.
struct Connections {
    std::mutex mutex;
    std::set<sqlite3*> open;
};

Connections& AllConnections() {
    static Connections& connections = MakeImmortal<Connections>();
    return connections;
}

int StopIfInterruptedOrEndless(void* /*user*/) {
    g_steps += STEPS_BETWEEN_LOOKS;
    return Interrupted() || g_steps > MOST_STEPS ? 1 : 0;
}

void Forget(sqlite3* connection) {
    Connections& connections = AllConnections();
    const std::lock_guard<std::mutex> lock(connections.mutex);
    connections.open.erase(connection);
}

// SQLite's code cannot be left by an exception.
template <typename Tell>
void TellListener(Tell tell) {
    try {
        if (g_listener != nullptr) {
            tell(*g_listener);
        }
    } catch (...) {
        g_listener = nullptr;
    }
}

void Begin(sqlite3* connection, const char* sql) {
    g_steps = 0;
    if (Interrupted()) {
        sqlite3_interrupt(connection);  // a short statement would end before anybody looks
    }
    TellListener([=](StatementListener& listener) { listener.OnStatement(sql); });
}

int Trace(unsigned event, void* user, void* object, void* detail) {
    auto* const connection = static_cast<sqlite3*>(user);
    if (event == SQLITE_TRACE_ROW) {
        TellListener([=](StatementListener& listener) {
            listener.OnRow(sqlite3_column_int64(static_cast<sqlite3_stmt*>(object), 0));
        });
    } else if (event == SQLITE_TRACE_CLOSE) {
        Forget(connection);
    } else {
        Begin(connection, static_cast<const char*>(detail));
    }
    return 0;
}

int WatchConnection(sqlite3* connection, char** /*error*/, const void* /*api*/) {
    sqlite3_progress_handler(connection, STEPS_BETWEEN_LOOKS, &StopIfInterruptedOrEndless, nullptr);
    sqlite3_trace_v2(connection, SQLITE_TRACE_STMT | SQLITE_TRACE_ROW | SQLITE_TRACE_CLOSE, &Trace,
                     connection);
    Connections& connections = AllConnections();
    const std::lock_guard<std::mutex> lock(connections.mutex);
    connections.open.insert(connection);
    return SQLITE_OK;
}

// Of a connection that nobody else is using meanwhile; empty when its last call went well.
std::string FailureOf(sqlite3* connection) {
    const int code = sqlite3_errcode(connection);
    if (code == SQLITE_OK || code == SQLITE_ROW || code == SQLITE_DONE) {
        return {};
    }
    const char* const file = sqlite3_db_filename(connection, "main");
    return std::filesystem::path(file == nullptr ? "" : file).filename().string() + ": " +
           sqlite3_errmsg(connection);
}
}  // namespace

void WatchStatements() {
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(&WatchConnection));
}

std::string FailedStatements() {
    Connections& connections = AllConnections();
    const std::lock_guard<std::mutex> lock(connections.mutex);
    std::string failures;
    for (sqlite3* const connection : connections.open) {
        sqlite3_mutex* const mutex = sqlite3_db_mutex(connection);
        if (sqlite3_mutex_try(mutex) != SQLITE_OK) {
            continue;
        }
        const std::string failure = FailureOf(connection);
        sqlite3_mutex_leave(mutex);
        failures += (failures.empty() || failure.empty() ? "" : "; ") + failure;
    }
    return failures;
}

void ListenToStatements(StatementListener* listener) {
    g_listener = listener;
}
}  // namespace zorv

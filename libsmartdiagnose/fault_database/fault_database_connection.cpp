#define FAULT_UNIT_FILE "fault_database.cpp"
#include "fault_database/fault_database_connection.h"

#include <sys/stat.h>

#include "agent/agent_storage.h"
#include "fault_common/fault_log.h"
#include "fault_common/fault_path.h"

namespace {

FaultConnection& NeverDestroyed(const char* logName, const char* fixedPath) {
    return *std::make_unique<FaultConnection>(logName, fixedPath).release();
}

FaultFileIdentity IdentityOf(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return {};
    }
    return {status.st_dev, status.st_ino};
}

// Whether the file behind the connection, `opened`, is no longer the one at its path. SQLite looks at the
// path behind all links, as it was at the opening; links may lead elsewhere by now.
bool HasMoved(sqlite3* handle, const FaultFileIdentity& opened, const std::string& path) {
    int moved = 0;
    sqlite3_file_control(handle, "main", SQLITE_FCNTL_HAS_MOVED, &moved);
    const FaultFileIdentity now = IdentityOf(path);
    return moved != 0 || now.device != opened.device || now.inode != opened.inode;
}

}  // namespace

FaultConnection& FaultLumoDataBase() {
    static FaultConnection& connection = NeverDestroyed("g_lumoDataBase", LUMO_DATABASE_FILE);
    return connection;
}

FaultConnection& FaultZorvHealDataBase() {
    static FaultConnection& connection = NeverDestroyed("g_zorvHealDataBase", ZORV_HEAL_DATABASE_FILE);
    return connection;
}

int32_t FaultConnection::Open() {
    const std::string fullPath = FaultPath(path);
    // Before the opening: if the file is replaced meanwhile, the first query finds out.
    const FaultFileIdentity identity = IdentityOf(fullPath);
    sqlite3* opened = nullptr;
    const int32_t result = sqlite3_open_v2(fullPath.c_str(), &opened, SQLITE_OPEN_READONLY, nullptr);
    FaultSqliteHandle replaced(opened);  // a failed opening leaves a handle too
    if (result != SQLITE_OK) {
        return result;
    }
    {
        FaultLock lock(mutex);
        handle.swap(replaced);
        file = identity;
    }
    FAULT_LOG(FAULT_IN("FaultDataBaseInit"), FAULT_INFO, "%s is %p", name, static_cast<void*>(opened));
    return SQLITE_OK;
}

void FaultConnection::Close() {
    FaultSqliteHandle closed;
    {
        FaultLock lock(mutex);
        handle.swap(closed);
    }
    if (closed != nullptr) {
        closed.reset();
        FAULT_LOG(FAULT_IN("FaultDataBaseRelease"), FAULT_INFO, "%s is %p", name,
                  static_cast<void*>(closed.get()));
    }
}

bool FaultConnection::IsOpen() {
    FaultLock lock(mutex);
    return handle != nullptr;
}

FaultAttempt FaultConnection::Query(const std::string& sql) {
    FaultAttempt attempt;
    FaultLock lock(mutex);
    if (handle == nullptr) {
        return attempt;
    }
    char** cells = nullptr;
    char* error = nullptr;
    const int32_t result = sqlite3_get_table(handle.get(), sql.c_str(), &cells, &attempt.table.rowCount,
                                             &attempt.table.columnCount, &error);
    attempt.table.cells.reset(cells);
    const std::unique_ptr<char, decltype(&sqlite3_free)> errorOwner(error, &sqlite3_free);
    attempt.moved = HasMoved(handle.get(), file, FaultPath(path));
    attempt.ok = result == SQLITE_OK && !attempt.moved;
    attempt.error = error != nullptr ? error : "";
    return attempt;
}

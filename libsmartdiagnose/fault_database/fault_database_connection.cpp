#define FAULT_UNIT_FILE "fault_database.cpp"
#include "fault_database/fault_database_connection.h"

#include <sys/stat.h>

#include "agent/agent_storage.h"
#include "fault_common/fault_log.h"
#include "fault_common/fault_path.h"

namespace {

// A graph is read point by point, and a point's rows lie wide apart, as each sample has the rows of all
// points side by side. Two days of samples every 30 seconds are 5760 times two or three pages of 4 KiB for
// some hundred points; the next point's rows are on the same ones.
constexpr int32_t STATISTICS_CACHE_KIB = 64 * 1024;
constexpr int32_t HEAL_CACHE_KIB = 2000;  // SQLite's own bound

FaultConnection& NeverDestroyed(const char* logName, const char* fixedPath, int32_t cacheKib) {
    return *std::make_unique<FaultConnection>(logName, fixedPath, cacheKib).release();
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
    static FaultConnection& connection =
        NeverDestroyed("g_lumoDataBase", LUMO_DATABASE_FILE, STATISTICS_CACHE_KIB);
    return connection;
}

FaultConnection& FaultZorvHealDataBase() {
    static FaultConnection& connection =
        NeverDestroyed("g_zorvHealDataBase", ZORV_HEAL_DATABASE_FILE, HEAL_CACHE_KIB);
    return connection;
}

int32_t FaultConnection::Open() {
    const std::string fullPath = FaultPath(path);
    // Before the opening: if the file is replaced meanwhile, the first query finds out.
    const FaultFileIdentity identity = IdentityOf(fullPath);
    sqlite3* opened = nullptr;
    const int32_t result = sqlite3_open_v2(fullPath.c_str(), &opened, SQLITE_OPEN_READONLY, nullptr);
    FaultSqliteHandle replaced(opened);
    if (result != SQLITE_OK) {
        FaultLock lock(mutex);
        failedHandle = std::move(replaced);
        return result;
    }
    FaultAllowReadingAlone(opened);
    {
        FaultLock lock(mutex);
        handle.swap(replaced);
        // Before the new one is queried: both may use one file beside a database in WAL mode, and a process
        // that closes a file loses all its locks on it.
        replaced.reset();
        file = identity;
        isReady = false;
    }
    FAULT_LOG(FAULT_IN("FaultDataBaseInit"), FAULT_INFO, "%s is %p", name, static_cast<void*>(opened));
    return SQLITE_OK;
}

void FaultConnection::Close() {
    FaultSqliteHandle closed;
    FaultSqliteHandle closedFailure;
    {
        FaultLock lock(mutex);
        handle.swap(closed);
        failedHandle.swap(closedFailure);
    }
    if (closed != nullptr || closedFailure != nullptr) {
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
    FaultLock lock(mutex);
    if (handle == nullptr) {
        return {};
    }
    FaultAttempt attempt;
    if (!isReady) {
        // Not in Open(): the statements lock and read the file, which may just be in the making.
        attempt = FaultPrepareToRead(handle.get(), cacheKib);
        isReady = attempt.ok;
    }
    if (isReady) {
        attempt = FaultRunStatement(handle.get(), sql);
    }
    attempt.moved = HasMoved(handle.get(), file, FaultPath(path));
    attempt.ok = attempt.ok && !attempt.moved;
    if (!attempt.ok) {
        // A page that was read while the file was being written stays, as long as the file says that nothing
        // has changed since, and would fail every further attempt.
        sqlite3_db_release_memory(handle.get());
    }
    return attempt;
}

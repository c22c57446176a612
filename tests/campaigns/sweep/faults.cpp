#include "tests/campaigns/sweep/faults.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstdlib>
#include <cstring>
#include <new>

#include "support/recording_agent.h"

ArmedFault g_armed;

namespace {

sqlite3_vfs g_vfs, *g_realVfs;
sqlite3_io_methods g_file;
const sqlite3_io_methods* g_realFile;  // of databases
sqlite3_mem_methods g_realMemory;

bool Fails(Fault kind) {
    const int over = kind == g_armed.kind ? ++g_armed.calls - g_armed.number : -1;
    return over == 0 || (g_armed.forEver && over > 0);
}

template <auto& real, auto method, int error, typename... Arguments>
int Call(Arguments... arguments) {
    return Fails(Fault::FILE_CALL) ? error : (real->*method)(arguments...);
}

int Read(sqlite3_file* file, void* buffer, int length, sqlite3_int64 offset) {
    if (Fails(Fault::SHORT_READ)) {
        return memset(buffer, 0, static_cast<size_t>(length)), SQLITE_IOERR_SHORT_READ;
    }
    return Call<g_realFile, &sqlite3_io_methods::xRead, SQLITE_IOERR_READ>(file, buffer, length, offset);
}

int Open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* outFlags) {
    file->pMethods = nullptr;
    const int result =
        Call<g_realVfs, &sqlite3_vfs::xOpen, SQLITE_CANTOPEN>(vfs, name, file, flags, outFlags);
    if (result == SQLITE_OK && (flags & SQLITE_OPEN_MAIN_DB) != 0) {
        g_realFile = file->pMethods;
        g_file = *g_realFile;
        g_file.xRead = Read;
        g_file.xFileSize = Call<g_realFile, &sqlite3_io_methods::xFileSize, SQLITE_IOERR_FSTAT>;
        g_file.xLock = Call<g_realFile, &sqlite3_io_methods::xLock, SQLITE_IOERR_LOCK>;
        g_file.xUnlock = Call<g_realFile, &sqlite3_io_methods::xUnlock, SQLITE_IOERR_UNLOCK>;
        file->pMethods = &g_file;
    }
    return result;
}

}  // namespace

void InstallFaults() {
    sqlite3_config(SQLITE_CONFIG_GETMALLOC, &g_realMemory);
    sqlite3_mem_methods memory = g_realMemory;
    memory.xMalloc = [](int size) -> void* {
        return Fails(Fault::SQLITE_MEMORY) ? nullptr : g_realMemory.xMalloc(size);
    };
    memory.xRealloc = [](void* block, int size) -> void* {
        return Fails(Fault::SQLITE_MEMORY) ? nullptr : g_realMemory.xRealloc(block, size);
    };
    EXPECT_EQ(sqlite3_config(SQLITE_CONFIG_MALLOC, &memory), SQLITE_OK);
    g_realVfs = sqlite3_vfs_find(nullptr);
    g_vfs = *g_realVfs;
    g_vfs.xOpen = Open;
    g_vfs.xAccess = Call<g_realVfs, &sqlite3_vfs::xAccess, SQLITE_IOERR_ACCESS>;
    g_vfs.xFullPathname = Call<g_realVfs, &sqlite3_vfs::xFullPathname, SQLITE_CANTOPEN>;
    EXPECT_EQ(sqlite3_vfs_register(&g_vfs, 1), SQLITE_OK);
}

// What the recording agent allocates is the test's own. A sanitizer serves arrays by itself.
void* operator new(size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return !Agent::IsInside() && Fails(Fault::MEMORY) ? nullptr : malloc(size);
}
void* operator new(size_t size) {
    void* const memory = operator new(size, std::nothrow);
    return memory != nullptr ? memory : throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    free(memory);
}
void operator delete(void* memory, size_t /*size*/) noexcept {
    free(memory);
}

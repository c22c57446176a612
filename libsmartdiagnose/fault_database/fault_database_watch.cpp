#define FAULT_UNIT_FILE "fault_database.cpp"
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>

#include "agent/agent_memory.h"
#include "agent/agent_storage.h"
#include "agent/agent_thread.h"
#include "fault_common/fault_boundary.h"
#include "fault_common/fault_log.h"
#include "fault_common/fault_path.h"
#include "fault_database/fault_database.h"
#include "fault_database/fault_database_connection.h"

namespace {

constexpr uint32_t WATCHED_EVENTS = IN_CREATE | IN_DELETE | IN_MOVED_TO;
constexpr std::chrono::milliseconds BETWEEN_LOOKS{1000};
constexpr size_t EVENT_BUFFER_SIZE = 512;  // room for one event with the longest name, and a few usual ones

bool IsThere(const char* fixedPath) {
    return access(FaultPath(fixedPath).c_str(), R_OK) == 0;
}

// For what brings no event: one that was missed or dropped because too many waited, the heal database, a file
// behind a link. A connection that is open needs nothing: every answer is checked against the file at the
// path.
void OpenIfMissed() {
    if (!FaultLumoDataBase().IsOpen() && IsThere(LUMO_DATABASE_FILE) && IsThere(ZORV_HEAL_DATABASE_FILE)) {
        FaultDataBaseInit();
    }
}

// Watches the folder of the statistics database. The folder may be missing, and may be replaced, and the
// system may have no watch left: the watch is set again by path every second, which changes nothing while it
// stands.
class FaultFolderWatch {
public:
    // Sets the watch, and opens what can be opened.
    void Look() {
        nextLook = Clock::now() + BETWEEN_LOOKS;
        Set();
        OpenIfMissed();
    }

    // Waits for events until the next look at most, and handles them.
    void Wait() {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(nextLook - Clock::now());
        pollfd waiting{descriptor, POLLIN, 0};  // without a descriptor, a pause
        if (left.count() > 0 && poll(&waiting, 1, static_cast<int>(left.count())) > 0) {
            HandleEvents();
        } else {
            Look();
        }
    }

private:
    using Clock = std::chrono::steady_clock;

    void Set() {
        const std::string folder = FaultPath(LUMO_DATA_DIRECTORY);
        descriptor = descriptor < 0 ? inotify_init1(IN_CLOEXEC) : descriptor;
        const int set = descriptor < 0 ? -1 : inotify_add_watch(descriptor, folder.c_str(), WATCHED_EVENTS);
        // A folder that is missing is no failure of the watch.
        const int error = set < 0 && errno != ENOENT ? errno : 0;
        if (error != 0 && !isFailureTold) {
            FAULT_LOG(FAULT_IN("WatchDataBase"), FAULT_ERROR, "Cannot watch %s: %s.", LUMO_DATA_DIRECTORY,
                      strerror(error));
        }
        isFailureTold = error != 0;
        if (set != watch && watch >= 0) {
            inotify_rm_watch(descriptor, watch);
        }
        watch = set;
    }

    void HandleEvents() {
        alignas(inotify_event) char buffer[EVENT_BUFFER_SIZE];
        memset_s(buffer, sizeof(buffer), 0, sizeof(buffer));
        const ssize_t length = read(descriptor, buffer, sizeof(buffer));
        for (size_t offset = 0; length > 0 && offset < static_cast<size_t>(length);) {
            offset += Handle(buffer + offset);
        }
    }

    // Handles the event at `bytes`, and returns its length.
    size_t Handle(const char* bytes) {
        inotify_event event{};
        memcpy(&event, bytes, sizeof(event));
        const char* name = bytes + sizeof(event);
        if ((event.mask & IN_IGNORED) != 0 && event.wd == watch) {
            watch = -1;
        } else if (event.len > 0 && (event.mask & WATCHED_EVENTS) != 0 &&
                   strcmp(name, LUMO_DATABASE_NAME) == 0) {
            FaultDataBaseInit();
        }
        return sizeof(event) + event.len;
    }

    int descriptor = -1;
    int watch = -1;
    bool isFailureTold = false;
    Clock::time_point nextLook;
};

int32_t WatchDataBase(void* /*arg*/) {
    FaultFolderWatch watch;
    for (;;) {
        FaultRunGuarded(FAULT_HERE, [&watch] { watch.Wait(); });
    }
}

}  // namespace

uint32_t FaultDataBaseInotifyHandleInit() {
    if (create_thread_nopreempt_raw(WatchDataBase, nullptr, 0) != 0) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "Create inotify thread failed.");
    }
    return 0;
}

#define FAULT_UNIT_FILE "fault_database.cpp"
#include <poll.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

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
constexpr int WATCH_AGAIN_MILLISECONDS = 1000;
constexpr size_t EVENT_BUFFER_SIZE = 512;  // room for one event with the longest name, and a few usual ones

bool Exists(const char* fixedPath) {
    struct stat status {};
    return stat(FaultPath(fixedPath).c_str(), &status) == 0;
}

// For events that may have been missed. A connection that is open needs nothing: every answer is checked
// against the file at the path.
void OpenIfMissed() {
    if (!FaultLumoDataBase().IsOpen() && Exists(LUMO_DATABASE_FILE) && Exists(ZORV_HEAL_DATABASE_FILE)) {
        FaultDataBaseInit();
    }
}

// Watches the folder of the statistics database. The folder may be missing, and may be replaced: the watch is
// set again by path every second that brings no event, which changes nothing while it stands.
class FaultFolderWatch {
public:
    explicit FaultFolderWatch(int inotifyDescriptor) : descriptor(inotifyDescriptor) {}

    void Set() {
        const int set = inotify_add_watch(descriptor, FaultPath(LUMO_DATA_DIRECTORY).c_str(), WATCHED_EVENTS);
        if (set == watch) {
            return;
        }
        if (watch >= 0) {
            inotify_rm_watch(descriptor, watch);
        }
        watch = set;
        if (watch >= 0) {
            OpenIfMissed();
        }
    }

    // Waits for events, for a second at most, and handles them.
    void Wait() {
        pollfd waiting{descriptor, POLLIN, 0};
        const int ready = poll(&waiting, 1, WATCH_AGAIN_MILLISECONDS);
        if (ready == 0) {
            Set();
        }
        if (ready <= 0) {
            return;
        }
        alignas(inotify_event) char buffer[EVENT_BUFFER_SIZE];
        memset_s(buffer, sizeof(buffer), 0, sizeof(buffer));
        const ssize_t length = read(descriptor, buffer, sizeof(buffer));
        for (size_t offset = 0; length > 0 && offset < static_cast<size_t>(length);) {
            offset += Handle(buffer + offset);
        }
    }

private:
    // Handles the event at `bytes`, and returns its length.
    size_t Handle(const char* bytes) {
        inotify_event event{};
        memcpy(&event, bytes, sizeof(event));
        const char* name = bytes + sizeof(event);
        if ((event.mask & IN_Q_OVERFLOW) != 0) {
            OpenIfMissed();
        } else if ((event.mask & IN_IGNORED) != 0 && event.wd == watch) {
            watch = -1;
        } else if (event.len > 0 && (event.mask & WATCHED_EVENTS) != 0 &&
                   strcmp(name, LUMO_DATABASE_NAME) == 0) {
            FaultDataBaseInit();
        }
        return sizeof(event) + event.len;
    }

    const int descriptor;
    int watch = -1;
};

int32_t WatchDataBase(void* /*arg*/) {
    const int descriptor = inotify_init1(IN_CLOEXEC);
    if (descriptor < 0) {
        return 1;
    }
    FaultFolderWatch watch(descriptor);
    FaultRunGuarded(FAULT_HERE, [&watch] { watch.Set(); });
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

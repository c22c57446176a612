#include "host/collecting/collector.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <utility>

#include "agent/agent_storage.h"
#include "agent/agent_switch.h"
#include "host/capture/captured_database.h"
#include "host/capture/table_spans.h"
#include "host/collecting/archive_writer.h"
#include "host/collecting/backup.h"
#include "host/process/files.h"
#include "host/process/guarded_database.h"
#include "host/process/settings.h"
#include "host/services/alarm.h"
#include "text/file_hash.h"
#include "text/local_time.h"

namespace zorv {
namespace {
namespace fs = std::filesystem;

constexpr const char* ENDING = ".tar.zst";
constexpr const char* OTHER_ENDINGS[] = {".tar", ".gz",   ".tgz", ".xz", ".txz",
                                         ".zst", ".tzst", ".bz2", ".zip"};

struct NodeFile {
    const char* path;
    bool isDatabase;
    const char* withoutIt;  // null: many nodes do
};

constexpr NodeFile FILES[] = {
    {LUMO_DATABASE_FILE, true, "there is nothing to capture"},
    {ZORV_HEAL_DATABASE_FILE, true, "look at the capture with --empty-heal"},
    {ZORV_ROUTE_CONFIG_FILE, false, "no causes will be found"},
    {FAULT_DIAG_SWITCH_FILE, false, nullptr},
    {ALARM_FILE, false, nullptr},
};

bool IsStatistics(const NodeFile& file) {
    return std::strcmp(file.path, LUMO_DATABASE_FILE) == 0;
}

bool EndsIn(const std::string& text, const std::string& end) {
    return text.size() > end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

[[noreturn]] void FailAt(const std::string& what) {
    throw CaptureError(what + ": " + std::strerror(errno) + ".");
}

// Where the capture goes.
class Target {
public:
    explicit Target(const std::string& given)
        : path(fs::absolute(given).lexically_normal()), isArchive(EndsIn(path.filename(), ENDING)) {
        if (!path.has_filename()) {  // "node1/"
            path = path.parent_path();
        }
        for (const char* const ending : OTHER_ENDINGS) {
            if (!isArchive && EndsIn(path.filename(), ending)) {
                throw CaptureError("'" + given + "' cannot be written: an archive is packed as " + ENDING +
                                   ". Name it so, or name a folder.");
            }
        }
        std::error_code error;
        const bool isThere = fs::exists(fs::symlink_status(path, error));
        if (isThere && (fs::is_directory(path) == isArchive || !fs::is_empty(path, error) || error)) {
            throw CaptureError("'" + given + "' is there already: nothing is replaced. Name another target.");
        }
        if (!fs::is_directory(path.parent_path(), error)) {
            throw CaptureError("'" + given + "' cannot be written: the folder " +
                               path.parent_path().string() + " is not there.");
        }
    }

    // Without what tells how it is packed.
    std::string Name() const {
        const std::string name = path.filename();
        return isArchive ? name.substr(0, name.size() - std::strlen(ENDING)) : name;
    }

    fs::path path;
    bool isArchive;
};

// A folder beside the target; gone with its owner, and all in it.
class Workshop {
public:
    explicit Workshop(const Target& target)
        : path(target.path.parent_path() / ("." + target.path.filename().string() + ".XXXXXX")) {
        if (mkdtemp(path.data()) == nullptr) {
            FailAt("nothing can be written in " + target.path.parent_path().string());
        }
    }
    ~Workshop() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
    Workshop(const Workshop&) = delete;
    Workshop& operator=(const Workshop&) = delete;

    const std::string& Path() const { return path; }

private:
    std::string path;
};

void Sync(const fs::path& path) {
    const OwnedFd file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file || fsync(file.Get()) != 0) {
        FailAt(path.string() + " cannot be brought to disk");
    }
}

void SyncAll(const std::string& folder) {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        Sync(entry.path());
    }
    Sync(folder);
}

void CheckSpace(const std::string& folder) {
    uintmax_t needed = 0;
    for (const NodeFile& file : FILES) {
        struct stat status {};
        needed +=
            stat(RootedPath(file.path).c_str(), &status) == 0 ? static_cast<uintmax_t>(status.st_size) : 0;
    }
    std::error_code error;
    const fs::space_info space = fs::space(folder, error);
    if (!error && space.available < needed) {
        throw CaptureError("there is no space for a capture: it takes " + std::to_string(needed) +
                           " bytes, and " + folder + " has " + std::to_string(space.available) + ".");
    }
}

class Collecting {
public:
    Collecting(const CaptureOrder& toTake, const std::string& to, CaptureTaken& toTell)
        : order(toTake), folder(to), taken(toTell) {}

    void Run() {
        taken.manifest.node = order.node;
        taken.manifest.number = order.number;
        taken.manifest.takenAt = std::time(nullptr);
        taken.manifest.zoneOffset = ZoneOffsetAt(taken.manifest.takenAt);
        taken.manifest.versions = {{"zorv-local", ZORV_LOCAL_VERSION}, {"SQLite", sqlite3_libversion()}};
        for (const NodeFile& file : FILES) {
            Take(file);
        }
        TakeRows();
        std::ofstream stream(folder + MANIFEST_FILE);
        stream << ManifestText(taken.manifest);
        if (!stream.flush()) {
            FailAt(folder + MANIFEST_FILE + " cannot be written");
        }
    }

private:
    void Take(const NodeFile& file) {
        const std::string from = RootedPath(file.path);
        const std::string to = folder + file.path;
        std::error_code error;
        if (!fs::is_regular_file(from, error)) {
            return Lacks(file, from + " is not there");
        }
        fs::create_directories(fs::path(to).parent_path());
        Manifest::File told{file.path};
        if (file.isDatabase) {
            told.copying = BackUp(from, to, order.limit, [&](double done) {
                order.show("copying " + fs::path(from).filename().string(), done);
            });
            if (!told.copying) {
                return Lacks(file, from + " is empty");
            }
        } else if (!fs::copy_file(from, to, error)) {
            throw CaptureError(from + " cannot be copied: " + error.message() + ".");
        }
        told.bytes = fs::file_size(to);
        told.hash = HashOfFile(to);
        taken.manifest.files.push_back(told);
    }

    void Lacks(const NodeFile& file, const std::string& what) {
        if (IsStatistics(file)) {
            throw CaptureError(what + ": " + file.withoutIt +
                               ". Its writer may be making it anew: try again.");
        }
        if (file.withoutIt != nullptr) {
            taken.notes.push_back(what + ": " + file.withoutIt + ".");
        }
    }

    void TakeRows() {
        try {
            const std::vector<TableSpan> spans = TableSpansOf(folder + LUMO_DATABASE_FILE);
            if (!spans.empty()) {
                taken.manifest.rows = TableSpan::Rows{spans.front().rows.start, spans.back().rows.end};
            }
        } catch (const DatabaseError& error) {
            taken.notes.push_back(
                "which time the statistics cover is not known: " + std::string(error.what()) + ".");
        }
    }

    const CaptureOrder& order;
    const std::string folder;
    CaptureTaken& taken;
};
}  // namespace

CaptureTaken TakeCapture(const CaptureOrder& order) {
    if (!IsNodeName(order.node)) {
        throw CaptureError("a node's name has at most " + std::to_string(LONGEST_NODE_NAME) +
                           " bytes, all of which can be printed. Name it with --name.");
    }
    const Target target(order.target);
    CheckSpace(target.path.parent_path());
    CaptureTaken taken;
    const Workshop workshop(target);
    const std::string folder = workshop.Path() + "/" + target.Name();
    fs::create_directory(folder);
    fs::permissions(folder, fs::perms::owner_all);
    Collecting(order, folder, taken).Run();
    fs::path made = folder;
    if (target.isArchive) {
        made += ENDING;
        Pack(folder, target.Name(), made, [&](double done) { order.show("packing", done); });
    } else {
        SyncAll(folder);
    }
    if (std::rename(made.c_str(), target.path.c_str()) != 0) {
        FailAt("'" + order.target + "' cannot be written");
    }
    Sync(target.path.parent_path());
    return taken;
}
}  // namespace zorv

#include "host/capture/capture.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <optional>
#include <utility>

#include "host/capture/capture_zone.h"
#include "host/capture/inputs.h"
#include "host/capture/kept_archives.h"
#include "host/capture/write_ahead_log.h"
#include "text/file_hash.h"
#include "text/local_time.h"

namespace zorv {
namespace {
namespace fs = std::filesystem;

// Names the temporary root for programs that this one starts. A link in it tells of which capture it is.
constexpr const char* ROOT_VARIABLE = "ZORV_CAPTURE_ROOT";
constexpr const char* CAPTURE_LINK = "/capture";
constexpr const char* UNPACKED = "/unpacked";  // in it, the files of an archive
constexpr uintmax_t LARGEST_SMALL_FILE = 64 << 20;

struct Database {
    const char* path;
    std::vector<std::string> tables;
    const char* withoutIt;
    const char* standIn;  // makes an empty one; null: nothing can stand in
};

const std::vector<Database>& Databases() {
    static const std::vector<Database> databases = {
        {LUMO_DATABASE_FILE,
         {"table_flag", "version_nmaps"},
         "without the statistics there is nothing to diagnose. Copy it from the node",
         nullptr},
        {ZORV_HEAL_DATABASE_FILE,
         {"fault_heal_event"},
         "without the healing events the plug-in opens no database. Copy it from the node, or go on without "
         "healing events by --empty-heal",
         "create table fault_heal_event(healtime integer, modulename text, healcause text, infercause text,"
         " nodeid integer);"},
    };
    return databases;
}

// Fills the temporary root `root` for the captured files.
class Preparation {
public:
    Preparation(const CaptureFiles& from, std::string to, bool mayStandIn, std::vector<std::string>& toTell)

        : files(from), root(std::move(to)), emptyHeal(mayStandIn), notes(toTell) {}

    // All databases are looked at before SQLite opens the first.
    void Run() {
        for (const Database& database : Databases()) {
            TakeIn(database);
        }
        LinkIfThere(FAULT_DIAG_SWITCH_FILE);
        CheckSmall(ALARM_FILE);
        CopyIfThere(ALARM_FILE);
        CheckSmall(ZORV_ROUTE_CONFIG_FILE);
        if (!LinkIfThere(ZORV_ROUTE_CONFIG_FILE)) {
            notes.push_back(
                files.ShownPathOf(ZORV_ROUTE_CONFIG_FILE) +
                " is missing: there are no graphs, so no causes are found. Copy it from the node." +
                files.LookedAt(ZORV_ROUTE_CONFIG_FILE));
        }
        for (const auto& write : writes) {
            write();
        }
        for (const Database& database : Databases()) {
            CheckTables(root + database.path, database.tables, files.PathOf(database.path));
        }
    }

private:
    void TakeIn(const Database& database) {
        const std::string path = files.PathOf(database.path);
        const std::string taken = PlaceFor(database.path);
        std::error_code error;
        const fs::file_status status = fs::symlink_status(path, error);
        if (!fs::status_known(status)) {
            throw CaptureError(path + " cannot be looked at: " + error.message() + ".");
        }
        const bool isMissing = !fs::exists(status);
        if (isMissing || (fs::is_regular_file(path, error) && fs::file_size(path) == 0)) {
            return MakeStandIn(
                database, files.ShownPathOf(database.path) + (isMissing ? " is missing: " : " is empty: "),
                taken);
        }
        const CapturedDatabase found = LookAtDatabase(path);
        if (!found.NeedsCopy()) {
            return fs::create_symlink(found.path, taken);
        }
        Tell(path, found, CopyDatabase(found, taken));
        TellLosses(path, found, taken);
        writes.emplace_back([=] { SettleCopy(taken, path); });
    }

    void MakeStandIn(const Database& database, const std::string& what, const std::string& taken) {
        if (!emptyHeal || database.standIn == nullptr) {
            throw CaptureError(what + database.withoutIt + "." + files.LookedAt(database.path));
        }
        notes.push_back(what + "an empty one stands in, so no healing events are told.");
        writes.emplace_back([=, &database] { MakeDatabase(taken, database.standIn); });
    }

    void Tell(const std::string& path, const CapturedDatabase& found, uint64_t bytes) {
        const std::string why = found.isHot ? " has a transaction that was left unfinished, it is rolled back"
                                : found.isWal  ? " is in WAL mode"
                                : found.hasWal ? " has a -wal file beside it"
                                               : " has a -journal beside it that is no file, it is left out";
        notes.push_back(path + why + ": working on a copy of " + std::to_string(bytes) + " bytes in " + root +
                        ".");
        if (found.isWal && found.walSize == 0) {
            notes.push_back(
                path +
                "-wal is missing or empty: unless the node had closed the database, its newest rows "
                "are missing. Copy both from the node again.");
        }
    }

    // Looks at the copy, which nobody changes. What lies beside a database that is in another mode may be
    // anything.
    void TellLosses(const std::string& path, const CapturedDatabase& found, const std::string& copy) {
        if (found.walSize == 0) {
            return;
        }
        const WriteAheadLog log = ReadWriteAheadLog(copy + "-wal");
        const std::string losses = LossesOf(log, path + "-wal");
        if (!losses.empty() && (found.isWal || log.isSound)) {
            notes.push_back(losses);
        }
    }

    // Before it is read whole, or copied.
    void CheckSmall(const char* path) const {
        std::error_code error;
        const uintmax_t size = fs::file_size(files.PathOf(path), error);
        if (!error && size > LARGEST_SMALL_FILE) {
            throw CaptureError(files.PathOf(path) + " has " + std::to_string(size) +
                               " bytes, far more than on any node. Copy it from the node again.");
        }
    }

    bool LinkIfThere(const char* path) const {
        std::error_code ignored;
        const bool isThere = fs::exists(files.PathOf(path), ignored);
        if (isThere) {
            fs::create_symlink(files.PathOf(path), PlaceFor(path));
        }
        return isThere;
    }

    // Of a file that is appended to.
    void CopyIfThere(const char* path) const {
        std::error_code ignored;
        if (fs::is_regular_file(files.PathOf(path), ignored)) {
            CopyFile(files.PathOf(path), PlaceFor(path));
        }
    }

    // Where a file of the capture belongs in the root; its directory is there.
    std::string PlaceFor(const char* path) const {
        std::string place = root + path;
        fs::create_directories(fs::path(place).parent_path());
        return place;
    }

    const CaptureFiles& files;
    const std::string root;
    const bool emptyHeal;
    std::vector<std::function<void()>> writes;  // by SQLite
    std::vector<std::string>& notes;
};

std::string CheckedName(const std::string& capture) {
    std::error_code ignored;
    if (!fs::is_directory(capture, ignored) && !fs::is_regular_file(capture, ignored)) {
        throw CaptureError(
            "the capture '" + capture +
            "' is neither a directory nor an archive. Name the one that holds the node's folder VRA.");
    }
    return fs::absolute(capture).lexically_normal();
}

// The root that the program which started this one has made of the capture.
std::optional<std::string> RootOfStarter(const std::string& capture) {
    const char* const root = std::getenv(ROOT_VARIABLE);
    std::error_code error;
    const bool isOfCapture =
        root != nullptr && fs::read_symlink(std::string(root) + CAPTURE_LINK, error) == capture && !error;
    return isOfCapture ? std::optional<std::string>(root) : std::nullopt;
}
}  // namespace

Capture::Capture(const std::string& givenName, bool emptyHeal, bool wantsZone) {
    const std::string name = CheckedName(givenName);
    if (const std::optional<std::string> given = RootOfStarter(name)) {
        root = *given;
        files = std::make_unique<CaptureFiles>(name);
        manifest = ReadManifest(files->PathOf(MANIFEST_FILE));
    } else {
        Prepare(name, emptyHeal);
    }
    if (wantsZone) {
        const CaptureZone found = ZoneOf(manifest, root + LUMO_DATABASE_FILE);
        zone = found.offset;
        notes.push_back(found.note);
    }
}

void Capture::Prepare(const std::string& name, bool emptyHeal) {
    if (WhyNotWritten(TemporaryPlace() + "/root", {name, true})) {
        throw CaptureError("the temporary directory " + TemporaryPlace() + " lies in the capture " + name +
                           ", where nothing may change. Name another place with TMPDIR.");
    }
    temporary = std::make_unique<TemporaryDirectory>();
    root = temporary->Path();
    files = FilesIn(name);
    manifest = ReadManifest(files->PathOf(MANIFEST_FILE));
    CompareWithManifest();  // before SQLite opens the first
    Preparation(*files, root, emptyHeal, notes).Run();
    fs::create_directory_symlink(Directory(), root + CAPTURE_LINK);
    setenv(ROOT_VARIABLE, root.c_str(), 1);
}

std::optional<std::string> Capture::Node() const {
    return manifest ? std::optional<std::string>(manifest->node) : std::nullopt;
}

std::optional<std::string> Capture::Zone() const {
    return zone ? std::optional<std::string>(ZoneText(*zone)) : std::nullopt;
}

std::unique_ptr<CaptureFiles> Capture::FilesIn(const std::string& name) const {
    if (fs::is_directory(name)) {
        return std::make_unique<CaptureFiles>(name);
    }
    return std::make_unique<CaptureFiles>(UnpackOnce(name, root + UNPACKED), name);
}

// A manifest comes from anywhere: of its paths those of a node's files alone are looked at, and once.
void Capture::CompareWithManifest() {
    const std::vector<Manifest::File> told = manifest ? manifest->files : std::vector<Manifest::File>();
    for (const char* const file : NODE_FILES) {
        const auto taken =
            std::find_if(told.begin(), told.end(), [&](const auto& one) { return one.path == file; });
        const std::string path = files->PathOf(file);
        std::error_code error;
        if (taken != told.end() &&
            (fs::file_size(path, error) != taken->bytes || HashOfFile(path) != taken->hash)) {
            notes.push_back(files->ShownPathOf(file) +
                            " is not what the manifest tells of: it was changed, damaged or left out "
                            "since it was taken.");
        }
    }
}

}  // namespace zorv

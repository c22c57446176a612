#include "host/capture/inputs.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "host/capture/capture_files.h"

namespace zorv {
namespace {
namespace fs = std::filesystem;

constexpr int MOST_LINKS = 40;  // the kernel follows no more either
constexpr const char* DATABASES[] = {LUMO_DATABASE_FILE, ZORV_HEAL_DATABASE_FILE};
constexpr const char* BESIDE_DATABASES[] = {"-wal", "-journal", "-shm"};

// What a path leads to, whatever it is called; nothing when nothing is there.
using Identity = std::optional<std::pair<dev_t, ino_t>>;

Identity IdentityOf(const fs::path& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? Identity({status.st_dev, status.st_ino}) : std::nullopt;
}

// Where a file that is written as `path` lies, or would lie: behind links, also those that lead to no file.
fs::path Destination(const fs::path& path) {
    std::error_code error;
    fs::path end = fs::absolute(path, error);
    for (int links = 0; links < MOST_LINKS; ++links) {
        const fs::path target = fs::read_symlink(end, error);
        if (error) {
            break;
        }
        end = end.parent_path() / target;
    }
    const fs::path folder = fs::weakly_canonical(end.parent_path(), error);
    return error ? end : folder / end.filename();
}

bool IsSameFile(const fs::path& one, const fs::path& other) {
    const Identity folder = IdentityOf(one.parent_path());
    const bool isSameFolder = folder && folder == IdentityOf(other.parent_path());
    if (one == other || (isSameFolder && one.filename() == other.filename())) {
        return true;
    }
    std::error_code ignored;  // a hard link; many may read and write one device
    return fs::is_regular_file(one, ignored) && IdentityOf(one) == IdentityOf(other);
}

// With the names as the operator knows them.
std::vector<std::pair<std::string, fs::path>> FilesOf(const Inputs& inputs) {
    std::vector<std::pair<std::string, fs::path>> files;
    if (!inputs.directory.empty()) {  // an archive
        files.emplace_back(inputs.directory, Destination(inputs.directory));
    }
    for (const char* const file : NODE_FILES) {
        files.emplace_back(inputs.directory + file, Destination(inputs.directory + file));
    }
    for (const char* const database : DATABASES) {
        const std::string named = inputs.directory + database;
        for (const char* const ending : BESIDE_DATABASES) {
            files.emplace_back(named + ending, Destination(named) += ending);
        }
    }
    for (const std::string& other : inputs.others) {
        if (!other.empty()) {
            files.emplace_back(other, Destination(other));
        }
    }
    return files;
}

// The capture's own folder, and those that lead to the fixed files, which may be links out of it.
std::vector<Identity> FoldersOf(const std::string& capture) {
    std::vector<Identity> folders = {IdentityOf(capture)};
    for (const char* const file : NODE_FILES) {
        for (fs::path folder = fs::path(file).parent_path(); folder != "/"; folder = folder.parent_path()) {
            folders.push_back(IdentityOf(capture + folder.string()));
        }
    }
    return folders;
}

bool HasFile(const std::string& capture, const fs::path& file) {
    std::error_code error;
    if (!fs::is_regular_file(file, error) || fs::hard_link_count(file, error) < 2) {
        return false;
    }
    fs::recursive_directory_iterator files(capture, error);
    for (; !error && files != fs::recursive_directory_iterator(); files.increment(error)) {
        if (IdentityOf(files->path()) == IdentityOf(file)) {
            return true;
        }
    }
    return false;
}

bool IsIn(const std::string& capture, const fs::path& file) {
    const std::vector<Identity> folders = FoldersOf(capture);
    for (fs::path folder = file; folder.has_relative_path();) {
        folder = folder.parent_path();
        const Identity found = IdentityOf(folder);
        if (found && std::find(folders.begin(), folders.end(), found) != folders.end()) {
            return true;
        }
    }
    return HasFile(capture, file);
}
}  // namespace

std::optional<std::string> WhyNotWritten(const std::string& path, const Inputs& inputs) {
    const fs::path file = Destination(path);
    const auto files = FilesOf(inputs);
    const auto same = std::find_if(files.begin(), files.end(),
                                   [&](const auto& one) { return IsSameFile(file, one.second); });
    if (same != files.end()) {
        return "'" + path + "' is not written: it is " + same->first + ", which is read. Name another file.";
    }
    if (inputs.isCapture && IsIn(inputs.directory, file)) {
        return "'" + path + "' is not written: it is in the capture " + inputs.directory +
               ", where nothing may change. Name another file.";
    }
    return std::nullopt;
}

bool IsOneFile(const std::string& path, const std::string& other) {
    return IsSameFile(Destination(path), Destination(other));
}
}  // namespace zorv

#include "host/capture/capture_files.h"

#include <filesystem>
#include <set>
#include <vector>

#include "host/capture/captured_database.h"
#include "host/capture/manifest.h"

namespace zorv {
namespace {
namespace fs = std::filesystem;

constexpr const char* NODE_FOLDER = "VRA";  // with which all fixed paths begin
constexpr int DEEPEST = 2;                  // levels below the folder

std::string NameOf(const std::string& path) {
    return fs::path(path).filename();
}

struct Found {
    std::vector<std::string> nodes;                         // the folders of the folders VRA
    std::map<std::string, std::vector<std::string>> files;  // by their names, outside of these
};

bool IsFolder(const fs::directory_entry& entry) {
    std::error_code ignored;
    return entry.is_directory(ignored) && entry.path().filename() == NODE_FOLDER;
}

Found LookThrough(const std::string& folder) {
    std::set<std::string> wanted;
    for (const char* const file : NODE_FILES) {
        wanted.insert(NameOf(file));
    }
    Found found;
    std::error_code error;
    fs::recursive_directory_iterator below(folder, fs::directory_options::skip_permission_denied, error);
    for (; !error && below != fs::recursive_directory_iterator(); below.increment(error)) {
        const bool isNode = IsFolder(*below);
        if (isNode) {
            found.nodes.push_back(below->path().parent_path());
        } else if (const std::string name = below->path().filename(); wanted.count(name) > 0) {
            found.files[name].push_back(below->path());
        }
        if (isNode || below.depth() == DEEPEST) {
            below.disable_recursion_pending();
        }
    }
    return found;
}

[[noreturn]] void FailForSeveral(const std::string& folder, const std::string& shown,
                                 const std::vector<std::string>& places) {
    throw CaptureError(shown + " holds several nodes, in " + places[0].substr(folder.size()) + " and " +
                       places[1].substr(folder.size()) + " among others. " +
                       (shown == folder ? "Name" : "Unpack it and name") + " one of them.");
}
}  // namespace

CaptureFiles::CaptureFiles(const std::string& name, const std::string& archive)
    : folder(name), shown(archive.empty() ? name : archive), directory(name) {
    std::error_code ignored;
    if (fs::is_directory(folder + "/" + NODE_FOLDER, ignored)) {
        return;
    }
    isSearched = true;
    const Found found = LookThrough(folder);
    if (found.nodes.size() > 1) {
        FailForSeveral(folder, shown, found.nodes);
    }
    directory = found.nodes.empty() ? folder : found.nodes.front();
    for (const char* const file : NODE_FILES) {
        const auto places = found.files.find(NameOf(file));
        if (places == found.files.end() || fs::exists(fs::symlink_status(directory + file, ignored))) {
            continue;
        }
        if (places->second.size() > 1) {
            FailForSeveral(folder, shown, places->second);
        }
        moved[file] = places->second.front();
    }
    // It tells of the files that it lies beside, and has a name that others have, too.
    if (const auto statistics = moved.find(LUMO_DATABASE_FILE); statistics != moved.end()) {
        moved[MANIFEST_FILE] = fs::path(statistics->second).parent_path().string() + MANIFEST_FILE;
    }
}

std::string CaptureFiles::PathOf(const std::string& fixedPath) const {
    const auto other = moved.find(fixedPath);
    return other == moved.end() ? directory + fixedPath : other->second;
}

std::string CaptureFiles::ShownPathOf(const std::string& fixedPath) const {
    return shown + PathOf(fixedPath).substr(folder.size());
}

std::string CaptureFiles::LookedAt(const std::string& fixedPath) const {
    return isSearched ? " Looked for a folder " + std::string(NODE_FOLDER) + " and for a file " +
                            NameOf(fixedPath) + " in " + shown + " and up to two levels below."
                      : "";
}
}  // namespace zorv

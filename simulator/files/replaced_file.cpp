#include "simulator/files/replaced_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace lumosim {
namespace fs = std::filesystem;

namespace {

constexpr char MARK[] = ".lumo-sim-";     // nobody else's files have it behind their names
constexpr char RANDOM_PART[] = "XXXXXX";  // as mkstemp() wants it

void RemoveLeftOvers(const fs::path& target) {
    const std::string begin = target.filename().string() + MARK;
    for (const auto& entry : fs::directory_iterator(target.parent_path())) {
        const std::string name = entry.path().filename().string();
        if (name.size() == begin.size() + std::strlen(RANDOM_PART) &&
            name.compare(0, begin.size(), begin) == 0 && fs::is_regular_file(entry.symlink_status())) {
            fs::remove(entry.path());
        }
    }
}

// What the old file had, or what a new one gets.
void SetAccess(int fd, const fs::path& target) {
    struct stat old {};
    if (stat(target.c_str(), &old) != 0) {
        const mode_t mask = umask(0);
        umask(mask);
        old.st_mode = 0666 & ~mask;
    } else if (fchown(fd, old.st_uid, old.st_gid) != 0) {
        old.st_mode &= 0777;  // of another owner: without what stands for him
    }
    fchmod(fd, old.st_mode & 07777);
}

fs::path NewFileBeside(const fs::path& target) {
    std::string name = target.string() + MARK + RANDOM_PART;
    const int fd = mkostemp(name.data(), O_CLOEXEC);
    if (fd < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot write beside " + target.string());
    }
    SetAccess(fd, target);
    close(fd);
    return name;
}

}  // namespace

ReplacedFile::ReplacedFile(fs::path file) : target(std::move(file)) {
    if (fs::is_directory(fs::symlink_status(target))) {  // found out before anything else is replaced
        throw std::system_error(EISDIR, std::generic_category(), "cannot write " + target.string());
    }
    fs::create_directories(target.parent_path());
    RemoveLeftOvers(target);
    newPath = NewFileBeside(target);
}

ReplacedFile::ReplacedFile(ReplacedFile&& other) noexcept
    : target(std::move(other.target)), newPath(std::exchange(other.newPath, {})) {}

ReplacedFile::~ReplacedFile() {
    if (!newPath.empty()) {
        std::error_code ignored;
        fs::remove(newPath, ignored);
    }
}

void ReplacedFile::Write(const std::string& text) const {
    std::ofstream stream(newPath, std::ios::binary);
    stream << text;
    stream.close();
    if (!stream) {
        throw std::runtime_error("cannot write " + newPath.string());
    }
}

void ReplacedFile::Commit() {
    try {
        RemoveJournals(target);
        fs::rename(newPath, target);
    } catch (const fs::filesystem_error& error) {
        throw std::system_error(error.code(), "cannot write " + target.string());
    }
    newPath.clear();
}

void RemoveJournals(const fs::path& database) {
    for (const char* suffix : {"-journal", "-wal", "-shm"}) {
        fs::remove(database.string() + suffix);
    }
}

}  // namespace lumosim

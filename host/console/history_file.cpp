#include "host/console/history_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <utility>

#include "host/process/files.h"

namespace {
constexpr mode_t DIRECTORY_MODE = 0700;
constexpr mode_t FILE_MODE = 0600;
constexpr size_t LONGEST_LINE = 4096;
constexpr size_t LARGEST_FILE = LONGEST_LINE * 2 * HISTORY_LINES;

// The absolute path that the variable holds; empty when it does not.
std::string DirectoryIn(const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr && value[0] == '/' ? value : "";
}

bool IsStillAt(const std::string& path, int fd) {
    struct stat opened {};
    struct stat there {};
    return fstat(fd, &opened) == 0 && stat(path.c_str(), &there) == 0 && opened.st_ino == there.st_ino &&
           opened.st_dev == there.st_dev;
}

bool IsRegular(int fd) {
    struct stat status {};
    return fstat(fd, &status) == 0 && S_ISREG(status.st_mode);
}

// Opens the file and keeps it from other consoles until it is closed; below 0 with errno when that fails.
int OpenLocked(const std::string& path) {
    for (;;) {
        const int fd = open(path.c_str(), O_RDWR | O_APPEND | O_CREAT | O_NONBLOCK | O_CLOEXEC, FILE_MODE);
        if (fd < 0) {
            return fd;
        }
        const bool isRegular = IsRegular(fd);
        if (!isRegular || flock(fd, LOCK_EX) != 0 || fchmod(fd, FILE_MODE) != 0) {
            const int reason = isRegular ? errno : EINVAL;
            close(fd);
            errno = reason;
            return -1;
        }
        if (IsStillAt(path, fd)) {
            return fd;
        }
        close(fd);  // another console has put a shorter file into its place
    }
}

bool WriteWhole(int fd, const std::string& text) {
    errno = ENOSPC;  // what a short write means
    return write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

bool Replace(const std::string& path, const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + '\n';
    }
    const std::string fresh = path + ".tmp";
    const OwnedFd file(open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, FILE_MODE));
    const bool isReplaced =
        file && WriteWhole(file.Get(), text) && std::rename(fresh.c_str(), path.c_str()) == 0;
    if (!isReplaced) {
        const int reason = errno;
        unlink(fresh.c_str());
        errno = reason;
    }
    return isReplaced;
}

std::vector<std::string> LinesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}
}  // namespace

std::string HistoryPath() {
    if (const char* const file = std::getenv("ZORV_LOCAL_HISTFILE")) {
        return std::strcmp(file, "/dev/null") == 0 ? "" : file;
    }
    const std::string state = DirectoryIn("XDG_STATE_HOME");
    const std::string home = DirectoryIn("HOME");
    if (state.empty() && home.empty()) {
        return {};
    }
    return (state.empty() ? home + "/.local/state" : state) + "/zorv-local/history";
}

HistoryFile::HistoryFile(std::string wholePath) : path(std::move(wholePath)) {
    if (!path.empty() && !MakeDirectoryOf(path, DIRECTORY_MODE)) {
        problem = std::strerror(errno);
    }
}

std::vector<std::string> HistoryFile::Load() {
    if (path.empty() || !problem.empty()) {
        return {};
    }
    errno = 0;
    const OwnedFd file(OpenLocked(path));
    std::string text;
    if (!file || !ReadSmallFile(path, LARGEST_FILE, text)) {
        problem = errno == 0 ? "the file is too long" : std::strerror(errno);
        return {};
    }
    std::vector<std::string> lines = LinesOf(text);
    if (lines.size() > HISTORY_LINES) {
        lines.erase(lines.begin(), lines.end() - HISTORY_LINES);
        problem = Replace(path, lines) ? "" : std::strerror(errno);
    }
    return lines;
}

void HistoryFile::Add(const std::string& line) {
    if (path.empty() || !problem.empty() || line.size() > LONGEST_LINE) {
        return;
    }
    errno = 0;
    const OwnedFd file(OpenLocked(path));
    if (!file || !WriteWhole(file.Get(), line + '\n')) {
        problem = std::strerror(errno);
    }
}

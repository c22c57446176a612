#include "host/terminal/history_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <thread>
#include <utility>

#include "host/process/files.h"

namespace zorv {
namespace {
constexpr mode_t DIRECTORY_MODE = 0700;
constexpr mode_t FILE_MODE = 0600;
constexpr size_t LONGEST_LINE = 4096;
constexpr size_t LARGEST_FILE = LONGEST_LINE * 2 * HISTORY_LINES;
constexpr std::chrono::milliseconds LONGEST_WAIT{1000};

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

// A console that was stopped while it had the lock would stop all others.
bool LockSoon(int fd) {
    const auto end = std::chrono::steady_clock::now() + LONGEST_WAIT;
    while (flock(fd, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK || std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(LONGEST_WAIT / 100);
    }
    return true;
}

std::string ReasonOf(int error) {
    return error == EWOULDBLOCK ? "another program keeps it locked" : std::strerror(error);
}

// Opens the file and keeps it from other consoles until it is closed; below 0 with errno when that fails.
int OpenLocked(const std::string& path) {
    for (;;) {
        const int fd = open(path.c_str(), O_RDWR | O_APPEND | O_CREAT | O_NONBLOCK | O_CLOEXEC, FILE_MODE);
        if (fd < 0) {
            return fd;
        }
        const bool isRegular = IsRegular(fd);
        if (!isRegular || !LockSoon(fd) || fchmod(fd, FILE_MODE) != 0) {
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

// Where links lead to: they stay.
bool Replace(const std::string& path, const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + '\n';
    }
    std::error_code error;
    const std::string target = std::filesystem::canonical(path, error);
    errno = error.value();
    return !error && ReplaceFile(target, text);
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
    std::error_code ignored;
    const std::string home = DirectoryIn("HOME");
    const bool isThere = std::filesystem::is_directory(home, ignored);  // nobody gets a home by this
    if (state.empty() && !isThere) {
        return {};
    }
    return (state.empty() ? home + "/.local/state" : state) + "/zorv-local/history";
}

HistoryFile::HistoryFile(std::string wholePath) : path(std::move(wholePath)) {
    if (!path.empty() && !MakeDirectoryOf(path, DIRECTORY_MODE)) {
        problem = ReasonOf(errno);
    }
}

std::vector<std::string> HistoryFile::Load() {
    if (path.empty() || !problem.empty()) {
        return {};
    }
    const OwnedFd file(OpenLocked(path));
    std::string text;
    errno = file ? 0 : errno;  // a lock that was waited for leaves one
    if (!file || !ReadSmallFile(path, LARGEST_FILE, text)) {
        problem = errno == 0 ? "the file is too long" : ReasonOf(errno);
        return {};
    }
    std::vector<std::string> lines = LinesOf(text);
    if (lines.size() > HISTORY_LINES) {
        lines.erase(lines.begin(), lines.end() - HISTORY_LINES);
        problem = Replace(path, lines) ? "" : ReasonOf(errno);
    }
    return lines;
}

void HistoryFile::Add(const std::string& line) {
    if (path.empty() || !problem.empty() || line.size() > LONGEST_LINE) {
        return;
    }
    const OwnedFd file(OpenLocked(path));
    if (!file || !WriteWhole(file.Get(), line + '\n')) {
        problem = ReasonOf(errno);
    }
}
}  // namespace zorv

#include "host/process/files.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace zorv {
namespace {
constexpr mode_t FILE_MODE = 0644;
constexpr size_t LARGEST_INPUT = 1 << 20;

std::string DirectoryOf(const std::string& path) {
    const std::string parent = std::filesystem::path(path).parent_path();
    return parent.empty() ? "." : parent;
}

OwnedFd OpenDirectory(const std::string& path) {
    return OwnedFd(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

bool IsDirectory(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool WriteAll(int fd, std::string_view data) {
    while (!data.empty()) {
        const ssize_t written = write(fd, data.data(), data.size());
        if (written < 0 && errno != EINTR) {
            return false;
        }
        data.remove_prefix(written < 0 ? 0 : static_cast<size_t>(written));
    }
    return true;
}

// As a full disk leaves it.
bool EndsWithinLine(int fd) {
    struct stat status {};
    char last = '\n';
    return fstat(fd, &status) == 0 && status.st_size > 0 && pread(fd, &last, 1, status.st_size - 1) == 1 &&
           last != '\n';
}

// A name beside `path` that nobody can know beforehand; empty when there is no random number.
std::string FreshName(const std::string& path) {
    uint64_t number = 0;
    if (getrandom(&number, sizeof number, 0) != sizeof number) {
        return {};
    }
    std::array<char, 24> suffix{};
    std::snprintf(suffix.data(), suffix.size(), ".%016" PRIx64, number);
    return path + suffix.data();
}

// What the new file cannot be given nobody gains by: a group that is not the old one has no rights.
void GiveOwnerAndMode(int fd, const struct stat& old) {
    constexpr auto SAME = static_cast<uid_t>(-1);
    const bool isGroupKept = fchown(fd, old.st_uid, old.st_gid) == 0 || fchown(fd, SAME, old.st_gid) == 0;
    fchmod(fd, old.st_mode & (isGroupKept ? ACCESSPERMS : ACCESSPERMS & ~S_IRWXG));
}

// Creates the file `fresh` with the owner and the mode of the regular file `path`, where there is one. Below
// 0 with errno when it cannot, or when something lies there.
int CreateLike(const std::string& path, const std::string& fresh) {
    struct stat old {};
    const bool isThere = lstat(path.c_str(), &old) == 0 && S_ISREG(old.st_mode);
    constexpr mode_t FOR_NOBODY_ELSE = 0600;
    const int fd =
        open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, isThere ? FOR_NOBODY_ELSE : FILE_MODE);
    if (fd >= 0 && isThere) {
        GiveOwnerAndMode(fd, old);
    }
    return fd;
}
}  // namespace

OwnedFd::~OwnedFd() {
    if (fd >= 0) {
        close(fd);
    }
}

bool MakeDirectoryOf(const std::string& path, mode_t mode) {
    const std::string directory = DirectoryOf(path);
    if (IsDirectory(directory)) {
        return true;
    }
    // "." can be one that must not be searched, or is gone.
    if (directory == DirectoryOf(directory) || !MakeDirectoryOf(directory, mode)) {
        return false;
    }
    if (mkdir(directory.c_str(), mode) != 0 && errno != EEXIST) {
        return false;
    }
    const OwnedFd parent = OpenDirectory(DirectoryOf(directory));
    return parent && fsync(parent.Get()) == 0;
}

bool ReplaceFile(const std::string& path, std::string_view content) {
    const OwnedFd directory = OpenDirectory(DirectoryOf(path));
    const std::string fresh = FreshName(path);
    const OwnedFd file(directory && !fresh.empty() ? CreateLike(path, fresh) : -1);
    if (!file) {
        return false;
    }
    const bool isReplaced = WriteAll(file.Get(), content) && fsync(file.Get()) == 0 &&
                            std::rename(fresh.c_str(), path.c_str()) == 0;
    if (!isReplaced) {
        const int reason = errno;
        unlink(fresh.c_str());
        errno = reason;
    }
    return isReplaced && fsync(directory.Get()) == 0;
}

bool WriteFile(const std::string& path, std::string_view content) {
    std::error_code error;
    if (std::filesystem::is_regular_file(path, error) ||
        !std::filesystem::exists(std::filesystem::symlink_status(path, error))) {
        const std::filesystem::path target = std::filesystem::weakly_canonical(path, error);
        return ReplaceFile(error ? path : target.string(), content);
    }
    std::ofstream stream(path, std::ios::binary);
    stream << content;
    stream.close();
    return stream.good();
}

bool AppendLine(const std::string& path, const std::string& line) {
    const OwnedFd file(open(path.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, FILE_MODE));
    const std::string end(file && EndsWithinLine(file.Get()) ? 1 : 0, '\n');  // of the line before
    return file && WriteAll(file.Get(), end + line + '\n') && fsync(file.Get()) == 0;
}

bool ReadSmallFile(const std::string& path, size_t most, std::string& content) {
    // Without O_NONBLOCK a pipe of that name would hold the caller for ever.
    const OwnedFd file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!file || fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return false;
    }
    std::string text(most + 1, '\0');
    size_t length = 0;
    ssize_t got = 0;
    do {
        got = read(file.Get(), text.data() + length, text.size() - length);
        length += got > 0 ? static_cast<size_t>(got) : 0;
    } while (got > 0 || (got < 0 && errno == EINTR));
    if (got < 0 || length > most) {
        return false;
    }
    text.resize(length);
    content = std::move(text);
    return true;
}

std::string ReadInputFile(const std::string& what, const std::string& path) {
    std::string content;
    errno = 0;
    if (!ReadSmallFile(path, LARGEST_INPUT, content)) {
        throw std::runtime_error(what + " '" + path + "' cannot be read: " +
                                 (errno == 0 ? "it is no file of 1 MiB at most" : std::strerror(errno)));
    }
    return content;
}
}  // namespace zorv

// Files that survive a crash.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

namespace zorv {
// A file descriptor that is closed with its owner; below 0 when it could not be opened.
class OwnedFd {
public:
    explicit OwnedFd(int number) : fd(number) {}
    ~OwnedFd();
    OwnedFd(const OwnedFd&) = delete;
    OwnedFd& operator=(const OwnedFd&) = delete;

    int Get() const { return fd; }
    explicit operator bool() const { return fd >= 0; }

private:
    int fd;
};

// Makes sure that the directory of the file `path` is there, and will be after a power cut; directories that
// are made get `mode`. Returns success. Any thread; blocks on file I/O, as all of these do. errno tells what
// went wrong.
bool MakeDirectoryOf(const std::string& path, mode_t mode = 0755);

// Replaces the content of the file `path`, whose directory must be there, and keeps its owner and mode as far
// as this process may: whatever happens, and whoever else does the same, a reader finds one whole content,
// the old one or a new one. A link is replaced, not followed. A process that is killed may leave a file
// beside it, with a dot and 16 digits behind the name. Returns true when the new content is on disk.
bool ReplaceFile(const std::string& path, std::string_view content);

// Writes the file `path`: replaces it, also one that a link stands for; a device, a pipe or the new file that
// a link leads to takes the content as it is written. Returns success.
bool WriteFile(const std::string& path, std::string_view content);

// Appends `line` and a line end to the file `path` in one piece, and makes a missing file. The rest of a line
// that could not be written whole stays a line of its own. Returns true when the line is on disk.
bool AppendLine(const std::string& path, const std::string& line);

// Reads the whole of the regular file `path`. Returns false, with `content` unchanged, when that is not
// possible or the file is longer than `most` bytes.
bool ReadSmallFile(const std::string& path, size_t most, std::string& content);

// The content of the regular file `path`, of 1 MiB at most, without which the caller cannot go on. Throws
// std::runtime_error, with a message for the operator that begins with `what` the file is.
std::string ReadInputFile(const std::string& what, const std::string& path);
}  // namespace zorv

// A directory that is gone with its owner, whatever happens to the process.
#pragma once

#include <sys/types.h>

#include <string>

namespace zorv {
// Where such a directory is made: $TMPDIR, or /tmp.
std::string TemporaryPlace();

// A second process waits for the end of this one, by exit, _exit or signal, and then removes the directory
// with all in it. It keeps the standard streams, so that whoever reads them to the end finds nothing left.
class TemporaryDirectory {
public:
    // Makes the directory below TemporaryPlace(); nobody else may look into it. Throws std::runtime_error.
    // Forks: call it before there are other threads.
    TemporaryDirectory();
    // Removes the directory and waits until that is done.
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::string& Path() const { return path; }

private:
    std::string path;
    int lifeline = -1;  // closed with this process, and so tells the other one
    pid_t remover = -1;
};
}  // namespace zorv

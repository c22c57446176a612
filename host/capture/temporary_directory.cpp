#include "host/capture/temporary_directory.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>

namespace zorv {
namespace {
std::string MakeDirectory() {
    const std::string place = TemporaryPlace();
    std::string path = place + "/zorv-capture.XXXXXX";
    if (mkdtemp(path.data()) == nullptr) {
        throw std::runtime_error("no temporary directory can be made in " + place + ": " +
                                 std::strerror(errno) + ". Name another place with TMPDIR.");
    }
    return path;
}

// While it lives no signal is delivered to the calling thread, or to a process that it forks.
class BlockedSignals {
public:
    BlockedSignals() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
    }
    ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;

private:
    sigset_t before{};
};

// Out of reach of the signals that end this process and its group: it was forked while they were blocked.
[[noreturn]] void RemoveAtTheEnd(int lifeline, const std::string& path) {
    setsid();
    char byte = 0;
    while (read(lifeline, &byte, 1) < 0 && errno == EINTR) {
    }
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
    _exit(0);
}
}  // namespace

std::string TemporaryPlace() {
    const char* const named = std::getenv("TMPDIR");
    return named == nullptr || *named == '\0' ? "/tmp" : named;
}

TemporaryDirectory::TemporaryDirectory() {
    const BlockedSignals blocked;  // or one would leave the directory there before it has its remover
    path = MakeDirectory();
    int ends[2] = {-1, -1};
    const bool isPipe = pipe2(ends, O_CLOEXEC) == 0;
    remover = isPipe ? fork() : -1;
    if (remover == 0) {
        close(ends[1]);
        RemoveAtTheEnd(ends[0], path);
    }
    close(ends[0]);
    lifeline = ends[1];
    if (remover < 0) {
        close(lifeline);
        rmdir(path.c_str());
        throw std::runtime_error("nobody can be made to remove the temporary directory in the end");
    }
}

TemporaryDirectory::~TemporaryDirectory() {
    close(lifeline);
    while (waitpid(remover, nullptr, 0) < 0 && errno == EINTR) {
    }
}
}  // namespace zorv

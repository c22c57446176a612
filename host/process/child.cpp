#include "host/process/child.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>

#include "host/process/files.h"
#include "host/process/interrupt.h"

namespace zorv {
namespace {
using Clock = std::chrono::steady_clock;

constexpr auto GRACE = std::chrono::seconds(2);  // between being asked to end and being made to
constexpr auto EVER = std::chrono::milliseconds(-1);
constexpr auto BETWEEN_LOOKS = std::chrono::milliseconds(20);  // whether it is over

// Throws for the error number of a step on the way to the running program.
void Check(int error, const std::string& program) {
    if (error != 0) {
        throw std::runtime_error("cannot run " + std::filesystem::path(program).filename().string() + ": " +
                                 std::strerror(error));
    }
}

struct FileActions {
    FileActions() { posix_spawn_file_actions_init(&actions); }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    posix_spawn_file_actions_t actions{};
};

// What a child prints to one of its streams.
class Pipe {
public:
    Pipe(std::string* keptIn, size_t mostBytes) : kept(keptIn), most(mostBytes) {
        int ends[2] = {-1, -1};
        if (pipe2(ends, O_CLOEXEC) != 0) {
            throw std::runtime_error(std::string("no pipe to a program can be made: ") +
                                     std::strerror(errno));
        }
        readEnd.emplace(ends[0]);
        writeEnd.emplace(ends[1]);
    }

    int ChildEnd() const { return writeEnd->Get(); }
    void CloseChildEnd() { writeEnd.reset(); }
    int Get() const { return readEnd ? readEnd->Get() : -1; }

    // Blocks when there is nothing to read.
    void Read() {
        char buffer[1 << 16];
        const ssize_t count = read(Get(), buffer, sizeof buffer);
        if (count > 0) {
            kept->append(buffer, std::min(static_cast<size_t>(count), most - std::min(most, kept->size())));
        } else if (count == 0 || errno != EINTR) {
            readEnd.reset();
        }
    }

private:
    std::string* const kept;
    const size_t most;
    std::optional<OwnedFd> readEnd;
    std::optional<OwnedFd> writeEnd;
};
using Pipes = std::array<std::unique_ptr<Pipe>, 2>;  // of stdout and of stderr; none where it is not kept

struct Attributes {
    explicit Attributes(bool hasOwnGroup) {
        posix_spawnattr_init(&attributes);
        if (hasOwnGroup) {
            posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
        }
    }
    ~Attributes() { posix_spawnattr_destroy(&attributes); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    posix_spawnattr_t attributes{};
};

// The standard input is where this process may have its next command from.
pid_t Start(const std::string& program, const std::vector<std::string>& arguments, const Pipes& pipes,
            bool hasOwnGroup) {
    FileActions files;
    Check(posix_spawn_file_actions_addopen(&files.actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0), program);
    for (const int number : {STDOUT_FILENO, STDERR_FILENO}) {
        if (const auto& pipe = pipes[static_cast<size_t>(number - STDOUT_FILENO)]) {
            Check(posix_spawn_file_actions_adddup2(&files.actions, pipe->ChildEnd(), number), program);
        }
    }
    std::string name = std::filesystem::path(program).filename();
    std::vector<std::string> words = arguments;
    std::vector<char*> pointers = {name.data()};
    std::transform(words.begin(), words.end(), std::back_inserter(pointers),
                   [](std::string& word) { return word.data(); });
    pointers.push_back(nullptr);
    std::fflush(nullptr);
    const Attributes attributes(hasOwnGroup);
    pid_t child = -1;
    Check(posix_spawnp(&child, program.c_str(), &files.actions, &attributes.attributes, pointers.data(),
                       environ),
          program);
    return child;
}

// Ends a child whose time is over, first mildly.
class Deadline {
public:
    Deadline(pid_t process, const ChildLimits& limits)
        : child(process),
          endsTidily(limits.endsTidily),
          end(limits.time.count() > 0 ? Clock::now() + limits.time : Clock::time_point::max()) {}

    bool IsOver() const { return killed > 0; }

    // How long to wait for the child until this is asked again.
    std::chrono::milliseconds Remaining() {
        const bool isEndAsked = endsTidily && killed == 0 && IsEndAsked();
        if (isEndAsked || Clock::now() >= end) {
            kill(endsTidily ? -child : child, killed++ == 0 ? SIGTERM : SIGKILL);
            end = Clock::now() + GRACE;
        }
        if (end == Clock::time_point::max()) {
            return endsTidily ? BETWEEN_LOOKS : EVER;
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()) +
                          std::chrono::milliseconds(1);
        return endsTidily ? std::min(left, BETWEEN_LOOKS) : left;
    }

private:
    const pid_t child;
    const bool endsTidily;
    Clock::time_point end;
    int killed = 0;
};

void ReadAll(const Pipes& pipes, Deadline& deadline, const std::function<void()>& onMore) {
    for (;;) {
        std::vector<pollfd> open;
        for (const auto& pipe : pipes) {
            if (pipe && pipe->Get() >= 0) {
                open.push_back({pipe->Get(), POLLIN, 0});
            }
        }
        if (open.empty()) {
            return;
        }
        poll(open.data(), open.size(), static_cast<int>(deadline.Remaining().count()));
        for (const auto& pipe : pipes) {
            const auto ready = std::find_if(open.begin(), open.end(), [&](const pollfd& one) {
                return pipe && one.fd == pipe->Get() && one.revents != 0;
            });
            if (ready != open.end()) {
                pipe->Read();
            }
        }
        if (onMore) {
            onMore();
        }
    }
}

// The child has closed its streams, or has this process's: in the first case it ends soon.
ChildEnd WaitFor(pid_t child, Deadline& deadline) {
    int status = 0;
    for (pid_t ended = 0; ended != child;) {
        const auto remaining = deadline.Remaining();
        ended = waitpid(child, &status, remaining == EVER ? 0 : WNOHANG);
        if (ended < 0 && errno != EINTR) {
            throw std::runtime_error(std::string("a program cannot be waited for: ") + std::strerror(errno));
        }
        if (ended == 0) {
            poll(nullptr, 0, static_cast<int>(std::min(BETWEEN_LOOKS, remaining).count()));
        }
    }
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 0, WIFSIGNALED(status) ? WTERMSIG(status) : 0,
            deadline.IsOver()};
}
}  // namespace

std::string ProgramBeside(const std::string& name) {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path() / name;
}

ChildEnd RunChild(const std::string& program, const std::vector<std::string>& arguments,
                  const ChildStreams& streams, const ChildLimits& limits) {
    Pipes pipes;
    if (streams.output != nullptr) {
        pipes[0] = std::make_unique<Pipe>(streams.output, limits.bytes);
    }
    if (streams.errors != nullptr) {
        pipes[1] = std::make_unique<Pipe>(streams.errors, limits.bytes);
    }
    const pid_t child = Start(program, arguments, pipes, limits.endsTidily);
    for (const auto& pipe : pipes) {
        if (pipe) {
            pipe->CloseChildEnd();
        }
    }
    Deadline deadline(child, limits);
    ReadAll(pipes, deadline, streams.onMore);
    return WaitFor(child, deadline);
}
}  // namespace zorv

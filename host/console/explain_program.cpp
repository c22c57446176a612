#include "host/console/explain_program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "host/process/files.h"

namespace zorv {
namespace {
std::vector<char*> Pointers(Words& words) {
    std::vector<char*> pointers;
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

// Throws for the error number of a step on the way to the running program.
void Check(int error) {
    if (error != 0) {
        throw std::system_error(error, std::generic_category());
    }
}

struct FileActions {
    FileActions() { Check(posix_spawn_file_actions_init(&actions)); }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    void Open(int number, int flags) {
        Check(posix_spawn_file_actions_addopen(&actions, number, "/dev/null", flags, 0));
    }
    void Copy(int number, int fd) { Check(posix_spawn_file_actions_adddup2(&actions, fd, number)); }

    posix_spawn_file_actions_t actions{};
};

// Without the standard input: that is where this process may have its next command from. With its output to
// `output`, unless that is below 0.
pid_t Start(Words words, int output) {
    FileActions files;
    files.Open(STDIN_FILENO, O_RDONLY);
    if (output >= 0) {
        files.Copy(STDOUT_FILENO, output);
        files.Open(STDERR_FILENO, O_WRONLY);
    }
    const auto directory = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    pid_t child = -1;
    Check(posix_spawn(&child, (directory / words.front()).c_str(), &files.actions, nullptr,
                      Pointers(words).data(), environ));
    return child;
}

ExitStatus WaitFor(pid_t child, const std::string& program) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        Check(errno == EINTR ? 0 : errno);
    }
    if (!WIFEXITED(status)) {
        throw std::runtime_error(program + " was ended by signal " + std::to_string(WTERMSIG(status)));
    }
    return static_cast<ExitStatus>(WEXITSTATUS(status));
}

void ReadAll(int fd, std::string& text) {
    char buffer[1 << 16];
    for (ssize_t count = 1; count > 0 || (count < 0 && errno == EINTR);) {
        count = read(fd, buffer, sizeof buffer);
        text.append(buffer, count > 0 ? static_cast<size_t>(count) : 0);
    }
}

ExitStatus RunForOutput(const Words& words, std::string& output) {
    int ends[2] = {-1, -1};
    Check(pipe2(ends, O_CLOEXEC) == 0 ? 0 : errno);
    const OwnedFd readEnd(ends[0]);
    std::optional<OwnedFd> writeEnd(std::in_place, ends[1]);
    const pid_t child = Start(words, writeEnd->Get());
    writeEnd.reset();
    ReadAll(readEnd.Get(), output);
    return WaitFor(child, words.front());
}

// The first word is the program's name.
ExitStatus Run(const Words& words, std::string* output) {
    std::fflush(nullptr);
    try {
        return output != nullptr ? RunForOutput(words, *output) : WaitFor(Start(words, -1), words.front());
    } catch (const std::system_error& error) {
        throw std::runtime_error("cannot run " + words.front() + ": " + error.code().message());
    }
}
}  // namespace

ExitStatus RunExplainProgram(const Words& sharedOptions, const Words& arguments, std::string* output) {
    Words words = {"zorv-explain"};
    words.insert(words.end(), sharedOptions.begin(), sharedOptions.end());
    words.insert(words.end(), arguments.begin(), arguments.end());
    return Run(words, output);
}

ExitStatus RunCheckProgram(const Words& arguments, std::string* output) {
    Words words = {"zorv-check"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return Run(words, output);
}
}  // namespace zorv

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <vector>

#include "host/console/commands.h"
#include "host/console/route_file.h"

namespace zorv {
namespace {
constexpr const char* PROGRAM = "zorv-explain";

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
        throw std::runtime_error(std::string("cannot run ") + PROGRAM + ": " + std::strerror(error));
    }
}

struct FileActions {
    FileActions() { Check(posix_spawn_file_actions_init(&actions)); }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    posix_spawn_file_actions_t actions{};
};

// Without the standard input: that is where this process may have its next command from.
pid_t Start(const std::string& file, Words words) {
    FileActions files;
    Check(posix_spawn_file_actions_addopen(&files.actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0));
    pid_t child = -1;
    Check(posix_spawn(&child, file.c_str(), &files.actions, nullptr, Pointers(words).data(), environ));
    return child;
}
}  // namespace

ExitStatus RunExplain(const Words& words, ConsoleState& state) {
    Words all = {PROGRAM};
    all.insert(all.end(), state.sharedOptions.begin(), state.sharedOptions.end());
    all.insert(all.end(), words.begin() + 1, words.end());
    std::fflush(nullptr);
    const auto directory = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    const pid_t child = Start((directory / PROGRAM).string(), all);
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        Check(errno == EINTR ? 0 : errno);
    }
    if (!WIFEXITED(status)) {
        throw std::runtime_error(std::string(PROGRAM) + " was ended by signal " +
                                 std::to_string(WTERMSIG(status)));
    }
    return static_cast<ExitStatus>(WEXITSTATUS(status));
}

Words WordsAfterExplain(const Words& before) {
    if (before.back() == "--point") {
        return PointNames(CurrentRouteFile());
    }
    if (before.back() == "--graph") {
        return GraphNames(CurrentRouteFile());
    }
    return {"--point", "--graph", "--at", "--zone", "--json", "--html", "--help"};
}
}  // namespace zorv

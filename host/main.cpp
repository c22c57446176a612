#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>

#include "cli/program.h"
#include "host/capture/capture.h"
#include "host/capture/inputs.h"
#include "host/cluster/address.h"
#include "host/cluster/cluster_file.h"
#include "host/cluster/message.h"
#include "host/cluster/plain_tcp.h"
#include "host/command/status.h"
#include "host/options.h"
#include "host/plugin.h"
#include "host/process/leak_check.h"
#include "host/process/process.h"
#include "host/process/settings.h"
#include "host/process/statements.h"
#include "host/services/console.h"
#include "host/services/log.h"
#include "host/services/timer.h"
#include "host/terminal/session.h"
#include "text/local_time.h"
#include "text/printable.h"

namespace zorv {
namespace {
std::string CheckedRoot(const std::string& root) {
    std::error_code ignored;
    if (!std::filesystem::is_directory(root, ignored)) {
        throw std::runtime_error("the root '" + root + "' is not a directory");
    }
    return std::filesystem::absolute(root).lexically_normal();
}

void CheckLogFile(const Options& options) {
    const Inputs inputs = {options.capture.value_or(options.root.value_or("")),
                           options.capture.has_value(),
                           {options.cluster, options.plugin.value_or(""), options.tls.authority,
                            options.tls.certificate, options.tls.key}};
    if (const auto reason = options.logFile.empty() ? std::nullopt : WhyNotWritten(options.logFile, inputs)) {
        throw std::runtime_error(*reason);
    }
}

// The capture is then to be kept.
void OpenCapture(const Options& options, std::optional<Capture>& capture, HostSettings& settings) {
    capture.emplace(*options.capture, options.emptyHeal, !options.zone);
    settings.root = capture->Root();
    settings.capture = capture->Directory();
    settings.movedFiles = capture->Files().Moved();
    for (const std::string& note : capture->Notes()) {
        std::fprintf(stderr, "zorv-local: %s\n", Printable(note).c_str());
    }
    std::fprintf(stderr,
                 "zorv-local: nothing changes in %s: switch and alarms are kept until this program ends\n",
                 Printable(capture->Directory()).c_str());
}

// That was named, else that of a capture which tells it; none: the machine's.
std::optional<std::string> ZoneOf(const Options& options, const std::optional<Capture>& capture) {
    return options.zone || !capture ? options.zone : capture->Zone();
}

void SetUpServices(const Options& options, std::optional<Capture>& capture) {
    HostSettings settings;
    if (options.capture.has_value()) {
        OpenCapture(options, capture, settings);
    } else if (options.root.has_value()) {
        settings.root = CheckedRoot(*options.root);
    }
    cli::TakeZone("zorv-local", ZoneOf(options, capture));
    settings.node = options.node;
    settings.master = options.master;
    SetHostSettings(settings);
    ConfigureLog(options.logFile, options.logLevel.value_or(VPLOG_LEVEL_WARNING));
    if (!options.command.empty() && !options.logLevel && isatty(STDERR_FILENO) == 1) {
        HoldLog();
    }
}

// What a program that this one runs has to be told.
Words SharedOptions(const Options& options, const std::optional<Capture>& capture) {
    Words shared;
    if (capture.has_value()) {
        shared = {"--capture", capture->Directory()};
    } else if (options.root.has_value()) {
        shared = {"--root", GetHostSettings().root};
    }
    if (options.emptyHeal) {
        shared.emplace_back("--empty-heal");
    }
    if (ZoneOf(options, capture)) {  // as it is kept here, whatever it was called and whenever they start
        shared.insert(shared.end(), {"--zone", ZoneText(ZoneOffsetAt(std::time(nullptr)))});
    }
    if (!options.logFile.empty()) {
        shared.insert(shared.end(), {"--log", options.logFile});
    }
    return shared;
}

// One command, the program's only one. Where it went wrong, the log that was held for that is shown, but not
// to whoever wanted no more than the first lines.
ExitStatus RunCommand(const Options& options, Console& console) {
    const ExitStatus status = console.Run(options.command, "");
    if (status == STATUS_OK || OutputError() == EPIPE) {
        return status;
    }
    ShowHeldLog();
    if (!options.misplaced.empty() && !console.IsProgram(options.command.front())) {
        std::fprintf(stderr,
                     "zorv-local: '%s' is behind the command, which took it for a word of its own: options "
                     "of zorv-local stand before the command\n",
                     Printable(options.misplaced).c_str());
    }
    return status;
}

ExitStatus RunCommands(const Options& options, const std::optional<Capture>& capture) {
    Console console(SharedOptions(options, capture), options.hints || isatty(STDOUT_FILENO) == 1);
    if (!options.command.empty()) {
        return RunCommand(options, console);
    }
    return isatty(STDIN_FILENO) == 1 ? RunTerminal(console) : RunLinesOfInput(console);
}

// Null when no address takes any.
std::shared_ptr<const Credentials> ReadCredentials(const Options& options, const NodeAddresses& nodes) {
    if (std::none_of(nodes.begin(), nodes.end(),
                     [](const auto& node) { return Behind(TLS, node.second).has_value(); })) {
        return nullptr;
    }
    const auto orBeside = [&](const std::string& file, const std::string& name) {
        return file.empty() ? std::filesystem::path(options.cluster).replace_filename(name).string() : file;
    };
    const std::string own = "node-" + std::to_string(options.node);
    return std::make_shared<Credentials>(CredentialFiles{orBeside(options.tls.authority, "ca.pem"),
                                                         orBeside(options.tls.certificate, own + ".pem"),
                                                         orBeside(options.tls.key, own + ".key")});
}

struct Cluster {
    NodeAddresses nodes;  // none: there is no other node
    std::shared_ptr<const Credentials> credentials;
};

Cluster ReadCluster(const Options& options) {
    if (options.cluster.empty()) {
        return {};
    }
    const NodeAddresses nodes = ReadClusterFile(options.cluster, {options.node, options.master});
    const std::string warning = WarnOfPlainTcp(nodes, options.insecure);
    if (!warning.empty()) {
        std::fprintf(stderr, "zorv-local: %s\n", warning.c_str());
    }
    return {nodes, ReadCredentials(options, nodes)};
}

void Start(const Options& options, std::optional<Capture>& capture) {
    CheckLogFile(options);
    const Cluster cluster = ReadCluster(options);  // before a large capture is copied for nothing
    SetUpServices(options, capture);
    if (const std::string advice = AdviceWithoutFiles(); !advice.empty()) {
        std::fprintf(stderr, "zorv-local: %s\n", advice.c_str());
    }
    WatchStatements();
    StartPlugin(options.plugin);
    if (!cluster.nodes.empty()) {  // now that there are handlers
        JoinCluster(cluster.nodes, cluster.credentials);
    }
}

int RunHost(const Options& options, std::optional<Capture>& capture) {
    const int started = cli::RunProgram("zorv-local", STATUS_NOT_STARTED, [&] {
        Start(options, capture);
        return STATUS_OK;
    });
    if (started != STATUS_OK) {
        ShowHeldLog();
    }
    return started != STATUS_OK
               ? started
               : cli::RunProgram("zorv-local", STATUS_FAILED, [&] { return RunCommands(options, capture); });
}

// The plug-in cannot be stopped and its threads run on: nothing that they use may be destroyed under them.
[[noreturn]] void Leave(int status) {
    LeaveCluster();
    StopTimers();
    std::fflush(nullptr);
    CheckLeaks();
    _exit(status);
}

int RunProgram(int argc, char** argv) {
    BeginProcess();
    std::signal(SIGPIPE, SIG_IGN);
    std::setlocale(LC_CTYPE, "");
    sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);  // nobody asks, and each allocation would take a lock for it
    Options options;
    if (const std::optional<int> status = ParseOptions(argc, argv, options)) {
        return *status;
    }
    std::optional<Capture> capture;  // gone with the process: the plug-in's threads use it until then
    Leave(RunHost(options, capture));
}
}  // namespace
}  // namespace zorv

int main(int argc, char** argv) {
    return zorv::RunProgram(argc, argv);
}

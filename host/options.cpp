#include "host/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>

#include "host/command/status.h"
#include "host/version.h"

namespace zorv {
namespace {
constexpr const char* DESCRIPTION =
    "Loads the diagnosis plug-in on a machine that is no storage node, and gives it a console.";

constexpr const char* EXAMPLES = R"(
COMMAND is run with its ARGS, which may begin with '-'. Without a command there is a console on a terminal;
otherwise command lines are read from standard input. Where a command takes START and END these are local
times: 20230105103000, now, -30m (also s, h, d), today, yesterday, 2023/1/5 14:3:0, 2023-01-05 14:03:00 or
2023-01-05T14:03:00 (also with a zone, Z or +08:00); or, for both, a length of time up to now: 90s, 4h, 1d.

Exit status: 0 all went well, 1 a command reported an error or its answer rests on too little (on no rows, a
part of the range, failed statements or no configuration, told on standard error), 2 unknown command or wrong
usage, 3 the plug-in could not be loaded, the root or the log is not there, the cluster cannot be joined, or
the capture cannot be used, 130 (in a shell) ended with Ctrl-C.
"explain", "overview" and "series" as COMMAND hand the exit statuses of zorv-explain on, "check" those of
zorv-check. "status", "alarms" and "switch" take --json.

On a terminal TAB completes commands, their words and point names, and Ctrl-C stops the command that runs.
Environment: ZORV_LOCAL_HISTFILE names the file of the history (empty: none; default: zorv-local/history in
XDG_STATE_HOME or ~/.local/state), NO_COLOR turns colours off.

Examples:
  zorv-local --root /tmp/world                      a console over the files below /tmp/world
  zorv-local --root /tmp/world help                 lists the commands
  zorv-local --root /tmp/world delaydetect 60       looks for delay faults in the last hour
  zorv-local --root /tmp/world delaydetect -2h now  looks for them in the last two hours
  zorv-local --root /tmp/world explain 60           tells where the extra delay of slow points went
  zorv-local capture /tmp/node1.tar.zst             copies this node's files, consistent beside their writers
  zorv-local --capture /tmp/node1.tar.zst           a console over a copy of a node's files, none is changed
  zorv-local --root /tmp/world switch set off       turns fault diagnosis off
  zorv-local --root /tmp/world < commands.txt       runs the command lines of a file
  zorv-local --node 2 --master 1 --cluster nodes    a node of a cluster, for a file "nodes" with the lines
                                                    1 ipc:///run/zorv/one.socket
                                                    2 tls+tcp://192.168.7.2:7002
)";

const std::map<std::string, uint32_t> LEVELS = {
    {"error", VPLOG_LEVEL_ERROR}, {"warning", VPLOG_LEVEL_WARNING}, {"info", VPLOG_LEVEL_INFO},
    {"debug", VPLOG_LEVEL_DEBUG}, {"3", VPLOG_LEVEL_ERROR},         {"4", VPLOG_LEVEL_WARNING},
    {"5", VPLOG_LEVEL_INFO},      {"7", VPLOG_LEVEL_DEBUG}};

uint32_t LevelOf(const std::string& word) {
    const auto level = LEVELS.find(word);
    if (level == LEVELS.end()) {
        throw CLI::ValidationError("--log-level", "'" + word + "' is none of error, warning, info, debug");
    }
    return level->second;
}

void DeclareTlsOptions(CLI::App& app, Options& options) {
    const struct {
        const char* name;
        std::string& file;
        const char* help;
    } files[] = {
        {"--tls-ca", options.tls.authority,
         "For tls+tcp, in PEM: who signs the certificates of nodes; default: ca.pem beside the cluster file"},
        {"--tls-cert", options.tls.certificate,
         "This node's certificate; default: node-N.pem beside the cluster file"},
        {"--tls-key", options.tls.key,
         "Its private key, not for others; default: node-N.key beside the cluster file"},
    };
    for (const auto& row : files) {
        app.add_option(row.name, row.file, row.help)->type_name("FILE")->needs("--cluster");
    }
    app.add_flag("--insecure", options.insecure, "Allow plain tcp also outside of private networks")
        ->needs("--cluster");
}

void Declare(CLI::App& app, Options& options) {
    cli::SetUsage(app, "zorv-local [OPTIONS] [COMMAND [ARGS...]]");
    app.footer(EXAMPLES);
    app.set_version_flag("--version", &VersionText);
    cli::DeclareInputOptions(app, options);
    app.add_option("--plugin", options.plugin, "The plug-in; default: the one that came with this program")
        ->type_name("FILE");
    app.add_option("--node", options.node, "Id of this node; default: 1")->type_name("N");
    app.add_option("--master", options.master, "Id of the node that keeps the switch; default: this node")
        ->type_name("M");
    app.add_option("--cluster", options.cluster, "The nodes and where they listen: a line each, ID ADDRESS")
        ->type_name("FILE");
    DeclareTlsOptions(app, options);
    app.add_option("--log", options.logFile, "Append the log to this file; default: standard error")
        ->type_name("FILE");
    app.add_option_function<std::string>(
           "--log-level", [&options](const std::string& word) { options.logLevel = LevelOf(word); },
           "error, warning, info or debug (or 3, 4, 5, 7); default: warning, and on a terminal nothing "
           "where all went well")
        ->type_name("L");
    app.add_flag("--hints", options.hints,
                 "Tell of events that delaydetect cannot flag, as on a terminal: takes as long as explain");
    app.prefix_command();
}

// The command gets it all the same: its words may be any.
std::string MisplacedOption(const CLI::App& app, const std::vector<std::string>& words) {
    const auto option = std::find_if(words.begin(), words.end(), [&](const std::string& word) {
        return word.rfind("--", 0) == 0 && app.get_option_no_throw(word.substr(0, word.find('='))) != nullptr;
    });
    return option == words.end() ? "" : *option;
}

// A cluster whose every node took itself for the master would have several switches.
void CheckMaster(const CLI::App& app, Options& options) {
    const bool isNamed = app.count("--master") > 0;
    if (!isNamed && !options.cluster.empty()) {
        throw CLI::ValidationError("--cluster", "needs --master: who keeps the switch?");
    }
    if (!isNamed) {
        options.master = options.node;
    }
    if (options.master != options.node && options.cluster.empty()) {
        throw CLI::ValidationError("--master", "another node than this one needs --cluster");
    }
}
}  // namespace

std::optional<int> ParseOptions(int argc, char** argv, Options& options) {
    CLI::App app(DESCRIPTION);
    Declare(app, options);
    return cli::Parse(app, argc, argv, "zorv-local", [&] {
        CheckMaster(app, options);
        options.command = app.remaining();
        if (!options.command.empty() && options.command.front() == "--") {
            options.command.erase(options.command.begin());
        } else if (!options.command.empty() && options.command.front().substr(0, 1) == "-") {
            throw CLI::ExtrasError({options.command.front()});
        }
        options.misplaced = MisplacedOption(app, options.command);
    });
}
}  // namespace zorv

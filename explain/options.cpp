#include "explain/options.h"

#include <CLI/CLI.hpp>

#include "explain/wording.h"
#include "text/time_words.h"

namespace explain {
namespace {

constexpr const char* DESCRIPTION =
    "Explains why a trace point was slow, or counted errors: where they come from, and how sure that is.";

constexpr int64_t LONGEST_INTERVAL = 3600;  // seconds: the range of a look
constexpr const char* OVERVIEW_MINUTES = "240";

constexpr const char* EXAMPLES = R"(
START and END are local times, at most two days apart: 20230105103000, now, -30m (also s, h, d), today,
yesterday, 2023/1/5 14:3:0, 2023-01-05 14:03:00 or 2023-01-05T14:03:00 (also with a zone, Z or +08:00).
MINUTES is a length of time up to now; so are 90s, 4h and 1d. Without --point, every event of the points at
which hosts enter is explained, and every event of errors. --watch takes no times: it looks at the last hour
until Ctrl-C or SIGTERM, which is status 0.

Exit status: 0 answered, 1 nothing anomalous or within the usual, 2 wrong usage, 3 no data or no
configuration, 4 cannot tell, or nothing in a range of which a part has no rows, 5 the answer or the page
cannot be written, 130 (in a shell) ended with Ctrl-C.

Examples:
  zorv-explain --root /tmp/world 60                          explains the last hour
  zorv-explain --root /tmp/world --overview                  the last four hours on one screen
  zorv-explain --root /tmp/world --series BDM_DISK_READ 60   its rows of the last hour; CSV in a pipe
  zorv-explain --capture /tmp/node1 -2h now                  the same for a copy of a node's files
  zorv-explain --root /tmp/world --json START END            the same as JSON, for programs
  zorv-explain --root /tmp/world --html page.html START END  a page to show, with the proof of its input
  zorv-explain --root /tmp/world --watch                     goes on looking, until Ctrl-C
  zorv-explain --root /tmp/world --point TGT_LUMO_HOST_READ --at -20m 60  one point, slow 20 minutes ago
)";

// For a look that is repeated, with what cannot be.
void DeclareWatch(CLI::App& app, Options& options) {
    CLI::Option* watch =
        app.add_flag("--watch", options.watch, "Look at the last hour again and again, and tell what changes")
            ->excludes("--at")
            ->excludes("--during")
            ->excludes("--baseline")
            ->excludes("--html")
            ->excludes("--overview")
            ->excludes("--series")
            ->excludes("--capture");
    app.add_option("--every", options.every,
                   "Seconds from one look to the next; the statistics' own step when left out")
        ->type_name("SECONDS")
        ->check(CLI::Range(int64_t{1}, LONGEST_INTERVAL))
        ->needs(watch);
    app.add_option("--textfile", options.textFile,
                   "Write the state to this file at each look, for whoever collects figures")
        ->type_name("FILE")
        ->needs(watch);
}

void Declare(CLI::App& app, Options& options) {
    cli::SetUsage(app, "zorv-explain [OPTIONS] START END | MINUTES | --watch");
    app.footer(EXAMPLES);
    app.set_version_flag("--version", "zorv-explain " EXPLAIN_VERSION);
    app.add_flag_callback(
        "--help-method", [] { throw CLI::CallForVersion(GlossaryOf(), 0); },
        "Tell what the words of an answer mean and exit");
    cli::DeclareInputOptions(app, options);
    CLI::Option* point = app.add_option("--point", options.points,
                                        "A point to explain, or 'hosts'; may be given several times")
                             ->type_name("NAME")
                             ->allow_extra_args(false);
    app.add_option("--graph", options.graph, "The graph to explain it in; default: all that the plug-in uses")
        ->type_name("NAME")
        ->needs(point);
    CLI::Option* at =
        app.add_option("--at", options.at, "Explain the event at this time, or what was highest then")
            ->type_name("TIME");
    app.add_option("--during", options.during, "Explain exactly this window; no range is needed")
        ->expected(2)
        ->allow_extra_args(false)
        ->type_name("START END")
        ->excludes(at);
    app.add_option("--baseline", options.baseline,
                   "What tells what is usual: START END, or the same stretch 'yesterday', '-7d'")
        ->expected(1, 4)  // those of the range among them: see SplitBaseline()
        ->type_name("START END");
    app.add_option("--node", options.node,
                   "The node's name, for reports of several; default: that in a capture's manifest")
        ->type_name("NAME");
    CLI::Option* overview = app.add_flag(
        "--overview", options.overview,
        "Print one screen: how every point did, and what happened; default: of the last four hours");
    CLI::Option* series = app.add_option("--series", options.series,
                                         "Print what the statistics hold of this point, and nothing else")
                              ->type_name("NAME")
                              ->excludes(point)
                              ->excludes(at)
                              ->excludes("--baseline")
                              ->excludes(overview);
    app.add_option(
           "--columns", options.columns,
           "Of it: avgdelay, maxdelay, mindelay, acceptnum, successnum, failednum, retrynum, errCode0 to "
           "errCode4; default: all, on a terminal those that are not zero")
        ->type_name("NAMES")
        ->needs(series);
    app.add_flag("--console", options.isInConsole)->group("");  // for the program that starts this one
    app.add_flag("--json", options.json, "Print JSON; with --watch, an object in a line for each change");
    app.add_option("--html", options.html, "Write a page to this file as well")
        ->type_name("FILE")
        ->excludes(series);
    DeclareWatch(app, options);
    app.add_option("--log", options.log, "Append the log to this file; default: no log")->type_name("FILE");
    app.add_option("TIMES", options.times, "START END, or MINUTES")->expected(0, 4)->type_name("");
}

// The words behind those of --baseline are the range's where that would lack them.
void SplitBaseline(Options& options) {
    std::vector<std::string>& words = options.baseline;
    std::vector<std::string>& times = options.times;
    const bool lacksTimes = times.empty() ? options.during.empty() : times.size() == 1 && !IsLength(times[0]);
    if (words.size() < 2 || !lacksTimes) {
        return;
    }
    const bool hasLength = times.empty() && IsLength(words.back());
    const auto range = hasLength || !times.empty() || words.size() == 2 ? 1 : 2;
    times.insert(times.begin(), words.end() - range, words.end());
    words.erase(words.end() - range, words.end());
    if (words.size() > 2) {
        throw CLI::ArgumentMismatch("--baseline: a START and an END, 'yesterday' or '-7d'");
    }
}

}  // namespace

std::vector<std::string> AgainOf(const Options& options) {
    std::vector<std::string> words = {options.isInConsole ? "explain" : "zorv-explain"};
    const auto add = [&words](const char* option, const std::optional<std::string>& value) {
        if (value) {
            words.insert(words.end(), {option, *value});
        }
    };
    if (!options.isInConsole) {  // which has these itself
        add("--root", options.root);
        add("--capture", options.capture);
        if (options.emptyHeal) {
            words.emplace_back("--empty-heal");
        }
        add("--zone", options.zone);
    }
    add("--graph", options.graph);
    if (!options.baseline.empty()) {
        words.emplace_back("--baseline");
        words.insert(words.end(), options.baseline.begin(), options.baseline.end());
    }
    return words;
}

std::optional<int> ParseOptions(int argc, char** argv, Options& options) {
    CLI::App app(DESCRIPTION);
    Declare(app, options);
    return cli::Parse(app, argc, argv, "zorv-explain", [&] {
        SplitBaseline(options);
        if (options.overview && options.times.empty() && options.during.empty()) {
            options.times = {OVERVIEW_MINUTES};
        }
        if (options.watch && !options.times.empty()) {
            throw CLI::ArgumentMismatch(
                "--watch looks at the last hour: it goes without START END or MINUTES");
        }
        if (options.times.empty() && options.during.empty() && !options.watch) {
            throw CLI::RequiredError("START END, or MINUTES,");
        }
    });
}

}  // namespace explain

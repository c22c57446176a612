#include "fleet/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <ctime>
#include <filesystem>
#include <iterator>

#include "cli/options.h"
#include "text/local_time.h"
#include "text/time_words.h"

namespace fleet {
namespace {

constexpr const char* DESCRIPTION =
    "Explains many nodes, each by itself, and puts the answers together: which node, which point, since "
    "when.";

constexpr size_t MOST_DIGITS = 4;  // of minutes

constexpr const char* EXAMPLES = R"(
A CAPTURE is a copy of a node's files, a folder or a tar archive (also compressed by gzip, xz or zstd). START and END,
or MINUTES, follow the last word that is an existing path; zorv-explain --help tells how they are written.

Exit status: 0 for any node there is an answer, else the highest that an explanation ended with: 1 nothing anomalous,
3 no data, 4 cannot tell; 2 wrong usage, 3 nobody could be asked, 5 the answer or a page cannot be written, 130 (in a
shell) ended with Ctrl-C.

Examples:
  zorv-fleet captures/* 20230105103000 20230105143000     explains the captures of a folder
  zorv-fleet --html fleet.html --pages pages captures/* START END  a page, with links to one for each node
  zorv-fleet --hosts nodes 60                             the last hour of live nodes, by GNU parallel over ssh
  zorv-fleet --fold answers.jsonl                         puts answers together that were collected in another way
)";

void Declare(CLI::App& app, Options& options) {
    cli::SetUsage(app,
                  "zorv-fleet [OPTIONS] CAPTURE... START END | MINUTES\n"
                  "  or:  zorv-fleet [OPTIONS] --hosts FILE START END | MINUTES\n"
                  "  or:  zorv-fleet [OPTIONS] --fold [FILE...]");
    app.footer(EXAMPLES);
    app.set_version_flag("--version", "zorv-fleet " FLEET_VERSION);
    CLI::Option* hosts =
        app.add_option("--hosts", options.hosts,
                       "Ask the hosts of this file, a line each as ssh takes them; ':' is this machine")
            ->type_name("FILE");
    CLI::Option* fold =
        app.add_flag("--fold", options.isFold,
                     "Read answers of zorv-explain --json, one a line, from files or standard input")
            ->excludes(hosts);
    app.add_option("--jobs", options.jobs, "How many explanations at a time; default: the cores, or 64 hosts")
        ->type_name("N")
        ->check(CLI::Range(1, 1024));
    app.add_option("--timeout", options.timeout, "How long one explanation may take")
        ->type_name("SECONDS")
        ->check(CLI::Range(1, 86400))
        ->capture_default_str();
    app.add_option("--zone", options.zone, "Zone of all local times, such as +0800; default: each machine's")
        ->type_name("Z")
        ->excludes(fold);
    app.add_option("--root", options.root, "On hosts: directory that stands before every fixed path")
        ->type_name("DIR")
        ->needs(hosts);
    app.add_flag("--empty-heal", options.emptyHeal, "Do without the heal database that a capture lacks")
        ->excludes(hosts)
        ->excludes(fold);
    app.add_flag("--json", options.json, "Print JSON");
    app.add_option("--html", options.html, "Write a page to this file as well")->type_name("FILE");
    app.add_option("--pages", options.pages,
                   "Write the page of each node, named like its capture, to this folder")
        ->type_name("DIR")
        ->excludes(hosts)
        ->excludes(fold);
    app.add_option("WORDS", options.words, "CAPTURE..., and START END or MINUTES")->type_name("");
}

// That the times are times, before every node says that they are none.
void CheckTimes(std::vector<std::string> times) {
    const LocalClock clock = ClockAt(std::time(nullptr));
    TurnRange(times, 0, clock);
    const bool isMinutes = times.size() == 1 && times[0].size() <= MOST_DIGITS &&
                           times[0].find_first_not_of("0123456789") == std::string::npos;
    if (times.size() == 2) {
        if (TimeOf(times[0], clock) >= TimeOf(times[1], clock)) {
            throw cli::UsageError("the end has to be after the start");
        }
    } else if (!isMinutes) {
        throw cli::UsageError(times.empty()
                                  ? "START END, or MINUTES, is missing behind the last CAPTURE"
                                  : "'" + times[0] +
                                        "' is neither a START with an END nor MINUTES, nor an existing path");
    }
}

}  // namespace

std::vector<std::string> Options::Captures() const {
    const auto last = std::find_if(words.rbegin(), words.rend(), [](const std::string& word) {
        std::error_code ignored;
        return std::filesystem::exists(word, ignored);
    });
    return {words.begin(), last.base()};
}

std::vector<std::string> Options::Times() const {
    const size_t captures = hosts ? 0 : Captures().size();
    return {words.begin() + static_cast<std::ptrdiff_t>(captures), words.end()};
}

std::optional<int> ParseOptions(int argc, char** argv, Options& options) {
    CLI::App app(DESCRIPTION);
    Declare(app, options);
    if (const std::optional<int> status = cli::Parse(app, argc, argv, "zorv-fleet")) {
        return status;
    }
    if (options.isFold) {
        return std::nullopt;
    }
    cli::TakeZone("zorv-fleet", options.zone);
    if (!options.hosts && options.Captures().empty()) {
        throw cli::UsageError("no CAPTURE is named: none of the words is an existing path");
    }
    CheckTimes(options.Times());
    return std::nullopt;
}

}  // namespace fleet

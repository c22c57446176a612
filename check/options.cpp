#include "check/options.h"

#include <CLI/CLI.hpp>

namespace check {
namespace {

constexpr const char* DESCRIPTION =
    "Checks a route configuration: what its causality graphs say, and what they were meant to say.";

constexpr const char* EXAMPLES = R"(
Without FILE the configuration of the root or capture is checked against its statistics database too. Each
finding is a line FILE:LINE:COLUMN: error|warning|note: GRAPH: TEXT [RULE], as compilers write them; columns
count bytes. The last line counts.

With --plant, lumo-sim writes a world of the configuration for each point at which an analysis of delays can
come, and three seeds, with a fault there; the plug-in's walk and zorv-explain are asked, and a table tells
what they name. A point is found when it is named with every seed. --strict: status 1 unless the explanation
finds each point that counts requests.

Exit status: 0 clean, or warnings and notes only; 1 errors, with --strict warnings too; 2 wrong usage; 3 the
configuration, the database or the capture cannot be read, or a program for --plant fails.

Examples:
  zorv-check route_config.json              a file that is being written
  zorv-check --strict --root /tmp/world     a root and its database; warnings count as errors do
  zorv-check --capture /tmp/node1 --json    a copy of a node's files, for programs
  zorv-check --plant route_config.json      what the graphs can find
  zorv-check --list                         the rules, and why there is each
)";

void Declare(CLI::App& app, Options& options) {
    cli::SetUsage(app, "zorv-check [OPTIONS] [FILE]");
    app.footer(EXAMPLES);
    app.set_version_flag("--version", "zorv-check " CHECK_VERSION);
    cli::DeclareInputOptions(app, options);
    app.add_option("FILE", options.file, "The configuration, in place of a root's or a capture's")
        ->excludes(app.get_option("--root"))
        ->excludes(app.get_option("--capture"))
        ->type_name("");
    app.add_flag("--strict", options.strict, "Warnings count as errors do");
    app.add_flag("--json", options.json, "Print JSON");
    app.add_flag("--list", options.list, "List the rules, each with its reason");
    CLI::Option* plant = app.add_flag("--plant", options.plant,
                                      "Plant a fault at every point, and tell which of them are found")
                             ->excludes("--list");
    app.add_option("--point", options.point, "Plant at this point only")->type_name("NAME")->needs(plant);
    app.add_option("--jobs", options.jobs, "Worlds to plant into at a time; default: one for each core")
        ->type_name("N")
        ->check(CLI::Range(1, 256).description(""))
        ->needs(plant);
}

}  // namespace

std::optional<int> ParseOptions(int argc, char** argv, Options& options) {
    CLI::App app(DESCRIPTION);
    Declare(app, options);
    return cli::Parse(app, argc, argv, "zorv-check");
}

}  // namespace check

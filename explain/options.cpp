#include "explain/options.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "host/services/text.h"

namespace explain {
namespace {

constexpr const char* DESCRIPTION =
    "Explains why a trace point was slow: where its extra delay goes, and how sure that is.";

constexpr const char* EXAMPLES = R"(
START and END are compact local times such as 20230105103000, at most two days apart; MINUTES is a length of
time up to now. Without --point, every point that the detector flags in the range is explained.

Exit status: 0 answered, 1 nothing anomalous, 2 wrong usage, 3 no data or no configuration, 4 cannot tell.

Examples:
  zorv-explain --root /tmp/world 60                          explains the last hour
  zorv-explain --root /tmp/world --json START END            the same as JSON, for programs
  zorv-explain --root /tmp/world --html page.html START END  a page to show, with the proof of its input
  zorv-explain --root /tmp/world --point TGT_LUMO_HOST_READ --at 20230105113000 START END
)";

// Of a zone such as +0800. The system would take one that is out of range for UTC.
std::string CheckedZone(const std::string& zone) {
    const bool complete = zone.size() == 5 && (zone[0] == '+' || zone[0] == '-') &&
                          zone.find_first_not_of("0123456789", 1) == std::string::npos;
    return complete && zone.substr(1, 2) <= "14" && zone[3] <= '5'
               ? std::string()
               : "a zone has a sign and four digits, such as +0800";
}

class HelpFormatter : public CLI::Formatter {
public:
    std::string make_usage(const CLI::App* /*app*/, std::string /*name*/) const override {
        return "Usage: zorv-explain [OPTIONS] START END | MINUTES\n";
    }
};

void Declare(CLI::App& app, Options& options) {
    app.formatter(std::make_shared<HelpFormatter>());
    app.footer(EXAMPLES);
    app.set_version_flag("--version", "zorv-explain " EXPLAIN_VERSION);
    app.add_option("--root", options.root, "Directory that stands before every fixed path; default: none")
        ->type_name("DIR");
    app.add_option("--zone", options.zone, "Zone of all local times, such as +0800; default: this machine's")
        ->type_name("Z")
        ->check(CheckedZone);
    CLI::Option* point = app.add_option("--point", options.point, "The point to explain")->type_name("NAME");
    app.add_option("--graph", options.graph, "The graph to explain it in; default: all that the plug-in uses")
        ->type_name("NAME")
        ->needs(point);
    app.add_option("--at", options.at, "When the point was slow; default: the latest time that it was")
        ->type_name("TIME");
    app.add_flag("--json", options.json, "Print JSON");
    app.add_option("--html", options.html, "Write a page to this file as well")->type_name("FILE");
    app.add_option("--log", options.log, "Append the log to this file; default: no log")->type_name("FILE");
    app.add_option("TIMES", options.times, "START END, or MINUTES")->required()->expected(1, 2);
}

}  // namespace

std::optional<int> ParseOptions(int argc, char** argv, Options& options) {
    CLI::App app(DESCRIPTION);
    Declare(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& answer) {
        return app.exit(answer);
    } catch (const CLI::Error& error) {
        std::cerr << "zorv-explain: " << Printable(error.what())
                  << "\nRun with --help for more information.\n";
        return STATUS_USAGE;
    }
    return std::nullopt;
}

}  // namespace explain

#include "cli/options.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>
#include <memory>
#include <utility>

#include "cli/program.h"
#include "text/printable.h"
#include "text/zone.h"

namespace cli {
namespace {

class UsageFormatter : public CLI::Formatter {
public:
    explicit UsageFormatter(std::string line) : usage(std::move(line)) {}

    std::string make_usage(const CLI::App* /*app*/, std::string /*name*/) const override {
        return "Usage: " + usage + "\n";
    }

private:
    const std::string usage;
};

}  // namespace

void DeclareInputOptions(CLI::App& app, InputOptions& options) {
    CLI::Option* root =
        app.add_option("--root", options.root, "Directory that stands before every fixed path; default: none")
            ->type_name("DIR");
    CLI::Option* capture =
        app.add_option(
               "--capture", options.capture,
               "The same for a copy of a node's files, a folder or a tar archive, which stays as it is")
            ->type_name("FILE")
            ->excludes(root);
    app.add_flag("--empty-heal", options.emptyHeal, "Do without the heal database that a capture lacks")
        ->needs(capture);
    app.add_option(
           "--zone", options.zone,
           "Zone of all local times: +0800, +08:00, +8, Asia/Shanghai; default: a capture's, as it tells, "
           "else this machine's")
        ->type_name("Z")
        ->check(FaultOfZone)
        ->take_last();
}

void TakeZone(const char* program, const std::optional<std::string>& zone) {
    if (const std::string note = KeepZone(zone); !note.empty()) {
        std::fprintf(stderr, "%s: %s\n", program, note.c_str());
    }
}

std::optional<int> Parse(CLI::App& app, int argc, const char* const* argv, const char* program,
                         const std::function<void()>& complete) {
    try {
        app.parse(argc, argv);
        if (complete) {
            complete();
        }
        return std::nullopt;
    } catch (const CLI::Success& answer) {
        const int status = app.exit(answer);
        return std::cout.flush() ? status : 1;
    } catch (const CLI::Error& error) {
        std::cerr << program << ": " << Printable(error.what())
                  << "\nRun with --help for more information.\n";
        return STATUS_USAGE;
    }
}

void SetUsage(CLI::App& app, const std::string& usage) {
    app.formatter(std::make_shared<UsageFormatter>(usage));
}

}  // namespace cli

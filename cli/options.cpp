#include "cli/options.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <utility>

namespace cli {
namespace {

// What is wrong with a zone such as +0800; empty: nothing. The system would take one that is out of range for
// UTC.
std::string FaultOfZone(const std::string& zone) {
    const bool complete = zone.size() == 5 && (zone[0] == '+' || zone[0] == '-') &&
                          zone.find_first_not_of("0123456789", 1) == std::string::npos;
    return complete && zone.substr(1, 2) <= "14" && zone[3] <= '5'
               ? std::string()
               : "a zone has a sign and four digits, such as +0800";
}

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
    app.add_option("--zone", options.zone, "Zone of all local times, such as +0800; default: this machine's")
        ->type_name("Z")
        ->check(FaultOfZone)
        ->take_last();
}

int PrintAnswer(CLI::App& app, const CLI::Success& answer) {
    const int status = app.exit(answer);
    return std::cout.flush() ? status : 1;
}

void SetUsage(CLI::App& app, const std::string& usage) {
    app.formatter(std::make_shared<UsageFormatter>(usage));
}

}  // namespace cli

#include "simulator/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <iomanip>
#include <sstream>

#include "simulator/live_arguments.h"
#include "simulator/plan/scenario.h"
#include "text/local_time.h"
#include "text/time_words.h"

namespace lumosim {
namespace {

constexpr char DESCRIPTION[] =
    "Plays the storage system: writes statistics, heal events and a route configuration under a folder,\n"
    "with a planted fault, and the truth about it as truth.json; with --live it goes on writing.";

constexpr char EXAMPLES[] =
    "Examples:\n"
    "  lumo-sim --root /tmp/world  the last four hours, with a slow disk\n"
    "  lumo-sim --root /tmp/world --scenario nas-slow --seed 7  another fault, other noise\n"
    "  lumo-sim --root /tmp/world --scenario ongoing --fault-strength 1.5  a mild one that goes on\n"
    "  lumo-sim --root /tmp/world --scenario error-burst --error-type IORETRY  errors of another type\n"
    "  lumo-sim --root /tmp/world --scenario healthy --hours 48 --end 20230105143000  two days of 2023\n"
    "  lumo-sim --root /tmp/world --config my.json --fault-point MY_DISK  your own graphs, one point slow\n"
    "  lumo-sim --root /tmp/fleet --fleet 8 --scenario nas-slow  eight nodes, one of them slow\n"
    "  lumo-sim --root /tmp/world --live --step 1  goes on, with samples every second\n"
    "  lumo-sim --root /tmp/world --live --speed 120 --for 1800 --fault-after 600  half an hour in 15 "
    "seconds\n"
    "\n";

constexpr char EXIT_STATUS[] = "Exit status: 0 written, or stopped; 1 a file cannot be written; 2 bad usage.";

std::string ScenarioList() {
    std::string text;
    for (const Scenario& scenario : Scenarios()) {
        std::string name(scenario.name);
        name.resize(14, ' ');
        text += name + std::string(scenario.summary) + "\n";
    }
    return text;
}

// What is wrong with a seed; empty: nothing.
std::string CheckSeed(const std::string& text) {
    uint64_t seed = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, seed);
    return result.ec == std::errc() && result.ptr == end ? "" : "must be a number of 64 bits, not " + text;
}

// `behind`: how many seconds before now a range ends of which nothing else is said.
int64_t EndTime(const std::string& text, const WorldOptions& options, int64_t behind) {
    constexpr int64_t FIRST = 31536000, LAST = 32503679999;  // of the years 1971 to 2999
    const int64_t now = std::time(nullptr);
    if (text.empty()) {
        const int64_t end = now - behind;
        return options.step > 0 ? end - end % options.step : end;
    }
    try {
        const int64_t end = TimeOf(text, {now, options.zoneOffset});
        if (end < FIRST || end > LAST) {
            throw TimeError("between 1971 and 2999");
        }
        return end;
    } catch (const TimeError& error) {
        throw cli::UsageError(std::string("--end must be a time: ") + error.what());
    }
}

// Of the schema that is installed with this program.
std::string SchemaUri() {
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
    const std::filesystem::path file = program.parent_path() / "../share/zorv/route.schema.json";
    std::ostringstream uri;
    uri << "file://" << std::hex << std::uppercase;
    for (const char letter : file.lexically_normal().string()) {
        const auto byte = static_cast<unsigned char>(letter);
        const bool isPlain = std::isalnum(byte) != 0 || std::strchr("/._-~", letter) != nullptr;
        isPlain ? uri << letter : uri << '%' << std::setw(2) << int{byte};
    }
    return uri.str();
}

void AddWorldOptions(CLI::App& app, WorldOptions& world) {
    app.add_option("--scenario", world.scenario, "What is planted; --list shows all")
        ->type_name("NAME")
        ->capture_default_str();
    app.add_option("--seed", world.seed, "The same seed gives the same world")
        ->check(CheckSeed)
        ->type_name("N")
        ->capture_default_str();
    app.add_option("--hours", world.hours, "Length of the range; 4, or more where the scenario needs it")
        ->type_name("H");
    app.add_option("--step", world.step, "Time between two samples")
        ->type_name("SECONDS")
        ->capture_default_str();
    app.add_option("--period", world.period, "How long a data table lasts")
        ->type_name("SECONDS")
        ->capture_default_str();
    app.add_flag_callback(
        "--schema", [&world] { world.schema = SchemaUri(); },
        "The configuration names the schema by which editors help to change it");
    app.add_flag("--wal", world.hasWal, "Statistics with a write-ahead log, not a rollback journal");
    app.add_option("--config", world.config, "Graphs of this route configuration, not lumo-sim's own")
        ->type_name("FILE");
    app.add_option("--constant-point", world.constantPoints,
                   "A point whose statistics never change; may be given several times")
        ->type_name("NAME")
        ->allow_extra_args(false);
    app.add_option("--twin-points", world.twinPoints,
                   "Two points with the same statistics; may be given several times")
        ->type_name("NAME NAME")
        ->allow_extra_args(false);
    app.add_option("--error-type", world.errorType, "Errors to plant: IOERROR, IORETRY or IOACCESSDENY")
        ->type_name("TYPE");
    app.add_option("--error-point", world.errorPoint, "Where to plant them: a point of an error graph")
        ->type_name("NAME");
    app.add_flag("--force", world.mayReplace, "Also replaces databases and a configuration of no world");
}

// What is planted otherwise than the scenario has it.
void AddFaultOptions(CLI::App& app, WorldOptions& world, std::optional<int64_t>& faultStart) {
    CLI::App& options = *app.add_option_group("Fault", "In place of what the scenario has");
    const auto add = [&](const char* name, auto& value, const char* type, const char* text) {
        options.add_option(name, value, text)->type_name(type);
    };
    add("--fault-point", world.faultPoint, "NAME", "Where the fault is: any point that has statistics");
    add("--fault-start", faultStart, "SECONDS",
        "When the fault begins, after the first sample; below 0: before it");
    add("--fault-length", world.faultLength, "SECONDS", "How long the fault lasts, one sample at least");
    add("--fault-strength", world.faultStrength, "FACTOR",
        "How many times as slow hosts see it at its worst");
    add("--second-fault", world.secondFault, "FACTOR",
        "What hosts see of a second fault, against the first; 1: as much");
    add("--spike", world.spike, "FACTOR", "Makes the host point so many times as slow for a moment before");
    add("--spike-before", world.spikeBefore, "SECONDS", "How long before the fault; 1800 when left out");
    add("--noise", world.noise, "PERCENT",
        "How far delays stray by chance; 7 at host points, 3 of others' own part when left out");
    add("--swing", world.swing, "PERCENT", "How far delays rise and fall with the day; 2 when left out");
}

// What is planted into graphs of which only their author knows the points.
const char* ImpliedScenario(const WorldOptions& world) {
    if (!world.faultPoint.empty()) {
        return "slow-disk";
    }
    return world.errorPoint.empty() && world.errorType.empty() ? "healthy" : "error-burst";
}

}  // namespace

Request ParseCommandLine(int argc, const char* const* argv) {
    Request request;
    WorldOptions& world = request.world;
    std::string root;
    std::string end;
    bool list = false;
    std::optional<int64_t> faultStart;
    CLI::App app(DESCRIPTION, "lumo-sim");
    app.footer(std::string(EXAMPLES) + LIVE_HELP + EXIT_STATUS);
    app.set_version_flag("--version", "lumo-sim " LUMO_SIM_VERSION);
    app.add_option("--root", root, "Folder of the world; created when missing, a world in it is replaced")
        ->type_name("DIR");
    AddWorldOptions(app, world);
    app.add_option("--end", end, "End of the range, local time, also as -30m; now when left out")
        ->type_name("YYYYMMDDhhmmss");
    app.add_flag("--list", list, "Lists the scenarios");
    CLI::Option* fleet = app.add_option("--fleet", request.fleet,
                                        "Worlds of so many nodes below DIR: one has the fault, others wait "
                                        "for it, one is under load, one "
                                        "broken, the rest healthy")
                             ->type_name("N");
    AddFaultOptions(app, world, faultStart);
    LiveArguments live(app);
    app.get_option("--live")->excludes(fleet);
    app.get_option("--fault-start")->excludes(app.get_option("--fault-after"));
    app.get_option("--config")->excludes(app.get_option("--schema"));  // it is written as it is
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        request.text = app.help();
        return request;
    } catch (const CLI::CallForVersion& version) {
        request.text = std::string(version.what()) + "\n";
        return request;
    } catch (const CLI::ParseError& error) {
        throw cli::UsageError(error.what());
    }
    if (list) {
        request.text = ScenarioList();
        return request;
    }
    if (root.empty()) {
        throw cli::UsageError("--root DIR is missing");
    }
    if (!world.config.empty() && app.count("--scenario") == 0) {
        world.scenario = ImpliedScenario(world);
    }
    if (const Scenario* scenario = FindScenario(world.scenario); app.count("--hours") == 0 && scenario) {
        world.hours = std::max(world.hours, scenario->minimumHours);
    }
    world.root = root;
    world.zoneOffset = ZoneOffsetAt(std::time(nullptr));
    world.end = EndTime(end, world, live.SecondsBehind());
    CheckOptions(world);
    if (faultStart) {
        // Refused when it is out of its range, before it can overflow.
        CheckRange("--fault-start", *faultStart, -MAXIMUM_HOURS * SECONDS_PER_HOUR,
                   world.hours * SECONDS_PER_HOUR - world.step);
        world.faultAt = world.Start() + *faultStart;
    }
    request.live = live.Options(world);
    return request;
}

}  // namespace lumosim

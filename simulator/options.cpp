#include "simulator/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <ctime>

#include "simulator/local_time.h"
#include "simulator/scenario.h"

namespace lumosim {
namespace {

constexpr char DESCRIPTION[] =
    "Plays the storage system: writes statistics, heal events and a route configuration under a folder,\n"
    "with a planted fault, and the truth about it as truth.json; with --live it goes on writing.";

constexpr char EXAMPLES[] =
    "Examples:\n"
    "  lumo-sim --root /tmp/world\n"
    "  lumo-sim --root /tmp/world --scenario nas-slow --seed 7\n"
    "  lumo-sim --root /tmp/world --scenario error-burst --error-type IORETRY\n"
    "  lumo-sim --root /tmp/world --scenario healthy --hours 48 --end 20230105143000\n"
    "  lumo-sim --root /tmp/world --live --step 1\n"
    "  lumo-sim --root /tmp/world --live --speed 120 --for 1800 --fault-after 600 --recreate 900\n"
    "\n"
    "With --live, samples follow the history as time goes by, one transaction for all of one time, and the "
    "fault is\n"
    "yet to come; a line on stdout tells each event. All SECONDS are those of the world's clock. It begins "
    "at --end\n"
    "and is real time, unless --speed is given: then it begins as far in the past as --for is long (an hour, "
    "if\n"
    "that is missing), runs N times as fast until it has caught up, and goes on in real time; so it is never "
    "in the\n"
    "future, and commands that look at the last minutes see all there is. SIGINT and SIGTERM stop it, "
    "SIGHUP\n"
    "re-creates the statistics database. Whoever is started next on the folder replaces the world, whatever "
    "became\n"
    "of its producer; one that still runs then stops with status 1.\n"
    "\n"
    "Exit status: 0 written, or stopped; 1 a file cannot be written; 2 bad usage.";

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
    if (text.empty()) {
        const int64_t end = std::time(nullptr) - behind;
        return options.step > 0 ? end - end % options.step : end;
    }
    const auto end = ParseCompactTime(text, options.zoneOffset);
    if (!end) {
        throw BadInput("--end must be a local date and time as YYYYMMDDhhmmss, not \"" + text + "\"");
    }
    return *end;
}

// How far in the past a clock begins that is to catch up.
int64_t SecondsBehind(const LiveOptions& live) {
    return live.speed > 1 ? live.duration.value_or(SECONDS_PER_HOUR) : 0;
}

CLI::App& AddLiveOptions(CLI::App& app, bool& isLive, int64_t& faultAfter, std::string& way,
                         LiveOptions& live) {
    CLI::App& group = *app.add_option_group("Live");
    const auto add = [&](const std::string& name, auto& value, const char* type, const std::string& text) {
        return group.add_option(name, value, text)->type_name(type);
    };
    group.add_flag("--live", isLive, "Goes on writing as time goes by");
    add("--speed", live.speed, "N", "Runs N times as fast as real time, from the past on");
    add("--for", live.duration, "SECONDS", "Stops after that time; runs on when left out");
    add("--fault-after", faultAfter, "SECONDS", "When the fault begins")->capture_default_str();
    add("--recreate", live.recreation, "SECONDS", "Re-creates the statistics database so often");
    add("--recreate-by", way, "WAY", "delete: the old file, then write a new one; rename: a new one over it")
        ->check(CLI::IsMember({"delete", "rename"}).description(""))
        ->capture_default_str();
    add("--keep", live.keptHours, "H", "Drops data tables that are older; 48, or --hours if that is more");
    group.add_flag("--wal", live.hasWal, "Write-ahead log instead of a rollback journal");
    return group;
}

// All of them make sense with --live only.
void CheckLiveGroup(const CLI::App& group) {
    for (const CLI::Option* option : group.get_options()) {
        if (option->count() > 0) {
            throw BadInput(option->get_name() + " needs --live");
        }
    }
}

}  // namespace

Request ParseCommandLine(int argc, const char* const* argv) {
    Request request;
    WorldOptions& world = request.world;
    std::string root;
    std::string end;
    bool list = false;
    bool isLive = false;
    int64_t faultAfter = DEFAULT_FAULT_AFTER;
    std::string way = "delete";
    LiveOptions live;
    CLI::App app(DESCRIPTION, "lumo-sim");
    app.footer(EXAMPLES);
    app.set_version_flag("--version", "lumo-sim " LUMO_SIM_VERSION);
    app.add_option("--root", root, "Folder of the world; created when missing, a world in it is replaced")
        ->type_name("DIR");
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
    app.add_option("--end", end, "End of the range, local time; now when left out")
        ->type_name("YYYYMMDDhhmmss");
    app.add_option("--error-type", world.errorType, "Errors to plant: IOERROR, IORETRY or IOACCESSDENY")
        ->type_name("TYPE");
    app.add_option("--error-point", world.errorPoint, "Where to plant them: a point of an error graph")
        ->type_name("NAME");
    app.add_flag("--list", list, "Lists the scenarios");
    const CLI::App& group = AddLiveOptions(app, isLive, faultAfter, way, live);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        request.text = app.help();
        return request;
    } catch (const CLI::CallForVersion& version) {
        request.text = std::string(version.what()) + "\n";
        return request;
    } catch (const CLI::ParseError& error) {
        throw BadInput(error.what());
    }
    if (list) {
        request.text = ScenarioList();
        return request;
    }
    if (root.empty()) {
        throw BadInput("--root DIR is missing");
    }
    if (const Scenario* scenario = FindScenario(world.scenario); app.count("--hours") == 0 && scenario) {
        world.hours = std::max(world.hours, scenario->minimumHours);
    }
    world.root = root;
    world.zoneOffset = ZoneOffset();
    world.end = EndTime(end, world, SecondsBehind(live));
    CheckOptions(world);
    if (isLive) {
        world.faultAt = world.end + faultAfter;
        live.keptHours = app.count("--keep") == 0 ? std::max(live.keptHours, world.hours) : live.keptHours;
        CheckLiveOptions(live, world, std::time(nullptr));
        live.way = way == "rename" ? Recreation::RENAME : Recreation::DELETE;
        request.live = live;
    } else {
        CheckLiveGroup(group);
    }
    return request;
}

}  // namespace lumosim

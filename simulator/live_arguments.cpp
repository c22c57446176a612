#include "simulator/live_arguments.h"

#include <algorithm>
#include <ctime>

namespace lumosim {

const char* const LIVE_HELP =
    R"(With --live, samples follow the history as time goes by, all of one time in one
transaction, and the fault is yet to come; a line on stdout tells each event. All
SECONDS are those of the world's clock. It begins at --end and runs as real time does,
unless --speed is given: then it begins as far in the past as --for is long (an hour,
if that is missing), runs N times as fast until it has caught up, and goes on in real
time. So it is never in the future, and commands that look at the last minutes see all
there is. SIGINT and SIGTERM stop it, SIGHUP re-creates the statistics database. Who
is started next on the folder replaces the world, whatever became of its producer; one
that still runs then stops with status 1.

)";

LiveArguments::LiveArguments(CLI::App& app) {
    CLI::App& options = *app.add_option_group("Live");
    group = &options;
    const auto add = [&](const std::string& name, auto& value, const char* type, const std::string& text) {
        return options.add_option(name, value, text)->type_name(type);
    };
    options.add_flag("--live", isLive, "Goes on writing as time goes by");
    add("--speed", live.speed, "N", "Runs N times as fast as real time, from the past on");
    add("--for", live.duration, "SECONDS", "Stops after that time; runs on when left out");
    add("--fault-after", live.faultAfter, "SECONDS", "When the fault begins")->capture_default_str();
    add("--recreate", live.recreation, "SECONDS", "Re-creates the statistics database so often");
    add("--recreate-by", way, "WAY", "delete: the old file, then write a new one; rename: a new one over it")
        ->check(CLI::IsMember({"delete", "rename"}).description(""))
        ->capture_default_str();
    add("--keep", keptHours, "H", "Drops data tables that are older; 48, or --hours if that is more");
}

int64_t LiveArguments::SecondsBehind() const {
    // What is out of its range is refused later.
    return live.speed > 1 ? std::max<int64_t>(0, live.duration.value_or(SECONDS_PER_HOUR)) : 0;
}

std::optional<LiveOptions> LiveArguments::Options(WorldOptions& world) const {
    if (!isLive) {
        for (const CLI::Option* option : group->get_options()) {
            if (option->count() > 0) {
                throw cli::UsageError(option->get_name() + " needs --live");
            }
        }
        return std::nullopt;
    }
    LiveOptions options = live;
    options.way = way == "rename" ? Recreation::RENAME : Recreation::DELETE;
    options.keptHours = keptHours.value_or(std::max(live.keptHours, world.hours));
    CheckLiveOptions(options, world, std::time(nullptr));
    world.isLive = true;
    if (world.faultAt == 0) {
        world.faultAt = world.end + live.faultAfter;
    }
    return options;
}

}  // namespace lumosim

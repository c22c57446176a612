#include "simulator/live/live_options.h"

#include <string>

namespace lumosim {
namespace {

constexpr int64_t MAXIMUM_SPEED = 86400;
constexpr int64_t MAXIMUM_SECONDS = int64_t{366} * 86400;
constexpr int64_t MAXIMUM_KEPT_HOURS = int64_t{366} * 24;

}  // namespace

void CheckLiveOptions(const LiveOptions& live, const WorldOptions& world, int64_t now) {
    CheckRange("--speed", live.speed, 1, MAXIMUM_SPEED);
    CheckRange("--for", live.duration.value_or(1), 1, MAXIMUM_SECONDS);
    CheckRange("--recreate", live.recreation.value_or(world.step), world.step, MAXIMUM_SECONDS);
    CheckRange("--fault-after", live.faultAfter, 0, MAXIMUM_SECONDS);
    CheckRange("--keep", live.keptHours, world.hours, MAXIMUM_KEPT_HOURS);
    if (world.end > now) {
        throw cli::UsageError("--end must not be in the future, as live samples begin there");
    }
}

}  // namespace lumosim

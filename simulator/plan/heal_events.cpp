#include "simulator/plan/heal_events.h"

#include "text/local_time.h"

namespace lumosim {

std::vector<HealEvent> HealEvents(const WorldOptions& options, const Scenario& scenario, const Plan& plan) {
    std::vector<HealEvent> events;
    if (const PlantedFault* fault = plan.Fault()) {
        for (const HealRecipe& recipe : scenario.heals) {
            events.push_back({CompactTime(fault->start + recipe.offset, options.zoneOffset), recipe});
        }
    }
    return events;
}

bool IsReported(const HealEvent& event, const WorldOptions& options, const Plan& plan) {
    constexpr int FIRST_NODE = 1;
    return event.recipe.node == FIRST_NODE &&
           (event.recipe.cause == "IOHANG" || event.recipe.cause == "IOERR") &&
           event.time >= CompactTime(options.Start(), options.zoneOffset) &&
           event.time <= CompactTime(plan.End(), options.zoneOffset);
}

}  // namespace lumosim

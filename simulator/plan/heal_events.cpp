#include "simulator/plan/heal_events.h"

#include "simulator/files/local_time.h"
#include "simulator/files/sqlite_file.h"

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

void WriteHealEvents(const std::filesystem::path& path, const std::vector<HealEvent>& events) {
    SqliteFile database(path);
    database.Execute(
        "begin;"
        "create table fault_heal_event(healtime integer, modulename text, healcause text, infercause text,"
        " nodeid integer);");
    {
        SqliteStatement row(database, "insert into fault_heal_event values(?, ?, ?, ?, ?);");
        for (const HealEvent& event : events) {
            row.Bind(int64_t{std::stoll(event.time)}).Bind(event.recipe.module).Bind(event.recipe.cause);
            row.Bind(event.recipe.inferredCause).Bind(int64_t{event.recipe.node}).Run();
        }
    }
    database.Execute("commit;");
    database.Close();
}

}  // namespace lumosim

#include "simulator/files/world_files.h"

#include "simulator/files/sqlite_file.h"

namespace lumosim {

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

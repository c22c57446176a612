#include "explain/finding/healing.h"

#include <algorithm>

#include "agent/agent_message.h"
#include "explain/finding/reason.h"
#include "explain/finding/sample_store.h"
#include "fault_common/fault_common.h"
#include "fault_common/fault_number.h"
#include "fault_database/fault_database.h"
#include "fault_database/fault_database_table.h"

namespace explain {
namespace {

constexpr const char* TABLE = "fault_heal_event";
constexpr size_t COLUMNS = 5;

// Null cells are empty texts, as in the plug-in's own query.
uint32_t TakeCells(char** result, int32_t rowCount, int32_t columnCount, std::vector<int64_t>& /*first*/,
                   std::vector<int64_t>& /*second*/, std::vector<std::string>& cells) {
    FaultCheckColumns(rowCount, columnCount, 1);
    for (int64_t i = columnCount; i < (int64_t{rowCount} + 1) * columnCount; ++i) {
        cells.emplace_back(result[i] != nullptr ? result[i] : "");
    }
    return 0;
}

std::vector<std::string> Ask(const std::string& sql) {
    std::vector<int64_t> first;
    std::vector<int64_t> second;
    std::vector<std::string> cells;
    if (FaultHealDataBaseExcuteSql(sql, TakeCells, first, second, cells) != 0) {
        throw NoData({ReasonKind::UNREADABLE_HEALINGS});
    }
    return cells;
}

}  // namespace

std::vector<Healing> HealingsIn(const Window& window) {
    // A statement for a table that is not there would be tried again for a minute.
    if (Ask(std::string("select name from sqlite_master where name = '") + TABLE + "';").empty()) {
        return {};
    }
    const std::vector<std::string> cells =
        Ask(std::string("select healtime, nodeid, healcause, modulename, infercause from ") + TABLE +
            " where healtime >= " + CompactTime(window.start) +
            " and healtime <= " + CompactTime(window.end) + ";");
    std::vector<Healing> healings;
    for (size_t i = 0; i + COLUMNS <= cells.size(); i += COLUMNS) {
        std::string seconds;
        if (TransDateToTime(cells[i], seconds) == 0 && !cells[i + 1].empty()) {
            Healing& healing = healings.emplace_back();
            healing.time = FaultToInt64(seconds);
            healing.node = FaultToInt64(cells[i + 1]);
            healing.kind = cells[i + 2];
            healing.module = cells[i + 3];
            healing.cause = cells[i + 4];
            healing.isHere = healing.node == static_cast<int64_t>(ZORV_GetLocalNid());
            healing.isOfDelay = healing.kind == "IOHANG" || healing.kind == "IOERR";
        }
    }
    std::stable_sort(healings.begin(), healings.end(),
                     [](const Healing& a, const Healing& b) { return a.time < b.time; });
    return healings;
}

}  // namespace explain

#include "host/services/startup.h"

#include <cstring>
#include <mutex>

#include "agent/agent_startup.h"
#include "host/process/immortal.h"
#include "host/services/log.h"

namespace zorv {
namespace {
struct Rows {
    std::mutex mutex;
    std::vector<StartupResult> results;
};

Rows& AllRows() {
    static Rows& rows = MakeImmortal<Rows>();
    return rows;
}

uint32_t RunRow(const ZORV_MODULE_INIT_S& row) {
    const std::string name(row.name, strnlen(row.name, sizeof row.name));
    if (row.init == nullptr) {
        HOST_LOG(VPLOG_LEVEL_ERROR, "start-up row %s has nothing to run", name.c_str());
        return 1;
    }
    const uint32_t result = Guarded("start-up row", 1U, [&] { return row.init(); });
    const uint32_t level = result == 0 ? VPLOG_LEVEL_INFO : VPLOG_LEVEL_ERROR;
    HOST_LOG(level, "start-up row %s: result %u", name.c_str(), result);
    Rows& rows = AllRows();
    const std::lock_guard<std::mutex> lock(rows.mutex);
    rows.results.push_back({name, result});
    return result;
}
}  // namespace

std::vector<StartupResult> StartupResults() {
    Rows& rows = AllRows();
    const std::lock_guard<std::mutex> lock(rows.mutex);
    return rows.results;
}
}  // namespace zorv

uint32_t ZORV_ModulesStartup(ZORV_MODULE_INIT_S* rows, uint32_t count) {
    if (rows == nullptr) {
        return 1;
    }
    return zorv::Guarded("start-up", 1U, [=] {
        uint32_t failed = 0;
        for (uint32_t i = 0; i < count; ++i) {
            failed |= zorv::RunRow(rows[i]) == 0 ? 0U : 1U;
        }
        return failed;
    });
}

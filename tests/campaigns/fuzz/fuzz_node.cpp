#include "campaigns/fuzz/fuzz.h"

#include <algorithm>

#include "fault_common/fault_vocabulary.h"
#include "fault_database/fault_database.h"
#include "fault_debug/fault_debug.h"
#include "fault_server/fault_diagnose.h"
#include "host/command/command_line.h"
#include "support/recording_agent.h"

// Twelve samples are the fewest of which one can lie beyond three deviations; the other points have few.
static std::vector<StatisticsRow> Rows() {
    constexpr int64_t MIDNIGHT = 1627920000;  // the range's start, eight hours east
    std::vector<StatisticsRow> rows;
    for (const std::string point : {"TGT_LUMO_HOST_READ", "A", "B", "D", "OB_C", "TGT_IO_ERRCODE_COMMON",
                                    "SPACE_BLOCK_BDM_READ", "POOL_DOP_READ_TIME_IN_POOL"}) {
        const int64_t margin = point == "TGT_LUMO_HOST_READ" ? 0 : 4;
        for (int64_t i = margin; i < 12 - margin; ++i) {
            rows.push_back({point, MIDNIGHT + 60 * i, i == 6 ? 9000 : 100, {i % 3, 0, i, 0, 1}});
        }
    }
    return rows;
}

FuzzNode::FuzzNode() {
    setenv("TZ", "CST-8", 1);
    world.Config(BytesOf(FUZZ_FOLDER "/corpus/route/node.json"));
    world.Heal();
    world.Statistics({{"lumo_data_20210803000000", Rows()}});
    Demand(ZorvSmartDiagnoseJsonObjectInit() == 0 && FaultDataBaseInit() == 0, "the node opens");
}

void FuzzNode::Renew() {
    static const auto columns = g_mapErrIdxName;
    g_mapErrIdxName = columns;
    Agent::Reset();
    FaultDiagnoseDebugInit();
}

std::string FuzzNode::Type(const std::string& line) {
    zorv::Words words = zorv::SplitLine("diagnose smartdiagnose " + line);
    const ZORV_DIAG_CMD_S* row = Agent()->commandGroups.at("smartdiagnose");
    while (row->name != nullptr && (words.size() < 3 || words[2] != row->name)) {
        ++row;
    }
    if (row->name == nullptr) {
        return {};
    }
    std::vector<char*> argv(words.size());
    std::transform(words.begin(), words.end(), argv.begin(), [](std::string& word) { return word.data(); });
    Demand(row->handler(static_cast<int32_t>(argv.size()), argv.data()) == 0, "a handler returns 0");
    std::string screen = Agent::TakeConsole();
    Demand(!screen.empty() && screen.back() == '\n', "a command prints whole lines");
    return screen;
}

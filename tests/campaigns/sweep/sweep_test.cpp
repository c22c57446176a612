// Fails all that the plug-in stands on, one call after the other, through all that an agent can ask of it.
// SMARTDIAGNOSE_LONG in the environment leaves out no call.
#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>

#include "agent/agent_switch.h"
#include "fault_database/fault_database_connection.h"
#include "fault_server/fault_diagnose.h"
#include "fault_spectrum_graph/fault_json_object.h"
#include "support/database_test.h"
#include "tests/campaigns/sweep/faults.h"

namespace {

constexpr int64_t MIDNIGHT = 1627920000;  // when the range begins, eight hours east
const std::string RANGE = " 20210803000000 20210803010000";
constexpr const char* CONFIG = R"({
  "SAN_IO_READ": {"edges": [{"source": "1", "target": "3"}, {"source": "1", "target": "2"}],
    "nodes": [{"id": 1, "label": "TGT_LUMO_HOST_READ"}, {"id": 2, "label": "OB_A"},
      {"id": 3, "label": "B", "info": {"subGraph": "BELOW", "suggestion": "a piece of advice for B"}}]},
  "BELOW": {"edges": [{"source": "7", "target": "8"}], "nodes": [{"id": 7, "label": "B"}, {"id": 8, "label": "D"}]},
  "ERRCODE_SAN_PROTO": {"edges": [{"source": "1", "target": "4"}], "nodes": [{"id": 1,
    "label": "TGT_IO_ERRCODE_COMMON", "info": {"attr": "automic", "qname": "B"}}, {"id": 4, "label": "SPACE_B", "info": {"subGraph": "POOL_ERRCODE_READ"}}]},
  "POOL_ERRCODE_READ": {"edges": [{"source": "9", "target": "3"}], "nodes": [{"id": 9, "label": "POOL_ROOT"}]},
  "FACTOR_BDM": {"nodes": [{"label": "B"}]}, "ERRCODE_NAS_PROTO": {"nodes": [{"label": "IDLE"}]},
  "ERRCODE_SMB": {"nodes": [{"label": "IDLE"}]}, "POOL_ERRCODE_WRITE": {"nodes": [{"label": "IDLE"}]},
  "MKV_IO_READ": {"nodes": [{"label": "IDLE"}]}, "MKV_IO_WRITE": {"nodes": [{"label": "IDLE"}]}})";

const std::string GAVE_UP = "35 times, donot retry again|sqlite3_open faild:";
const std::string INNER = "\t\t[ERROR]: inner err\n";
const std::string SEARCH = "\t\t[ERROR]: inner err, and please try it again.\n";
const std::string EQUALS = std::string(67, '=') + "\n";
const std::string TITLE = "\nSmartDiagnose Anomaly Point\nlumoLocName" + std::string(24, ' ') +
                          "anomalyTime" + std::string(15, ' ') + "anomalyValue\n";
const std::string DATA = "\t\t: ZorvFaultGraphDisplay\n\nCausalityGraph mapLumoData\n\n";
const std::string NO_POINT = DATA + " LUMO Loc(B) not exist !\n";
const std::string NO_ROWS = DATA + "lumoLocName            timestamp   avg\n";  // no table was found
const std::string NOTHING = "There's no detect result in this time interval(from 20210";
const std::string NO_PATH =
    "\n                   CausalityGraph Analysis\n" + EQUALS + "There's no abnormal check result.\n";

// Something that an agent asks of the plug-in.
struct Operation {
    std::string name;   // of a command: what the operator types
    std::string shows;  // part of the right answer
    Lines failures;     // what it may answer instead; "..." is the right answer without its last path
    std::function<uint32_t()> run = nullptr;
};

// What fails; its name (a service then fails for ever); what the log or the answer says, a regular
// expression.
using Kind = std::tuple<Fault, std::string, std::string>;

class Sweep : public DatabaseTest, public testing::WithParamInterface<Kind> {
protected:
    static void SetUpTestSuite() { InstallFaults(); }

    Sweep() {
        std::vector<StatisticsTable> tables = {{"lumo_data_20210803000000"}, {"lumo_data_20210803004000"}};
        for (size_t i = 0; i < 16; ++i) {
            for (const char* point : {"TGT_LUMO_HOST_READ", "OB_A", "B", "D", "SPACE_B", "POOL_ROOT"}) {
                tables[i / 11].rows.push_back(
                    {point, MIDNIGHT + 225 * i, i == 8 ? 9000 : 100 + i % 2, {5, 2, 1}});
            }
        }
        Open(tables);
        world.Exec(ZORV_HEAL_DATABASE_FILE,
                   "INSERT INTO fault_heal_event VALUES (20210701000000, 'BDM', 'IOHANG', 'DISK', 2)");
        world.Config(CONFIG);
        Agent()->reply = Bytes(FAULT_DIAG_SWITCH_ON);
        Agent()->iniValues[FAULT_DIAG_SWITCH_FILE] = FAULT_DIAG_SWITCH_ON;
        Agent::Fail("create_thread_nopreempt_raw");  // the tests open the databases themselves
        ZorvSmartDiagnoseInit();
    }

    // What runs later allocates nothing of its own.
    static std::function<uint32_t()> Typed(const std::string& line) {
        std::istringstream stream("diagnose smartdiagnose " + line);
        Lines words(std::istream_iterator<std::string>(stream), {});
        const ZORV_DIAG_CMD_S* row = Agent()->commandGroups.at("smartdiagnose");
        for (; row->name != words[2]; ++row) {
        }
        return [row, words = std::move(words)]() mutable {
            std::array<char*, 7> argv{};
            std::transform(words.begin(), words.end(), argv.begin(),
                           [](std::string& word) { return word.data(); });
            return row->handler(static_cast<int32_t>(words.size()), argv.data());
        };
    }
    static std::function<uint32_t()> Delivered(uint32_t opcode) {
        return [opcode, handler = Agent()->handlers.at(opcode)] {
            std::array<char, 4> value = {FAULT_DIAG_SWITCH_ON};
            ZORV_COMM_INFO_S info{1, 2, 422, opcode, sizeof(value), 1, 99};
            return handler(&info, value.data(), nullptr);
        };
    }
    static uint32_t Started() {
        FaultDataBaseRelease();
        delete std::exchange(FaultJsonObject::pInstance, nullptr);
        return ZorvSmartDiagnoseInit();
    }

    // What an operation does, seen from outside, when a call fails; and the number of calls.
    static auto Outcome(const Operation& operation, int number = 1000000, bool forEver = false) {
        const auto& [fault, name, told] = GetParam();
        Agent::TakeLines();
        Agent()->sleeps.clear();
        Agent()->alarms.clear();
        Agent()->acknowledgements.clear();
        Agent()->jiffies += 20000;     // no line is left out of the log,
        Agent()->localTime += 100000;  // and no alarm
        Agent::Fail(name, -1, number);
        std::string text = "not 0, or an exception\n";
        g_armed = {fault, number, forEver};
        try {
            text.resize(operation.run() == 0 ? 0 : text.size());
        } catch (...) {  // tells itself by the text
        }
        const int calls = std::exchange(g_armed, {}).calls;
        const AgentRecord record = Agent::Record();
        EXPECT_EQ(record.repliesToFree, 0);
        text += (record.alarms.empty() ? "" : "alarm\n") + Agent::TakeConsole();
        for (const MessageCall& answer : record.acknowledgements) {
            text += "acknowledged " + std::to_string(static_cast<int8_t>(answer.payload[0])) + "\n";
        }
        text += FaultJsonObject::GetInstance().IsMember("BELOW") ? "" : "no configuration\n";
        const int open = int{FaultLumoDataBase().IsOpen()} + int{FaultZorvHealDataBase().IsOpen()};
        text += open == 2 ? "" : open == 0 ? "no databases\n" : "half of the databases\n";
        return std::pair(text, calls + number - 1 - record.failures.at(name).second);
    }

    // Fails the operation's calls, one in each run, once or from there on.
    static void Run(const Operation& operation, bool forEver) {
        const auto& [fault, name, told] = GetParam();
        const bool isStart = operation.name == "start", isRetried = !forEver && told == GAVE_UP && !isStart;
        const auto held = [] {
            FaultDataBaseRelease();
            using Files = std::filesystem::directory_iterator;
            return std::pair(std::distance(Files("/proc/self/fd"), Files()), sqlite3_memory_used());
        };
        const auto before = held();
        FaultDataBaseInit();
        const auto [right, calls] = Outcome(operation);
        EXPECT_THAT(right, testing::HasSubstr(operation.shows));
        const int step = isStart || getenv("SMARTDIAGNOSE_LONG") != nullptr ? 1 : 1 + calls / 60;
        for (int number = 1; number <= calls && !HasFailure(); number += step) {
            SCOPED_TRACE(operation.name + ", call " + std::to_string(number) + (forEver ? " and on" : ""));
            FaultDataBaseInit();  // forgets what earlier runs have read
            const std::string found = Outcome(operation, number, forEver).first;
            // Where memory ends, a command says so after what it has printed already.
            const std::string shown = right.substr(0, found.size() - std::min(found.size(), INNER.size()));
            Lines allowed = isRetried ? Lines() : operation.failures;
            std::replace(allowed.begin(), allowed.end(), std::string("..."),
                         right.substr(0, right.rfind("\n" + EQUALS) + 1));
            allowed.push_back(fault == Fault::MEMORY ? shown + INNER : name == "snprintf_s" ? "" : right);
            allowed.push_back(right);
            EXPECT_THAT(allowed, testing::Contains(found));
            EXPECT_LE(Agent::Record().sleeps.size(), isRetried ? 1U : SIZE_MAX);
            if (found != right || fault == Fault::SERVICE) {
                Lines lines = Agent::TakeLines();
                lines.push_back(found);
                EXPECT_THAT(lines, testing::Contains(testing::ContainsRegex(told)));
            }
            EXPECT_EQ(Outcome(operation).first, right) << "afterwards";
        }
        EXPECT_EQ(before, held()) << operation.name;
    }
};

TEST_P(Sweep, Run) {
    const Operation operations[] = {
        {"simudetect 20210803000000 20210803000100", "20010", {}},
        {"delaydetect" + RANGE, "alarm\n", {TITLE}},
        {"datashow B" + RANGE + " 1", "Show", {}},
        {"showgraph maplumodata B" + RANGE, "9000", {NO_POINT, NO_ROWS}},
        {"delayanal" + RANGE, "BELOW", {NOTHING + "803000000 to 20210803010000)!\n", NO_PATH, "..."}},
        {"delayanal 20210701000000 20210701000001", "IOHANG", {NOTHING + "701000000 to 20210701000001)!\n"}},
        {"showfaultfactor BDM" + RANGE, "9000", {SEARCH}},
        {"errcodeshowall" + RANGE, "SPACE ", {SEARCH}},
        {"errcodeshow IOERROR ALL" + RANGE, "POOL_ROOT", {SEARCH, "..."}},
        {"showvalidtime", "20210803000000", {INNER}},
        {"showallerr" + RANGE, "POOL_ROOT", {SEARCH}},
        {"showallerr 60", "no data", {SEARCH, "\t\t[ERROR]: date input err\n"}},
        {"set", "acknowledged 0", {"acknowledged -1\n"}, Delivered(ZORV_OP_SET_FAULTDIAG_SWITCH)},
        {"get", "acknowledged 1", {"acknowledged -1\n"}, Delivered(ZORV_OP_GET_FAULTDIAG_SWITCH)},
        {"start", "", {"no databases\n", "no configuration\n", "no configuration\nno databases\n"}, Started},
        {"tick", "", {}, [tick = Agent()->timers.back().task.callback] { return tick(nullptr), 0U; }},
    };
    for (Operation operation : operations) {
        operation.run = operation.run ? operation.run : Typed(operation.name);
        Run(operation, true);
        Run(operation, false);
    }
}

const Kind KINDS[] = {
    {Fault::FILE_CALL, "FileCalls", GAVE_UP},
    {Fault::SHORT_READ, "ShortReads", GAVE_UP},
    {Fault::SQLITE_MEMORY, "SqliteMemory", GAVE_UP},
    {Fault::MEMORY, "Memory", "Unexpected error: std::bad_alloc|Failed to parse json"},
    {Fault::SERVICE, "memset_s", ""},  // all that it clears is filled in, or clear already
    {Fault::SERVICE, "snprintf_s", "copy timer name failed|make sql failed|snprintf_s failed|date input err"},
    {Fault::SERVICE, "ALM_SendAlarm", "Send alarm fail, ret="},
    {Fault::SERVICE, "Zorvdebug_RegDiagnose", "Fault debug init failed"},
    {Fault::SERVICE, "HealReadZorvModePrivateIni", "acknowledged -1"},
    {Fault::SERVICE, "HealWriteZorvModePrivateIni", "result = -1"},
    {Fault::SERVICE, "ZORV_ModulesStartup", "Smart diagnose init failed"},
    {Fault::SERVICE, "ZORV_ThreadPoolAddTimerTaskSub", "Add SmartDiagnoseDetect timer fail"},
    {Fault::SERVICE, "ZORV_CommRegMsgHandle", "Register msg handle fail"},
    {Fault::SERVICE, "ZORV_CommSendAckMsg", "Send set fault diagnose switch|ack fail, result =-1"},
    {Fault::SERVICE, "ZORV_CommSendRequestMsg", "switch from master node fail ret=-1"},
};
INSTANTIATE_TEST_SUITE_P(Faults, Sweep, testing::ValuesIn(KINDS),
                         [](const auto& kind) { return std::get<1>(kind.param); });

}  // namespace

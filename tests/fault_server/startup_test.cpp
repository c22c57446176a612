#include "fault_server/fault_diagnose.h"

#include <cstring>

#include "fault_spectrum_graph/fault_json_object.h"
#include "fault_switch/fault_diagnose_switch.h"
#include "support/database_test.h"

namespace {

const std::string UNIT = " fault_diagnose.cpp:";
const std::string TIMER_OK = "5" + UNIT + "69 ZorvSmartDiagnoseTimerInit: smart diagnose timer init success.";
const std::string DATABASE_OK = "5" + UNIT + "84 ZorvSmartDiagnoseDataBaseInit: Fault database init success.";
const std::string DEBUG_OK = "5" + UNIT + "99 ZorvSmartDiagnoseDebugInit: Fault debug init success.";
const std::string FAILED = "5" + UNIT + "115 ZorvSmartDiagnoseInit: Smart diagnose init failed.";
const std::string SUCCESS = "5" + UNIT + "117 ZorvSmartDiagnoseInit: Smart diagnose init success.";

// The lines whose numbers are fixed.
Lines FixedLines() {
    Lines lines;
    for (const LogLine& line : Agent::Record().logs) {
        EXPECT_EQ(line.module, 422U);
        if (line.file == "fault_diagnose.cpp" || line.file == "fault_debug.cpp") {
            lines.push_back(Full(line));
        }
    }
    return lines;
}

class Startup : public DatabaseTest {
protected:
    Startup() {
        world.Config(R"({"G": {}})");
        world.Heal();
        world.Statistics({});
    }
};

TEST_F(Startup, HandsSixStepsToTheAgentAndEachSucceeds) {
    EXPECT_EQ(ZorvSmartDiagnoseInit(), 0U);
    const AgentRecord record = Agent::Record();
    const ZORV_MODULE_INIT_S expected[] = {{"JsonObject", ZorvSmartDiagnoseJsonObjectInit, 0},
                                           {"Timer", ZorvSmartDiagnoseTimerInit, 0},
                                           {"MsgHandle", ZorvSmartDiagnoseMsgHandleInit, 0},
                                           {"DataBase", ZorvSmartDiagnoseDataBaseInit, 0},
                                           {"Debug", ZorvSmartDiagnoseDebugInit, 0},
                                           {"LoadFaultDiagSwitchMsg", ZorvFaultDiagSwitchMsgHandleInit, 0}};
    ASSERT_EQ(record.startupRows.size() * 48, sizeof(expected));
    EXPECT_EQ(memcmp(record.startupRows.data(), expected, sizeof(expected)), 0);
    EXPECT_EQ(FixedLines(), (Lines{TIMER_OK, DATABASE_OK, DEBUG_OK, SUCCESS}));
    EXPECT_EQ(record.logs.size(), 6U);  // and one for each database
    EXPECT_TRUE(FaultJsonObject::pInstance->IsMember("G"));
    EXPECT_EQ(record.commandGroups.count("smartdiagnose"), 1U);
    EXPECT_EQ(record.handlers.size(), 2U);
    EXPECT_EQ(ZorvSmartDiagnoseMsgHandleInit(), 0U);
}

TEST_F(Startup, FailuresAreLoggedAndAbsorbed) {
    const std::pair<const char*, Lines> cases[] = {
        {"ZORV_ModulesStartup", {TIMER_OK, DATABASE_OK, DEBUG_OK, FAILED, SUCCESS}},
        {"ZORV_ThreadPoolAddTimerTaskSub",
         {"3" + UNIT + "66 ZorvSmartDiagnoseTimerInit: Add SmartDiagnoseDetect timer fail.", DATABASE_OK,
          DEBUG_OK, FAILED, SUCCESS}},
        {"snprintf_s",
         {"3" + UNIT + "63 ZorvSmartDiagnoseTimerInit: copy timer name failed.", TIMER_OK, DATABASE_OK,
          DEBUG_OK, SUCCESS}},
        {"create_thread_nopreempt_raw", {TIMER_OK, DATABASE_OK, DEBUG_OK, SUCCESS}},
        {"Zorvdebug_RegDiagnose",
         {TIMER_OK, DATABASE_OK,
          "3 fault_debug.cpp:1127 FaultDiagnoseDebugInit: Fault diagnose debug nit failed.",
          "3" + UNIT + "96 ZorvSmartDiagnoseDebugInit: Fault debug init failed.", FAILED, SUCCESS}},
        {"ZORV_CommRegMsgHandle", {TIMER_OK, DATABASE_OK, DEBUG_OK, FAILED, SUCCESS}}};
    for (const auto& [service, lines] : cases) {
        Agent::Reset();
        Agent::SetRoot(world.Path(""));
        Agent::Fail(service, -1);
        EXPECT_EQ(ZorvSmartDiagnoseInit(), 0U);
        EXPECT_EQ(FixedLines(), lines) << service;
    }
}

TEST_F(Startup, GoesOnWithoutConfigurationAndDatabases) {
    world.Remove(ZORV_ROUTE_CONFIG_FILE);
    world.Remove(LUMO_DATABASE_FILE);
    EXPECT_EQ(ZorvSmartDiagnoseInit(), 0U);
    EXPECT_EQ(FixedLines(),
              (Lines{"4" + UNIT + "36 ZorvSmartDiagnoseJsonObjectInit: Json spectrum pasrse failed.",
                     TIMER_OK, "3" + UNIT + "76 ZorvSmartDiagnoseDataBaseInit: Fault database init failed.",
                     DATABASE_OK, DEBUG_OK, SUCCESS}));
    const FaultJsonObject* const created = FaultJsonObject::pInstance;
    ASSERT_NE(created, nullptr);
    world.Config(R"({"H": {}})");
    EXPECT_EQ(ZorvSmartDiagnoseJsonObjectInit(), 0U);
    EXPECT_EQ(FaultJsonObject::pInstance, created);
    EXPECT_TRUE(created->IsMember("H"));
}

TEST_F(Startup, TheTimerLogsFromItsSecondTickOn) {
    ASSERT_EQ(ZorvSmartDiagnoseTimerInit(), 0U);
    const auto [task, module, function, line] = Agent::Record().timers.at(0);
    char name[sizeof(task.name)] = "SmartDiagnoseDetect";
    EXPECT_EQ(memcmp(task.name, name, sizeof(name)), 0);
    EXPECT_EQ(std::tuple(task.period, task.periodic, task.arg), std::tuple(3600000U, 1, nullptr));
    EXPECT_EQ(std::tuple(module, function, line), std::tuple(422U, "ZorvSmartDiagnoseTimerInit", 64U));
    Agent::TakeLines();
    task.callback(task.arg);
    EXPECT_EQ(FixedLines(), Lines());
    task.callback(task.arg);
    task.callback(task.arg);
    EXPECT_EQ(FixedLines(),
              Lines(2, "5" + UNIT + "52 ZorvSmartDiagnoseDetectTimer: Smart diagnose timer init success."));
}

}  // namespace

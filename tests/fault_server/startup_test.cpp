#include "fault_server/fault_diagnose.h"

#include <cstring>

#include "fault_spectrum_graph/fault_json_object.h"
#include "fault_switch/fault_diagnose_switch.h"
#include "support/database_test.h"

const std::string UNIT = " fault_diagnose.cpp:";

class Startup : public DatabaseTest {
protected:
    Startup() {
        world.Config(R"({"G": {}})");
        Open({});
    }
    // The log lines that contain `part`, with their numbers where those are fixed; and forgets them.
    static Lines Logged(const std::string& part) {
        Lines lines;
        for (const LogLine& line : std::exchange(Agent()->logs, {})) {
            EXPECT_EQ(line.module, 422U);
            if (line.text.find(part) != std::string::npos) {
                lines.push_back(
                    Brief(line, line.file == "fault_diagnose.cpp" || line.file == "fault_debug.cpp"));
            }
        }
        return lines;
    }
};

TEST_F(Startup, HandsSixStepsToTheAgentAndEachSucceeds) {
    EXPECT_EQ(ZorvSmartDiagnoseInit(), 0U);
    const ZORV_MODULE_INIT_S expected[] = {{"JsonObject", ZorvSmartDiagnoseJsonObjectInit, 0},
                                           {"Timer", ZorvSmartDiagnoseTimerInit, 0},
                                           {"MsgHandle", ZorvSmartDiagnoseMsgHandleInit, 0},
                                           {"DataBase", ZorvSmartDiagnoseDataBaseInit, 0},
                                           {"Debug", ZorvSmartDiagnoseDebugInit, 0},
                                           {"LoadFaultDiagSwitchMsg", ZorvFaultDiagSwitchMsgHandleInit, 0}};
    ASSERT_EQ(Agent()->startupRows.size() * 48, sizeof(expected));
    EXPECT_EQ(memcmp(Agent()->startupRows.data(), expected, sizeof(expected)), 0);
    EXPECT_EQ(Logged(""),
              (Lines{"5" + UNIT + "69 ZorvSmartDiagnoseTimerInit: smart diagnose timer init success.",
                     "5 fault_database.cpp FaultDataBaseInit: g_lumoDataBase is 0x",
                     "5 fault_database.cpp FaultDataBaseInit: g_zorvHealDataBase is 0x",
                     "5" + UNIT + "84 ZorvSmartDiagnoseDataBaseInit: Fault database init success.",
                     "5" + UNIT + "99 ZorvSmartDiagnoseDebugInit: Fault debug init success.",
                     "5" + UNIT + "117 ZorvSmartDiagnoseInit: Smart diagnose init success."}));
    EXPECT_TRUE(FaultJsonObject::pInstance->IsMember("G"));

    const auto [task, module, line, function] = Agent()->timers.at(0);
    EXPECT_STREQ(task.name, "SmartDiagnoseDetect");
    EXPECT_EQ(std::tuple(task.period, task.periodic, task.arg, module, function, line),
              std::tuple(3600000U, 1, nullptr, 422U, "ZorvSmartDiagnoseTimerInit", 64U));
    task.callback(task.arg);
    EXPECT_EQ(Logged(""), Lines());  // the first tick is silent
    task.callback(task.arg);
    EXPECT_EQ(Logged(""),
              Lines{"5" + UNIT + "52 ZorvSmartDiagnoseDetectTimer: Smart diagnose timer init success."});
}

TEST_F(Startup, FailuresAreLoggedAndAbsorbed) {
    const std::string failed = "5" + UNIT + "115 ZorvSmartDiagnoseInit: Smart diagnose init failed.";
    const std::pair<std::string, Lines> cases[] = {
        {"ZORV_ModulesStartup", {failed}},
        {"ZORV_ThreadPoolAddTimerTaskSub",
         {"3" + UNIT + "66 ZorvSmartDiagnoseTimerInit: Add SmartDiagnoseDetect timer fail.", failed}},
        {"snprintf_s", {"3" + UNIT + "63 ZorvSmartDiagnoseTimerInit: copy timer name failed."}},
        {"create_thread_nopreempt_raw",
         {"3 fault_database.cpp FaultDataBaseInotifyHandleInit: Create inotify thread failed."}},
        {"Zorvdebug_RegDiagnose",
         {"3 fault_debug.cpp:1127 FaultDiagnoseDebugInit: Fault diagnose debug nit failed.",
          "3" + UNIT + "96 ZorvSmartDiagnoseDebugInit: Fault debug init failed.", failed}},
        {"ZORV_CommRegMsgHandle",
         {"3 fault_diagnose_switch.cpp ZorvFaultDiagSwitchMsgHandleInit: Register msg handle fail, ret=-2.",
          failed}},
        {"no files at all",
         {"3 fault_json_object.cpp ParseJsonConfig: Failed to open the configuration file.",
          "4" + UNIT + "36 ZorvSmartDiagnoseJsonObjectInit: Json spectrum pasrse failed.",
          "3 fault_database.cpp FaultDataBaseInit: sqlite3_open faild:14",
          "3" + UNIT + "76 ZorvSmartDiagnoseDataBaseInit: Fault database init failed."}}};
    for (const auto& [service, lines] : cases) {
        Agent::Reset();
        Agent::Fail(service, -1);
        Agent::SetRoot(world.Path(service[0] == 'n' ? "/none" : ""));
        EXPECT_EQ(ZorvSmartDiagnoseInit(), 0U);
        EXPECT_EQ(Logged("ail"), lines) << service;
    }
}

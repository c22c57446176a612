#include "fault_switch/fault_diagnose_switch.h"

#include <gtest/gtest.h>

#include "support/recording_agent.h"

constexpr uint32_t SET = 0x70002120;
constexpr uint32_t GET = 0x70002121;
const std::string FILE_PATH = "/VRA/coffer_log/log/heal/data/faultDiagSwitch.ini";
const std::string UNIT = " fault_diagnose_switch.cpp Zorv";
const std::string SET_LOG = UNIT + "SetFaultDiagSwitchMsgHandle: ";
const std::string GET_LOG = UNIT + "GetFaultDiagSwitchMsgHandle: ";

class Switch : public testing::Test {
protected:
    Switch() { EXPECT_EQ(ZorvFaultDiagSwitchMsgHandleInit(), 0U); }

    // Delivers a message to the handler that the plug-in registered; returns the last acknowledgement.
    static std::string Deliver(uint32_t opcode, ZORV_COMM_INFO_S* info, char* payload) {
        EXPECT_EQ(Agent()->handlers.at(opcode)(info, payload, nullptr), 0U);
        return Agent()->acknowledgements.empty() ? "" : Agent()->acknowledgements.back().payload;
    }
    static std::string Send(uint32_t opcode, uint32_t length, const std::string& payload) {
        ZORV_COMM_INFO_S info{1, 2, 422, opcode, length, 1, 99};
        return Deliver(opcode, &info, ("x" + payload).data() + 1);  // not aligned
    }
};

TEST_F(Switch, SetStoresAnyValueAndGetAcknowledgesIt) {
    const std::string success = "5" + GET_LOG + "Send read fault diagnose mode ack success.";
    EXPECT_EQ(Send(GET, 4, Bytes(0)), Bytes(-1));  // no file yet
    EXPECT_LOGGED(success);
    for (const int32_t result : {0, 9}) {
        Agent::Fail("HealWriteZorvModePrivateIni", result);
        for (const int32_t value : {1, 2, INT32_MIN, -2}) {
            const std::string text = std::to_string(value) + ") ack msg, result = " + std::to_string(result);
            EXPECT_EQ(Send(SET, 4, Bytes(value)), Bytes(result));
            EXPECT_EQ(Send(GET, 0, ""), Bytes(result == 0 ? value : -2));  // the length does not count
            EXPECT_LOGGED("5" + SET_LOG + "Send set fault diagnose switch(" + text + ".", success);
        }
    }
    EXPECT_EQ(Agent()->iniValues.count(FILE_PATH), 1U);
    Agent::Fail("ZORV_CommSendAckMsg", 3);
    Send(GET, 4, Bytes(0));
    EXPECT_LOGGED("5" + GET_LOG + "Send read fault diagnose mode ack fail, result =3.", success);
}

TEST_F(Switch, MalformedMessagesAreRefusedEachWithItsOwnLimit) {
    for (const uint32_t opcode : {SET, GET}) {
        ZORV_COMM_INFO_S wrong{1, 2, 422, opcode ^ 1, 4, 1, 0};
        std::string payload = Bytes(1);
        const std::string line = "3" + (opcode == SET ? SET_LOG : GET_LOG) + "Fail condition (";
        const std::string name = opcode == SET ? "SET" : "GET";
        for (int i = 0; i < 5; ++i) {
            Deliver(opcode, nullptr, nullptr);
            Deliver(opcode, &wrong, nullptr);
            EXPECT_EQ(Deliver(opcode, &wrong, payload.data()), "");
            const Lines lines = {line + "pstMsgInfo != NULL).", line + "pMsg != NULL).",
                                 line + "pstMsgInfo->msgOPCode == ZORV_OP_" + name + "_FAULTDIAG_SWITCH)."};
            EXPECT_EQ(Agent::TakeLines(), i < 3 ? lines : Lines());
        }
    }
    const std::string line = "Cannot support msg length(8), not equal to right length(4).";
    for (int i = 0; i < 14; ++i) {
        Agent()->jiffies = i < 12 ? 1000000 : i < 13 ? 1899999 : 9000000;
        EXPECT_EQ(Send(SET, 8, Bytes(1) + Bytes(1)), "");
        EXPECT_EQ(Agent()->Count("print: 3 messages suppressed.ZorvSet"), i < 13 ? 0U : 1U);
        EXPECT_EQ(Agent()->Count(line), i < 10 || i == 13 ? 1U : 0U);
        Agent()->logs.clear();
    }
    EXPECT_TRUE(Agent()->iniValues.empty());
}

TEST_F(Switch, AsksTheMasterThenTheFileThenTakesTheDefault) {
    const std::string asking = "CoreGetFaultDiagSwitchFromMaster: Get fault diagnose switch from master ";
    const std::string master = "5" + UNIT + asking + "success, switch=";
    const std::string unreadable = "5" + UNIT + asking + "fail.";
    const std::string noAnswer = "3" + UNIT + asking + "node fail ret=";
    // The master's reply, the result of asking it, the file's value or 0 for no file; what is returned, and
    // what is logged. The value is logged too, unless it is the default for want of one.
    const std::tuple<std::optional<std::string>, int, int, int, std::string> cases[] = {
        {Bytes(1), 0, 3, 1, master + "1."},
        {Bytes(3) + "more", 0, 0, 3, master + "3."},
        {Bytes(0), 0, 3, 2, master + "0."},
        {Bytes(4), 0, 1, 2, master + "4."},
        {Bytes(-1), 0, 3, 3, unreadable},
        {Bytes(-1), 0, 0, 2, unreadable},
        {{}, 0, 1, 1, noAnswer + "0, buf=(nil)"},
        {Bytes(1).substr(0, 3), 0, 3, 3, noAnswer + "0, buf=0x"},
        {Bytes(3), 4, 1, 1, noAnswer + "4, buf=(nil)"},
        {{}, 4, 8, 2, noAnswer + "4, buf=(nil)"}};
    for (const auto& [reply, result, file, expected, line] : cases) {
        Agent::Reset();
        Agent()->reply = reply;
        Agent::Fail("ZORV_CommSendRequestMsg", result);
        Agent()->iniValues[file == 0 ? "another file" : FILE_PATH] = file;
        EXPECT_EQ(ZorvCoreGetFaultDiagSwitch(), expected);
        const std::string value = "Get fault diagnose switch(" + std::to_string(expected) + ") success.";
        Lines lines = {line, "5" + UNIT + "CoreGetFaultDiagSwitch: " + value};
        lines.resize(expected == 2 ? 1 : 2);
        EXPECT_EQ(Agent::TakeLines(), lines);
        EXPECT_EQ(Agent()->repliesToFree, 0);
        const auto [info, payload] = Agent()->requests.at(0);
        EXPECT_EQ(std::tuple(info.dstNid, info.module, info.msgOPCode, info.msgLen, info.needReply, payload),
                  std::tuple(ZORV_GetMasterNid(), 422U, GET, 4U, 1U, Bytes(0)));
    }
}

#include "fault_switch/fault_diagnose_switch.h"

#include <gmock/gmock.h>

#include "support/recording_agent.h"

namespace {

using testing::ElementsAre;

constexpr uint32_t SET = 0x70002120;
constexpr uint32_t GET = 0x70002121;
const std::string FILE_PATH = "/VRA/coffer_log/log/heal/data/faultDiagSwitch.ini";
const std::string SET_LOG = " fault_diagnose_switch.cpp ZorvSetFaultDiagSwitchMsgHandle: ";
const std::string GET_LOG = " fault_diagnose_switch.cpp ZorvGetFaultDiagSwitchMsgHandle: ";

class Switch : public testing::Test {
protected:
    Switch() { EXPECT_EQ(ZorvFaultDiagSwitchMsgHandleInit(), 0U); }

    // Calls the handler that the plug-in registered for `opcode`.
    static void Deliver(uint32_t opcode, ZORV_COMM_INFO_S* info, char* payload) {
        EXPECT_EQ(Agent::Record().handlers.at(opcode)(info, payload, nullptr), 0U);
    }
    static void Send(uint32_t opcode, uint32_t length, const std::string& payload) {
        ZORV_COMM_INFO_S info{1, 2, 422, opcode, length, 1, 99};
        std::string shifted = "x" + payload;  // so that the number is not aligned
        Deliver(opcode, &info, shifted.data() + 1);
    }
    static Lines Acknowledged() {
        Lines payloads;
        for (const MessageCall& call : Agent::Record().acknowledgements) {
            EXPECT_EQ(call.info.sequence, 99U);
            payloads.push_back(call.payload);
        }
        return payloads;
    }
};

TEST_F(Switch, RegistersBothHandlersAndReturnsTheSum) {
    EXPECT_EQ(Agent::Record().handlers.size(), 2U);
    EXPECT_EQ(Agent::TakeLines(), Lines());
    Agent::Fail("ZORV_CommRegMsgHandle", 5, 2);
    EXPECT_EQ(ZorvFaultDiagSwitchMsgHandleInit(), 5U);
    EXPECT_EQ(ZorvFaultDiagSwitchMsgHandleInit(), 10U);
    const std::string line =
        "3 fault_diagnose_switch.cpp ZorvFaultDiagSwitchMsgHandleInit: Register msg handle fail, ret=";
    EXPECT_THAT(Agent::TakeLines(), ElementsAre(line + "5.", line + "10."));
}

TEST_F(Switch, SetStoresAnyValueAndAcknowledgesTheResult) {
    const auto line = [](int value, int result) {
        return "5" + SET_LOG + "Send set fault diagnose switch(" + std::to_string(value) +
               ") ack msg, result = " + std::to_string(result) + ".";
    };
    for (const int32_t value : {1, 2, 3, 7, -1, INT32_MIN}) {
        Send(SET, 4, Bytes(value));
        EXPECT_EQ(Agent::Record().iniValues.at(FILE_PATH), value);
        EXPECT_EQ(Agent::TakeLines(), Lines{line(value, 0)});
    }
    EXPECT_EQ(Acknowledged(), Lines(6, Bytes(0)));
    Agent::Fail("HealWriteZorvModePrivateIni", 9);
    Send(SET, 4, Bytes(1));
    EXPECT_EQ(Agent::Record().iniValues.at(FILE_PATH), INT32_MIN);
    EXPECT_EQ(Acknowledged().back(), Bytes(9));
    EXPECT_EQ(Agent::TakeLines(), Lines{line(1, 9)});
}

TEST_F(Switch, GetAcknowledgesTheFileAndLogsSuccessAlways) {
    const std::string success = "5" + GET_LOG + "Send read fault diagnose mode ack success.";
    Send(GET, 4, Bytes(0));
    Agent::SetIni(FILE_PATH, 7);
    Send(GET, 0, "");  // its length does not count
    EXPECT_THAT(Acknowledged(), ElementsAre(Bytes(-1), Bytes(7)));
    EXPECT_THAT(Agent::TakeLines(), ElementsAre(success, success));
    Agent::Fail("ZORV_CommSendAckMsg", 3);
    Send(GET, 4, Bytes(0));
    EXPECT_THAT(Agent::TakeLines(),
                ElementsAre("5" + GET_LOG + "Send read fault diagnose mode ack fail, result =3.", success));
}

TEST_F(Switch, MalformedMessagesAreRefusedEachWithItsOwnLimit) {
    for (const auto& [opcode, log, name] :
         {std::tuple(SET, SET_LOG, "SET"), std::tuple(GET, GET_LOG, "GET")}) {
        ZORV_COMM_INFO_S wrong{1, 2, 422, opcode ^ 1, 4, 1, 0};
        std::string payload = Bytes(1);
        const std::string opcodeCondition =
            std::string("pstMsgInfo->msgOPCode == ZORV_OP_") + name + "_FAULTDIAG_SWITCH";
        const std::tuple<ZORV_COMM_INFO_S*, char*, std::string> messages[] = {
            {nullptr, nullptr, "pstMsgInfo != NULL"},
            {&wrong, nullptr, "pMsg != NULL"},
            {&wrong, payload.data(), opcodeCondition}};
        for (const auto& [info, bytes, condition] : messages) {
            for (int i = 0; i < 5; ++i) {
                Deliver(opcode, info, bytes);
            }
            EXPECT_EQ(Agent::TakeLines(), Lines(3, "3" + log + "Fail condition (" + condition + ")."));
        }
    }
    EXPECT_EQ(Acknowledged(), Lines());
    EXPECT_TRUE(Agent::Record().iniValues.empty());
}

TEST_F(Switch, AWrongLengthIsRefusedWithTheSlowLimit) {
    const std::string line = "3" + SET_LOG + "Cannot support msg length(8), not equal to right length(4).";
    for (int i = 0; i < 12; ++i) {
        Send(SET, 8, Bytes(1) + Bytes(1));
    }
    EXPECT_EQ(Agent::TakeLines(), Lines(10, line));
    Agent::SetJiffies(1000000 + 899999);
    Send(SET, 8, Bytes(1) + Bytes(1));
    EXPECT_EQ(Agent::TakeLines(), Lines());
    Agent::SetJiffies(9000000);
    Send(SET, 8, Bytes(1) + Bytes(1));
    EXPECT_EQ(Agent::Record().Count("print: 3 messages suppressed.ZorvSetFaultDiagSwitchMsgHandle,line="),
              1U);
    EXPECT_EQ(Agent::TakeLines().at(1), line);
    EXPECT_EQ(Acknowledged(), Lines());
    EXPECT_TRUE(Agent::Record().iniValues.empty());
}

TEST_F(Switch, AsksTheMasterThenTheFileThenTakesTheDefault) {
    const std::string unit = " fault_diagnose_switch.cpp ZorvCoreGetFaultDiagSwitch";
    const std::string asking = unit + "FromMaster: Get fault diagnose switch from master ";
    const std::string master = "5" + asking + "success, switch=";
    const std::string unreadable = "5" + asking + "fail.";
    const std::string noData = "3" + asking + "node fail ret=0, buf=(nil)";
    const std::string shortData = "3" + asking + "node fail ret=0, buf=0x";
    const std::string noAnswer = "3" + asking + "node fail ret=4, buf=(nil)";
    const struct {
        std::optional<std::string> reply;
        std::optional<int32_t> file;
        int32_t sendResult, expected;
        std::string line;
        bool logsValue;
    } cases[] = {
        {Bytes(1), 3, 0, 1, master + "1.", true},
        {Bytes(2), {}, 0, 2, master + "2.", true},
        {Bytes(3) + "more", {}, 0, 3, master + "3.", true},
        {Bytes(7), 3, 0, 2, master + "7.", false},
        {Bytes(0), 3, 0, 2, master + "0.", false},
        {Bytes(4), 1, 0, 2, master + "4.", false},
        {Bytes(-2), 1, 0, 2, master + "-2.", false},
        {Bytes(-1), 3, 0, 3, unreadable, true},
        {Bytes(-1), {}, 0, 2, unreadable, false},
        {Bytes(-1), -1, 0, 2, unreadable, false},
        {{}, 1, 0, 1, noData, true},
        {Bytes(1).substr(0, 3), 3, 0, 3, shortData, true},
        {Bytes(1).substr(0, 1), {}, 0, 2, shortData, false},
        {Bytes(3), 1, 4, 1, noAnswer, true},
        {Bytes(3), 8, 4, 2, noAnswer, false},
        {{}, {}, 4, 2, noAnswer, false},
    };
    for (const auto& test : cases) {
        Agent::Reset();
        Agent::SetReply(test.reply);
        Agent::SetIni(FILE_PATH, test.file);
        Agent::Fail("ZORV_CommSendRequestMsg", test.sendResult);
        EXPECT_EQ(ZorvCoreGetFaultDiagSwitch(), test.expected);
        Lines lines = {test.line};
        if (test.logsValue) {
            lines.push_back("5" + unit + ": Get fault diagnose switch(" + std::to_string(test.expected) +
                            ") success.");
        }
        const AgentRecord record = Agent::Record();
        EXPECT_EQ(record.Briefs(), lines);
        EXPECT_EQ(record.repliesToFree, 0);
        ASSERT_EQ(record.requests.size(), 1U);
        const auto& [info, payload] = record.requests[0];
        EXPECT_THAT(
            (std::vector<uint32_t>{info.dstNid, info.module, info.msgOPCode, info.msgLen, info.needReply}),
            ElementsAre(ZORV_GetMasterNid(), 422U, GET, 4U, 1U));
        EXPECT_EQ(payload, Bytes(0));
    }
}

}  // namespace

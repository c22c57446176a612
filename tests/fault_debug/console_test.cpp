#include "agent/agent_switch.h"
#include "fault_debug/fault_debug.h"
#include "support/database_test.h"

namespace {

std::string Error(const std::string& message) {
    return "\t\t[ERROR]: " + message + "\n";
}

const std::string DELAY_TITLE =
    "\nSmartDiagnose Anomaly Point\n"
    "lumoLocName                        anomalyTime               anomalyValue\n";
const std::string SIMU_TITLE =
    "\nSmartDiagnose Anomaly Point\n"
    "lumoLocName                        timeStamp               nomalyVal\n";
const std::string DATA_TITLE = "\nSmartDiagnose DetectData Show\n";
const std::string INNER = Error("inner err");

const std::string FROM = "20210803150000";
const std::string TO = "20210803160000";
const std::string VALID_TIME = "\t\tThe earliest timestamp that can be diagnosed is " + FROM + ".\n";
constexpr int64_t AT_15 = 1627974000;  // FROM, eight hours east

class Console : public DatabaseTest {
protected:
    Console() {
        EXPECT_EQ(FaultDiagnoseDebugInit(), 0U);
        Agent::SetReply(FAULT_DIAG_SWITCH_ON_SILENT);
    }

    // What the operator sees after typing the words.
    static std::string Type(Lines words) {
        words.insert(words.begin(), {"diagnose", "smartdiagnose"});
        std::vector<char*> argv;
        for (std::string& word : words) {
            argv.push_back(word.data());
        }
        const ZORV_DIAG_CMD_S* row = Agent::Record().commandGroups.at("smartdiagnose");
        while (row->name != words[2]) {
            ++row;
        }
        EXPECT_EQ(row->handler(static_cast<int32_t>(argv.size()), argv.data()), 0U);
        return Agent::TakeConsole();
    }
    static size_t Alarms() { return Agent::Record().alarms.size(); }
};

TEST_F(Console, OffersTenCommands) {
    const std::tuple<const char*, const char*, bool> expected[] = {
        {"simudetect", " [starTime] [endTime]: Simu fault detect. eg:starTime:20210803153000", true},
        {"delaydetect", " [starTime endTime] | [timelength]: Anomaly detect;timelength: unit is minute.",
         true},
        {"datashow", " [lumoLocName] [starTime] [endTime] [countNum]: datashow", true},
        {"showgraph", " [mapgraph] [mapnodeinfo] [veclumo] [vecob] [mapobdata] [maplumodata]: showgraph",
         false},
        {"delayanal", " [starTime endTime] | [timelength]: Analysis result;timelength: unit is minute.",
         false},
        {"showfaultfactor", " [moduleName] [starTime] [endTime]: Show fault factor.", false},
        {"errcodeshowall", " [starTime endTime] | [timelength]: errcode show system status.", false},
        {"errcodeshow",
         " [type] [module] [starTime endTime] | [timelength]: errcode show subsystem;\n[type]:IOERROR, "
         "IORETRY, "
         "IOACCESSDENY, [module]:ALL, NASPROTOL, FS, CACHE, POOL, SANPROTOL, SPACE.",
         false},
        {"showvalidtime", ": show the earliest timestamp that can be diagnosed.", true},
        {"showallerr",
         " [starTime endTime] | [timelength]: display information about all LUMO points with non-zero errors "
         "in "
         "the fault tree, [timelength]: unit is minute.",
         false}};
    const ZORV_DIAG_CMD_S* row = Agent::Record().commandGroups.at("smartdiagnose");
    for (const auto& [name, help, isBuilt] : expected) {
        ASSERT_STREQ(row->name, name);
        EXPECT_EQ(row->help, std::string(name) + help);
        ASSERT_NE(row->handler, nullptr);
        EXPECT_TRUE(isBuilt || Type({name}) == INNER) << name;
        ++row;
    }
    EXPECT_TRUE(row->name == nullptr && row->handler == nullptr && row->help == nullptr);
}

TEST_F(Console, AnswersEveryMistakeAndLives) {
    const std::string big(1U << 20, '7');
    const std::string binary = "\x01\xff\x80\n%s%n";
    const std::pair<Lines, std::string> cases[] = {
        {{"delaydetect"}, Error("input err")},
        {{"delaydetect", FROM, TO, "x"}, Error("input err")},
        {{"delaydetect", "abc"}, Error("input err")},
        {{"delaydetect", ""}, Error("input err")},
        {{"delaydetect", big}, Error("input err")},
        {{"delaydetect", binary}, Error("input err")},
        {{"delaydetect", "0"}, Error("date input err")},
        {{"delaydetect", TO, FROM}, Error("date input err")},
        {{"delaydetect", big, big + "8"}, Error("date input err")},
        {{"delaydetect", binary, ""}, Error("date input err")},
        {{"delaydetect", "3000"}, Error("Time range beyond two days")},
        {{"delaydetect", FROM, "20210805150001"}, Error("Time range beyond two days")},
        {{"delaydetect", FROM, "20210805150000"}, DELAY_TITLE},
        {{"delaydetect", "30"}, DELAY_TITLE},
        {{"simudetect"}, Error("input err")},
        {{"simudetect", "30"}, Error("input err")},
        {{"simudetect", FROM, TO, "x"}, Error("input err")},
        {{"simudetect", FROM, "2021"}, Error("input datetime err")},
        {{"simudetect", big, binary}, Error("input datetime err")},
        {{"simudetect", "abcdefghijklmn", TO}, INNER},
        {{"simudetect", FROM, "20210826190000"}, INNER},
        {{"simudetect", "00000101000000", "99991231235959"}, INNER},
        {{"simudetect", TO, FROM}, SIMU_TITLE},
        {{"datashow", "P", FROM, TO}, Error("input err")},
        {{"datashow", "P", FROM, TO, "5", "6"}, Error("input err")},
        {{"datashow", "P", FROM, TO, "5"}, DATA_TITLE},
        {{"datashow", binary, FROM, "2021", "5"}, DATA_TITLE},
        {{"datashow", big, FROM, TO, ""}, DATA_TITLE + INNER},
        {{"datashow", "P", FROM, TO, "2147483648"}, DATA_TITLE + INNER},
        {{"datashow", "P", FROM, big, "5"}, INNER},
        {{"showvalidtime", "x"}, Error("input err")},
        {{"showvalidtime"}, VALID_TIME},
    };
    Open({{"lumo_data_" + FROM}});
    for (const auto& [words, printed] : cases) {
        EXPECT_EQ(Type(words), printed)
            << words[0] << " " << (words.size() > 1 ? words[1].substr(0, 20) : "");
        size_t errors = 0;
        for (const std::string& line : Agent::TakeLines()) {
            errors += line[0] == '3' ? 1U : 0U;
        }
        EXPECT_EQ(errors, printed.find(INNER) == std::string::npos ? 0U : 1U);
    }
}

TEST_F(Console, AnswersWhateverTheDatabaseHolds) {
    const auto expect = [&](const std::string& delay, const std::string& validTime) {
        EXPECT_EQ(Type({"delaydetect", FROM, TO}), delay);
        EXPECT_EQ(Type({"datashow", "P", FROM, TO, "5"}), delay == DELAY_TITLE ? DATA_TITLE : delay);
        EXPECT_EQ(Type({"showvalidtime"}), validTime);
    };
    expect(DELAY_TITLE, INNER);  // there is none
    Open({});
    expect(DELAY_TITLE, INNER);
    Open({{"short"}});
    expect(INNER, INNER);
    for (const char* cell : {"NULL", "'many'", "''", "'9223372036854775808'"}) {
        Open({{"lumo_data_" + FROM, {{"NAS_TRANS_ALL", AT_15, cell}}}});
        expect(INNER, VALID_TIME);
    }
    world.Exec(LUMO_DATABASE_FILE, "UPDATE table_flag SET tablename = NULL");
    expect(INNER, INNER);
    world.Remove(LUMO_DATABASE_FILE);
    expect(DELAY_TITLE, INNER);
}

TEST_F(Console, DelayDetectListsWhatIsPlantedAndAlarmsWithSwitchValueOneOnly) {
    std::vector<StatisticsRow> rows;
    for (int i = 0; i < 60; ++i) {
        rows.push_back({"TGT_LUMO_HOST_READ", AT_15 + 60 * i, i == 37 ? 52000 : 480 + i % 9});
        rows.push_back({"TGT_LUMO_HOST_CMD", AT_15 + 60 * i, 40 + i % 5});
        rows.push_back({"NAS_TRANS_ALL", AT_15 + 60 * i, i == 12 ? 3 : 900 - i % 7});
    }
    Open({{"lumo_data_" + FROM, rows}});
    const std::string listing =
        DELAY_TITLE +
        "TGT_LUMO_HOST_READ                 2021/8/3 15:37:0        52000               \n"
        "NAS_TRANS_ALL                      2021/8/3 15:12:0        3                   \n";
    for (const int32_t value : {3, 2, 7, 1}) {
        Agent::SetReply(value);
        EXPECT_EQ(Type({"delaydetect", FROM, TO}), listing) << value;
        EXPECT_EQ(Alarms(), value == 1 ? 1U : 0U) << value;
    }
    EXPECT_EQ(Type({"delaydetect", TO, "20210803170000"}), DELAY_TITLE);
    EXPECT_EQ(Alarms(), 1U);
    Agent::SetLocalTime(AT_15 + 28800 + 3600);
    EXPECT_EQ(Type({"delaydetect", "60"}), listing);
    EXPECT_EQ(Alarms(), 2U);
}

TEST_F(Console, SimuDetectListsTheSpikeOfEachPointAndObeysTheSwitch) {
    // The offset is taken away twice and added once: the time shown is 15:07:30 less eight hours.
    std::string listing = SIMU_TITLE;
    for (const char* point :
         {"TGT_LUMO_HOST_READ ", "TGT_LUMO_HOST_WRITE", "TGT_LUMO_HOST_CMD  ", "NAS_TRANS_ALL      "}) {
        listing += std::string(point) + "                2021/8/3 7:7:30     20010               \n";
    }
    for (const int32_t value : {2, 1}) {
        Agent::SetReply(value);
        EXPECT_EQ(Type({"simudetect", FROM, "20210803153000"}), listing);
        EXPECT_EQ(Alarms(), value == 1 ? 1U : 0U);
    }
    Agent::SetReply(FAULT_DIAG_SWITCH_OFF);
    EXPECT_EQ(Type({"simudetect", FROM, "20210803153000"}), Error("fault diagnose switch is off"));
    EXPECT_EQ(Type({"simudetect"}), Error("fault diagnose switch is off"));
    EXPECT_EQ(Alarms(), 1U);
    // The others do not ask the switch whether they may.
    Open({{"lumo_data_" + FROM}});
    EXPECT_EQ(Type({"datashow", "P", FROM, TO, "5"}), DATA_TITLE);
    EXPECT_EQ(Type({"showvalidtime"}), VALID_TIME);
}

TEST_F(Console, WithoutAZoneNothingConverts) {
    setenv("PATH", "/nonexistent", 1);
    EXPECT_EQ(Type({"simudetect", FROM, TO}), Error("input datetime err"));
    EXPECT_EQ(Type({"delaydetect", FROM, TO}), "");
}

}  // namespace

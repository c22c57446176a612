#include "tests/fault_debug/console.h"
#include "fault_debug/fault_debug_command.h"

const std::string TITLE = "\nSmartDiagnose Anomaly Point\nlumoLocName                        ";
const std::string DELAY_TITLE = TITLE + "anomalyTime               anomalyValue\n";
const std::string INNER = Error("inner err");
const std::string FROM = "20210803150000";
const std::string TO = "20210803160000";

TEST_F(Console, OffersTenCommands) {
    const char* const expected =
        "simudetect [starTime] [endTime]: Simu fault detect. eg:starTime:20210803153000\n"
        "delaydetect [starTime endTime] | [timelength]: Anomaly detect;timelength: unit is minute.\n"
        "datashow [lumoLocName] [starTime] [endTime] [countNum]: datashow\n"
        "showgraph [mapgraph] [mapnodeinfo] [veclumo] [vecob] [mapobdata] [maplumodata]: showgraph\n"
        "delayanal [starTime endTime] | [timelength]: Analysis result;timelength: unit is minute.\n"
        "showfaultfactor [moduleName] [starTime] [endTime]: Show fault factor.\n"
        "errcodeshowall [starTime endTime] | [timelength]: errcode show system status.\n"
        "errcodeshow [type] [module] [starTime endTime] | [timelength]: errcode show subsystem;\n"
        "[type]:IOERROR, IORETRY, IOACCESSDENY, [module]:ALL, NASPROTOL, FS, CACHE, POOL, SANPROTOL, SPACE.\n"
        "showvalidtime: show the earliest timestamp that can be diagnosed.\n"
        "showallerr [starTime endTime] | [timelength]: display information about all LUMO points with "
        "non-zero errors in the fault tree, [timelength]: unit is minute.\n";
    std::string helps;
    const ZORV_DIAG_CMD_S* row = Agent()->commandGroups.at("smartdiagnose");
    for (; row->name != nullptr; ++row) {
        EXPECT_EQ(std::string(row->help).find_first_of(" :"), std::string(row->name).size());
        helps += row->help + std::string("\n");
    }
    EXPECT_EQ(helps, expected);
    EXPECT_TRUE(row->handler == nullptr && row->help == nullptr);
}

TEST_F(Console, AnswersEveryMistakeAndLives) {
    const char* const found = getenv("PATH");
    const std::string path = found != nullptr ? found : "";
    setenv("PATH", "/nonexistent", 1);  // no command tells the zone
    EXPECT_EQ(Type({"delaydetect", FROM, TO}), "");
    EXPECT_EQ(Type({"simudetect", FROM, TO}), Error("input datetime err"));
    setenv("PATH", path.c_str(), 1);
    const std::pair<Lines, std::string> cases[] = {
        {{"delaydetect", "0"}, Error("date input err")},
        {{"delaydetect", FROM, "2021080316000"}, Error("date input err")},
        {{"delaydetect", FROM, "202108031600000"}, Error("date input err")},
        {{"delaydetect", FROM, "9021080316000x"}, Error("date input err")},
        {{"delaydetect", "3000"}, Error("Time range beyond two days")},
        {{"delaydetect", FROM, "20210805150000"}, DELAY_TITLE},
        {{"simudetect", "abcdefghijklmn", TO}, INNER},
        {{"simudetect", TO, FROM}, TITLE + "timeStamp               nomalyVal\n"},
        {{"datashow", "\x01\xff\n%s%n", FROM, "2021", "5"}, "\nSmartDiagnose DetectData Show\n"},
        {{"simudetect", FROM}, Error("input err")},
        {{"datashow", FROM, TO}, Error("input err")},
        {{"showvalidtime", FROM}, Error("input err")},
        {{"datashow", "NAS_TRANS_ALL", FROM, TO, "5"}, "\nSmartDiagnose DetectData Show\n"},
        {{"showvalidtime"}, "\t\tThe earliest timestamp that can be diagnosed is " + FROM + ".\n"}};
    Open({{"lumo_data_" + FROM}});
    for (const auto& [words, printed] : cases) {
        EXPECT_EQ(Type(words), printed) << words[0] << words.size();
        EXPECT_EQ(Agent()->Count("Unexpected error: "), printed.find(INNER) == std::string::npos ? 0U : 1U);
        Agent()->logs.clear();
    }
    world.Remove(LUMO_DATABASE_FILE);
    EXPECT_EQ(Type({"showvalidtime"}), INNER);
    Agent()->reply = Bytes(3);
    EXPECT_EQ(Type({"simudetect", FROM, TO}), Error("fault diagnose switch is off"));
}

// The clock stands at 2021-08-04 00:00:00 local time.
TEST(TimeArgs, AreTwoTimesOrMinutesUpToNow) {
    const auto start = [](Lines own, const std::string& end) {
        std::vector<char*> argv;
        for (std::string& word : own) {
            argv.push_back(word.data());
        }
        std::pair<std::string, std::string> range;
        ParseTimeArgs(static_cast<int32_t>(argv.size()), argv.data(), 0, range.first, range.second);
        EXPECT_EQ(range.second, end);
        return range.first;
    };
    for (const std::string refused : {"", "30abc", "-30", "1\xff", "2147483648"}) {
        EXPECT_EQ(start({refused}, ""), "");
    }
    const std::string now = "20210804000000";
    EXPECT_EQ(start({"0"}, now), now);
    EXPECT_EQ(start({"30"}, now), "20210803233000");
    EXPECT_EQ(start({"00000000000030abc"}, now), "20210803233000");  // 14 characters are looked at
    EXPECT_EQ(start({"2147483647"}, now), "20210804000100");         // -60 seconds: 32 bits wrap
    EXPECT_EQ(start({"35791394"}, now), "19530716204600");           // 2147483640 seconds
    EXPECT_EQ(start({"35791395"}, now), "20890822031316");           // -2147483596 seconds
    Agent()->localTime = 99999999999999;  // in the year 3170843: the first 15 characters remain
    EXPECT_EQ(start({"0"}, "317084311070946"), "317084311070946");
}

TEST(Alarm, IsRaisedThreeTimesInADay) {
    const std::string log = " fault_debug.cpp FaultDiagRecordAndSendAlarm: The fault diagnose ";
    const std::string sending = "3" + log + "dected err, zorv will send alarm.";
    const std::string refusing = "5" + log + "is dected err, but alarm too much, zorv will not send alarm.";
    constexpr int64_t DAY = 86400;
    const std::pair<int64_t, bool> steps[] = {{0, true},         {10, true},        {20, true},
                                              {30, false},       {DAY, false},      {DAY + 1, true},
                                              {DAY + 2, false},  {DAY + 10, false}, {DAY + 11, true},
                                              {DAY + 11, false}, {3 * DAY, true},   {3 * DAY, true}};
    for (const auto& [seconds, sent] : steps) {
        Agent()->localTime = 1628000000 + seconds;
        FaultDiagRecordAndSendAlarm();
        EXPECT_EQ(Agent::TakeLines(), Lines{sent ? sending : refusing}) << seconds;
    }
    EXPECT_EQ(Agent()->alarms.size(), 7U);
    Agent::Fail("ALM_SendAlarm", 7);
    FaultDiagRecordAndSendAlarm();
    EXPECT_LOGGED(sending, "3 fault_debug.cpp FaultDiagRecordAndSendAlarm: Send alarm fail, ret=7.");
    EXPECT_EQ(Agent()->alarms[0], std::tuple(422U, 64437682512U, 1U, "faultDiagnose"));
}

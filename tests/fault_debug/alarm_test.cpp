#include <gtest/gtest.h>

#include "fault_debug/fault_debug_command.h"
#include "support/recording_agent.h"

namespace {

TEST(Alarm, IsRaisedThreeTimesInADay) {
    const std::string log = " fault_debug.cpp FaultDiagRecordAndSendAlarm: The fault diagnose ";
    const std::string sentLine = "3" + log + "dected err, zorv will send alarm.";
    const std::string refusedLine =
        "5" + log + "is dected err, but alarm too much, zorv will not send alarm.";
    constexpr int64_t DAY = 86400;
    const std::pair<int64_t, bool> steps[] = {
        {0, true},        {10, true},        {20, true},       {30, false},
        {DAY, false},     {DAY + 1, true},  // exactly the first slot is free again
        {DAY + 2, false}, {DAY + 10, false}, {DAY + 11, true}, {DAY + 11, false},
        {3 * DAY, true},  {3 * DAY, true},   {3 * DAY, true},  {3 * DAY, false}};
    size_t alarms = 0;
    for (const auto& [seconds, sent] : steps) {
        Agent::SetLocalTime(1628000000 + seconds);
        FaultDiagRecordAndSendAlarm();
        alarms += sent ? 1U : 0U;
        EXPECT_EQ(Agent::TakeLines(), Lines{sent ? sentLine : refusedLine}) << seconds;
        EXPECT_EQ(Agent::Record().alarms.size(), alarms) << seconds;
    }
    const auto [module, id, type, text] = Agent::Record().alarms[0];
    EXPECT_EQ(std::tuple(module, id, type, text), std::tuple(422U, 64437682512U, 1U, "faultDiagnose"));
}

}  // namespace

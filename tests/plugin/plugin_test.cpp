// The shipped file in a process that supplies the agent's services, as an agent loads it.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "agent/agent_switch.h"
#include "support/recording_agent.h"

TEST(ShippedFile, OffersAllItHasOnceItsEntryHasRun) {
    Agent::Reset();
    Agent::SetRoot(testing::TempDir() + "no-such-root");
    void* plugin = dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(plugin, nullptr) << dlerror();
    const auto entry = reinterpret_cast<uint32_t (*)()>(dlsym(plugin, "ZorvSmartDiagnoseInit"));
    ASSERT_NE(entry, nullptr) << dlerror();
    EXPECT_EQ(entry(), 0U);

    const AgentRecord record = Agent::Record();
    ASSERT_EQ(record.commandGroups.count("smartdiagnose"), 1U);
    std::string names;
    for (const ZORV_DIAG_CMD_S* row = record.commandGroups.at("smartdiagnose"); row->name != nullptr; ++row) {
        EXPECT_NE(row->handler, nullptr) << row->name;
        names += std::string(row->name) + " ";
    }
    EXPECT_EQ(
        names,
        "simudetect delaydetect datashow showgraph delayanal showfaultfactor errcodeshowall errcodeshow "
        "showvalidtime showallerr ");
    EXPECT_EQ(record.handlers.size(), 2U);
    EXPECT_EQ(record.handlers.count(ZORV_OP_SET_FAULTDIAG_SWITCH), 1U);
    EXPECT_EQ(record.handlers.count(ZORV_OP_GET_FAULTDIAG_SWITCH), 1U);
    ASSERT_EQ(record.timers.size(), 1U);
    EXPECT_STREQ(record.timers[0].task.name, "SmartDiagnoseDetect");

    EXPECT_EQ(dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL), plugin);
}

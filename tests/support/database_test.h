// A test with a storage node's files and the plug-in's connections to its databases.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "fault_database/fault_database.h"
#include "support/recording_agent.h"
#include "support/temp_world.h"

class DatabaseTest : public testing::Test {
protected:
    // Writes both databases, opens them, and forgets what was logged. Connections to former files stay open.
    void Open(const std::vector<StatisticsTable>& tables) const {
        world.Heal();
        world.Statistics(tables);
        ASSERT_EQ(FaultDataBaseInit(), 0U);
        Agent::TakeLines();
    }

    const TempWorld world;
};

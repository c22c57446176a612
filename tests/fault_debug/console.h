// The operator's side of the console.
#pragma once

#include "fault_debug/fault_debug.h"
#include "support/database_test.h"

inline std::string Error(const std::string& message) {
    return "\t\t[ERROR]: " + message + "\n";
}

class Console : public DatabaseTest {
protected:
    Console() { FaultDiagnoseDebugInit(); }

    // What the operator sees after typing the words.
    static std::string Type(Lines words) {
        words.insert(words.begin(), {"diagnose", "smartdiagnose"});
        std::vector<char*> argv;
        for (std::string& word : words) {
            argv.push_back(word.data());
        }
        const ZORV_DIAG_CMD_S* row = Agent()->commandGroups.at("smartdiagnose");
        while (row->name != words[2]) {
            ++row;
        }
        EXPECT_EQ(row->handler(static_cast<int32_t>(argv.size()), argv.data()), 0U);
        return Agent::TakeConsole();
    }
};

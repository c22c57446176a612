#include "fault_spectrum_graph/fault_json_object.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/recording_agent.h"
#include "support/temp_world.h"

TEST(JsonObject, AnswersByGraphAndKeyFromWhatWasParsedLast) {
    const TempWorld world;
    FaultJsonObject object;
    const std::string log = "3 fault_json_object.cpp ";
    const std::string deep = R"({"A": )" + std::string(2000, '[') + "}";
    const std::string pipe = world.Path("/pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    Json::Value value;
    for (const std::string text : {"{", "", "[]", "null", "\"x\"", "\xff\xfe\x01", deep.c_str()}) {
        EXPECT_EQ(object.GetGraphValueByKeyTag("G", "nodes", value), 1U);
        EXPECT_LOGGED(log + "GetGraphValueByKeyTag: FlowGraph is null.");
        world.Config(R"({"G": {"nodes": "N", "edges": "E", "other": 4}})");
        EXPECT_EQ(object.ParseJsonConfig(world.Path(ZORV_ROUTE_CONFIG_FILE)), 0U);
        for (const std::string& noFile : {std::string("/missing"), pipe}) {
            EXPECT_EQ(object.ParseJsonConfig(noFile), 1U);  // changes nothing
            EXPECT_LOGGED(log + "ParseJsonConfig: Failed to open the configuration file.");
        }
        EXPECT_EQ(object.GetGraphValueByKeyTag("G", "nodes", value), 0U);
        EXPECT_EQ(value, "N");
        EXPECT_EQ(object.GetGraphValueByKeyTag("G", "other", value), 1U);
        EXPECT_LOGGED(log + "GetGraphValueByKeyTag: the key(other) is incorrect.");
        EXPECT_EQ(value, "N");
        EXPECT_FALSE(object.IsMember("A"));
        EXPECT_EQ(object.GetGraphValueByKeyTag("A", "edges", value), 0U);
        EXPECT_TRUE(value.isNull() && object.IsMember("A"));  // a look-up adds an unknown graph
        world.Config(text);
        EXPECT_EQ(object.ParseJsonConfig(world.Path(ZORV_ROUTE_CONFIG_FILE)), 1U) << text.substr(0, 20);
        EXPECT_LOGGED(log + "ParseJsonConfig: Failed to parse json data stream.");
    }
}

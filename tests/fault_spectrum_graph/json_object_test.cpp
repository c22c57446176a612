#include "fault_spectrum_graph/fault_json_object.h"

#include <gtest/gtest.h>
#include <json/writer.h>

#include "support/recording_agent.h"
#include "support/temp_world.h"

namespace {

const std::string LOG = "3 fault_json_object.cpp ";
const std::string NOT_PARSED = LOG + "ParseJsonConfig: Failed to parse json data stream.";

class JsonObject : public testing::Test {
protected:
    uint32_t Parse(const std::string& text) {
        world.Config(text);
        return object.ParseJsonConfig(world.Path(ZORV_ROUTE_CONFIG_FILE));
    }
    // The value on one line; "unchanged" when the look-up fails.
    std::string Get(const std::string& graph, const std::string& key) {
        Json::Value value = "unchanged";
        if (object.GetGraphValueByKeyTag(graph, key, value) != 0) {
            return value.asString();
        }
        Json::StreamWriterBuilder oneLine;
        oneLine["indentation"] = "";
        return Json::writeString(oneLine, value);
    }

    const TempWorld world;
    FaultJsonObject object;
};

TEST_F(JsonObject, AnswersByGraphAndKey) {
    ASSERT_EQ(Parse(R"({"G": {"nodes": [1, 2], "edges": [3], "other": 4}})"), 0U);
    EXPECT_EQ(Get("G", "nodes"), "[1,2]");
    EXPECT_EQ(Get("G", "edges"), "[3]");
    EXPECT_TRUE(Agent::TakeLines().empty());
    for (const std::string key : {"node", "edge", "other", "", "NODES"}) {
        EXPECT_EQ(Get("G", key), "unchanged");
        EXPECT_EQ(Agent::TakeLines(),
                  Lines{LOG + "GetGraphValueByKeyTag: the key(" + key + ") is incorrect."});
    }
}

TEST_F(JsonObject, ALookUpAddsAnUnknownGraph) {
    ASSERT_EQ(Parse("{}"), 0U);
    EXPECT_FALSE(object.IsMember("G"));
    EXPECT_EQ(Get("G", "edges"), "null");
    EXPECT_TRUE(object.IsMember("G"));
}

TEST_F(JsonObject, ParsingAgainReplacesAndAFailedOpeningKeeps) {
    EXPECT_FALSE(object.IsMember("A"));
    EXPECT_EQ(Get("A", "nodes"), "unchanged");
    EXPECT_EQ(Agent::TakeLines(), Lines{LOG + "GetGraphValueByKeyTag: FlowGraph is null."});
    ASSERT_EQ(Parse(R"({"A": {}})"), 0U);
    ASSERT_EQ(Parse(R"({"B": {"nodes": []}})"), 0U);
    EXPECT_FALSE(object.IsMember("A"));
    EXPECT_TRUE(Agent::TakeLines().empty());
    EXPECT_EQ(object.ParseJsonConfig(world.Path("/missing.json")), 1U);
    EXPECT_EQ(Agent::TakeLines(), Lines{LOG + "ParseJsonConfig: Failed to open the configuration file."});
    EXPECT_EQ(Get("B", "nodes"), "[]");
}

TEST_F(JsonObject, WhatIsNoJsonObjectLeavesNothing) {
    const std::string deep = std::string(2000, '[') + std::string(2000, ']');
    for (const std::string& text :
         {std::string(), std::string("{"), std::string("[]"), std::string("null"), std::string("7"),
          std::string("\"x\""), std::string("\xff\xfe\0\x01", 4), R"({"A": )" + deep + "}", deep}) {
        ASSERT_EQ(Parse(R"({"A": {}})"), 0U);
        EXPECT_EQ(Parse(text), 1U) << text.substr(0, 20);
        EXPECT_EQ(Agent::TakeLines(), Lines{NOT_PARSED});
        EXPECT_EQ(Get("A", "nodes"), "unchanged");
        EXPECT_FALSE(object.IsMember("A"));
        Agent::TakeLines();
    }
}

}  // namespace

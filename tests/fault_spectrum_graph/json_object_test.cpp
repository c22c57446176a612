#include "fault_spectrum_graph/fault_json_object.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/stat.h>

#include <future>

#include "support/recording_agent.h"
#include "support/temp_world.h"

namespace {

std::string Nested(int depth) {
    return depth == 0 ? "7" : R"({"A": )" + Nested(depth - 1) + "}";
}

TEST(JsonObject, AnswersByGraphAndKeyFromWhatWasParsedLast) {
    const TempWorld world;
    FaultJsonObject object;
    const std::string log = "3 fault_json_object.cpp ";
    const std::string pipe = world.Path("/pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    pthread_attr_t attributes{};  // of new threads from now on: an agent's may have as little stack
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 256U << 10U);
    ASSERT_EQ(pthread_setattr_default_np(&attributes), 0);
    const auto parse = [&] { return object.ParseJsonConfig(world.Path(ZORV_ROUTE_CONFIG_FILE)); };
    Json::Value value;
    for (const std::string& text :
         Lines{"{", "", "[]", "null", "\"x\"", "\xff\xfe\x01", Nested(200), Nested(2000)}) {
        EXPECT_EQ(object.GetGraphValueByKeyTag("G", "nodes", value), 1U);
        EXPECT_LOGGED(log + "GetGraphValueByKeyTag: FlowGraph is null.");
        world.Config(R"({"G": {"nodes": "N", "edges": "E", "other": )" + Nested(197) + "}}");  // the deepest
        EXPECT_EQ(std::async(std::launch::async, parse).get(), 0U);
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
        EXPECT_EQ(std::async(std::launch::async, parse).get(), 1U) << text.substr(0, 20);
        EXPECT_LOGGED(log + "ParseJsonConfig: Failed to parse json data stream.");
    }
}

}  // namespace

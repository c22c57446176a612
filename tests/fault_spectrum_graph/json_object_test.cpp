#include "fault_spectrum_graph/fault_json_object.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/stat.h>

#include "support/recording_agent.h"
#include "support/temp_world.h"

namespace {

// What the plug-in says to the world's configuration on a thread of as little stack as the agent may give it.
uint32_t ParseOnSmallStack(FaultJsonObject& object) {
    const auto parse = [](void* argument) -> void* {
        const uint32_t result = static_cast<FaultJsonObject*>(argument)->ParseJsonConfig(
            *Agent()->roots.rbegin() + ZORV_ROUTE_CONFIG_FILE);
        return result == 0 ? nullptr : argument;
    };
    pthread_t thread{};
    pthread_attr_t attributes{};
    pthread_attr_init(&attributes);
    EXPECT_EQ(pthread_attr_setstacksize(&attributes, 256U << 10U), 0);
    EXPECT_EQ(pthread_create(&thread, &attributes, parse, &object), 0);
    void* failed = nullptr;
    pthread_join(thread, &failed);
    return failed == nullptr ? 0 : 1;
}

std::string Nested(int depth) {
    return depth == 0 ? "7" : R"({"A": )" + Nested(depth - 1) + "}";
}

TEST(JsonObject, AnswersByGraphAndKeyFromWhatWasParsedLast) {
    const TempWorld world;
    FaultJsonObject object;
    const std::string log = "3 fault_json_object.cpp ";
    const std::string pipe = world.Path("/pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    Json::Value value;
    for (const std::string& text :
         Lines{"{", "", "[]", "null", "\"x\"", "\xff\xfe\x01", Nested(200), Nested(2000)}) {
        EXPECT_EQ(object.GetGraphValueByKeyTag("G", "nodes", value), 1U);
        EXPECT_LOGGED(log + "GetGraphValueByKeyTag: FlowGraph is null.");
        world.Config(R"({"G": {"nodes": "N", "edges": "E", "other": )" + Nested(197) + "}}");  // the deepest
        EXPECT_EQ(ParseOnSmallStack(object), 0U);
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
        EXPECT_EQ(ParseOnSmallStack(object), 1U) << text.substr(0, 20);
        EXPECT_LOGGED(log + "ParseJsonConfig: Failed to parse json data stream.");
    }
}

}  // namespace

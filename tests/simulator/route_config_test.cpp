// The route configuration is one that every walk can be led by.
#include <gmock/gmock.h>

#include <functional>
#include <map>
#include <set>

#include "tests/simulator/written_world.h"

namespace {

class RouteConfigTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { world = std::make_unique<WrittenWorld>(Options("healthy")); }
    static void TearDownTestSuite() { world.reset(); }

    static bool IsGroup(const Json::Value& node) {
        return node["description"].asString().find("MODULE") != std::string::npos;
    }
    // As the diagnosis finds it: the first source of an edge that is nobody's target.
    static std::string TopologicalRoot(const Json::Value& graph) {
        std::set<std::string> targets;
        for (const Json::Value& edge : graph["edges"]) {
            targets.insert(edge["target"].asString());
        }
        for (const Json::Value& edge : graph["edges"]) {
            if (targets.count(edge["source"].asString()) == 0) {
                return NodesById(graph).at(edge["source"].asString())["label"].asString();
            }
        }
        return "";
    }
    static std::map<std::string, Json::Value> NodesById(const Json::Value& graph) {
        std::map<std::string, Json::Value> nodes;
        for (const Json::Value& node : graph["nodes"]) {
            nodes[node["id"].asString()] = node;
        }
        return nodes;
    }

    static std::unique_ptr<WrittenWorld> world;
};

std::unique_ptr<WrittenWorld> RouteConfigTest::world;

TEST_F(RouteConfigTest, EveryGraphThatIsAskedForIsThere) {
    // Each with the point that its walk begins at.
    const std::pair<const char*, const char*> graphs[] = {
        {"SAN_IO_READ", "TGT_LUMO_HOST_READ"},
        {"SAN_IO_WRITE", "TGT_LUMO_HOST_WRITE"},
        {"SAN_IO_CMD", "TGT_LUMO_HOST_CMD"},
        {"NAS_IO_NFSV3", "NAS_TRANS_ALL"},
        {"NAS_IO_NFSV4", "NAS_TRANS_ALL"},
        {"NAS_IO_SMB2", "NAS_TRANS_ALL"},
        {"ERRCODE_NAS_PROTO", "NAS_QELMAR_IO_COMMON"},
        {"ERRCODE_SMB", "SMB_AUTHTICATE_LOGON_FAILURE"},
        {"ERRCODE_SAN_PROTO", "TGT_IO_ERRCODE_COMMON"},
        {"ERRCODE_SAN_TGT", ""},
        {"ERRCODE_FS", ""},
        {"ERRCODE_BLOCK", ""},
        {"ERRCODE_POOL", ""},
        {"ERRCODE_CACHE", ""},
        {"ERRCODE_BDM", ""},
        {"POOL_ERRCODE_READ", "POOL_DOP_READ_TIME_IN_POOL"},
        {"POOL_ERRCODE_WRITE", "POOL_DOP_WRITE_TIME_IN_POOL"},
        {"MKV_IO_READ", "POOL_DOP_READ_TIME_IN_POOL"},
        {"MKV_IO_WRITE", "POOL_DOP_WRITE_TIME_IN_POOL"},
        {"FACTOR_SAN", ""},
        {"FACTOR_NAS", ""},
        {"FACTOR_FS", ""},
        {"FACTOR_BLOCK", ""},
        {"FACTOR_POOL", ""},
        {"FACTOR_CACHE", ""},
        {"FACTOR_BDM", ""},
    };
    for (const auto& [name, begin] : graphs) {
        ASSERT_TRUE(world->config.isMember(name)) << name;
        const Json::Value& graph = world->config[name];
        EXPECT_GE(graph["nodes"].size(), 4U) << name;
        EXPECT_GE(graph["edges"].size(), 3U) << name;
        if (*begin != '\0') {
            const Json::Value& first = graph["nodes"][0];
            EXPECT_EQ(begin, first["label"].asString()) << name;
            EXPECT_EQ(1, first["id"].asInt()) << name;
            EXPECT_EQ(begin, TopologicalRoot(graph)) << name;
        }
    }
}

TEST_F(RouteConfigTest, EveryPointHasRows) {
    std::set<std::string> withRows;
    for (const Row& row :
         world->statistics.Query("select distinct locatename from " + world->statistics.AllRows())) {
        withRows.insert(row[0]);
    }
    size_t observations = 0;
    for (const Json::Value& graph : world->config) {
        for (const Json::Value& node : graph["nodes"]) {
            EXPECT_EQ(IsGroup(node) ? 0U : 1U, withRows.count(node["label"].asString())) << node["label"];
            EXPECT_FALSE(node["description"].asString().empty()) << node["label"];
            EXPECT_FALSE(world->config.isMember(node["name"].asString())) << node["name"];
            const Json::Value& qname = node["info"]["qname"];
            EXPECT_EQ(node["info"]["attr"].asString() == "automic", !qname.isNull()) << node["label"];
            EXPECT_TRUE(qname.isNull() || withRows.count(qname.asString()) == 1) << qname;
            observations += node["label"].asString().find("OB_") != std::string::npos ? 1U : 0U;
        }
    }
    EXPECT_GT(observations, 10U);
}

TEST_F(RouteConfigTest, GraphsAreSoundAndAcyclic) {
    for (const std::string& name : world->config.getMemberNames()) {
        const Json::Value& graph = world->config[name];
        const auto nodes = NodesById(graph);
        EXPECT_EQ(graph["nodes"].size(), nodes.size()) << name;
        std::set<std::string> labels;
        for (const Json::Value& node : graph["nodes"]) {
            EXPECT_TRUE(node["id"].isInt() && node["id"].asInt() > 0) << name;
            EXPECT_TRUE(labels.insert(node["label"].asString()).second) << name << " " << node["label"];
        }
        std::map<std::string, std::vector<std::string>> children;
        for (const Json::Value& edge : graph["edges"]) {
            ASSERT_TRUE(edge["source"].isString() && edge["target"].isString()) << name;
            EXPECT_EQ(1U, nodes.count(edge["source"].asString()) * nodes.count(edge["target"].asString()))
                << name;
            children[edge["source"].asString()].push_back(edge["target"].asString());
        }
        const std::function<void(const std::string&, size_t)> descend = [&](const std::string& id,
                                                                            size_t depth) {
            ASSERT_LE(depth, nodes.size()) << name << " has a circle";
            for (const std::string& child : children[id]) {
                ASSERT_NO_FATAL_FAILURE(descend(child, depth + 1));
            }
        };
        for (const auto& node : nodes) {
            ASSERT_NO_FATAL_FAILURE(descend(node.first, 0));
        }
    }
}

TEST_F(RouteConfigTest, HandOversLeadToATracePointAndEnd) {
    size_t handOvers = 0;
    const std::function<void(const std::string&, size_t)> follow = [&](const std::string& name,
                                                                       size_t depth) {
        ASSERT_LE(depth, world->config.size()) << "hand-overs go round";
        for (const Json::Value& node : world->config[name]["nodes"]) {
            const std::string next = node["info"]["subGraph"].asString();
            if (!next.empty()) {
                ++handOvers;
                ASSERT_TRUE(world->config.isMember(next)) << next;
                const std::string root = TopologicalRoot(world->config[next]);
                EXPECT_EQ(std::string::npos, root.find("OB_")) << next;
                EXPECT_NE("0", world->statistics.Value(
                                   "select count(*) from version_nmaps where locatename = '" + root + "'"));
                ASSERT_NO_FATAL_FAILURE(follow(next, depth + 1));
            }
        }
    };
    for (const std::string& name : world->config.getMemberNames()) {
        ASSERT_NO_FATAL_FAILURE(follow(name, 0));
    }
    EXPECT_GT(handOvers, 10U);
}

}  // namespace

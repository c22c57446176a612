// The route configuration is one that every walk can be led by.
#include <gmock/gmock.h>

#include "tests/simulator/written_world.h"

namespace {

// A root is what the diagnosis takes: the first source of an edge that is nobody's target.
constexpr char TABLES[] = R"(
    create temp table nodes as
        select graph.key as graph, each.key as place, each.value as node, each.value->>'id' || '' as id,
            each.value->>'label' as label, ifnull(each.value->>'description', '') as description,
            each.value->>'$.info.subGraph' as subGraph, each.value->>'$.info.qname' as qname
        from json, json_each(config) as graph, json_each(graph.value, '$.nodes') as each;
    create temp table edges as
        select graph.key as graph, each.key as place, each.value->>'source' as source,
            each.value->>'target' as target
        from json, json_each(config) as graph, json_each(graph.value, '$.edges') as each;
    create temp table roots as
        select graph, label, min(edges.place) from edges join nodes using (graph) where id = source
            and (graph, source) not in (select graph, target from edges) group by graph;
    create temp table points as select distinct locatename from samples;
    create temp table asked(graph, begin);
    insert into asked values
        ('SAN_IO_READ', 'TGT_LUMO_HOST_READ'), ('SAN_IO_WRITE', 'TGT_LUMO_HOST_WRITE'),
        ('SAN_IO_CMD', 'TGT_LUMO_HOST_CMD'), ('NAS_IO_NFSV3', 'NAS_TRANS_ALL'),
        ('NAS_IO_NFSV4', 'NAS_TRANS_ALL'), ('NAS_IO_SMB2', 'NAS_TRANS_ALL'),
        ('ERRCODE_NAS_PROTO', 'NAS_QELMAR_IO_COMMON'), ('ERRCODE_SMB', 'SMB_AUTHTICATE_LOGON_FAILURE'),
        ('ERRCODE_SAN_PROTO', 'TGT_IO_ERRCODE_COMMON'), ('POOL_ERRCODE_READ', 'POOL_DOP_READ_TIME_IN_POOL'),
        ('POOL_ERRCODE_WRITE', 'POOL_DOP_WRITE_TIME_IN_POOL'), ('MKV_IO_READ', 'POOL_DOP_READ_TIME_IN_POOL'),
        ('MKV_IO_WRITE', 'POOL_DOP_WRITE_TIME_IN_POOL'), ('ERRCODE_SAN_TGT', null), ('ERRCODE_FS', null),
        ('ERRCODE_BLOCK', null), ('ERRCODE_POOL', null), ('ERRCODE_CACHE', null), ('ERRCODE_BDM', null),
        ('FACTOR_SAN', null), ('FACTOR_NAS', null), ('FACTOR_FS', null), ('FACTOR_BLOCK', null),
        ('FACTOR_POOL', null), ('FACTOR_CACHE', null), ('FACTOR_BDM', null))";

constexpr const char* FAULTS[] = {
    // Every graph that is asked for is there, and begins where its walk is asked to.
    "select graph from asked except select graph from roots",
    "select graph, begin from asked where begin != '' except select graph, label from roots",
    "select graph, begin from asked where begin != '' except"
    " select graph, label from nodes where id = '1' and place = 0",
    // Ids are positive numbers, edges name them as texts, and nothing is there twice.
    "select * from nodes where json_type(node, '$.id') != 'integer' or id + 0 < 1",
    "select * from edges where typeof(source) != 'text' or typeof(target) != 'text'",
    "select graph, id from nodes group by graph, id having count(*) > 1",
    "select graph, label from nodes group by graph, label having count(*) > 1",
    "select graph, source from edges except select graph, id from nodes",
    "select graph, target from edges except select graph, id from nodes",
    // No walk goes round, neither in a graph nor over hand-overs.
    "with way as (select graph, source, target from edges union"
    " select graph, way.source, edges.target from way join edges using (graph)"
    " where way.target = edges.source) select * from way where source = target",
    "with way as (select graph, subGraph from nodes where subGraph != '' union"
    " select way.graph, nodes.subGraph from way join nodes on way.subGraph = nodes.graph"
    " where nodes.subGraph != '') select * from way where graph = subGraph",
    // A hand-over leads to a trace point, and where there is none the walk ends.
    "select subGraph from nodes where subGraph != '' except"
    " select graph from roots where label in points and instr(label, 'OB_') = 0",
    "select * from nodes where node->>'name' in (select graph from nodes)",
    // All but groups have rows, and just the atomic nodes name a point that counts for them.
    "select * from nodes where (label in points) = (description like 'MODULE%') or description = ''",
    "select * from nodes where (node->>'$.info.attr' is 'automic') != (ifnull(qname, '') in points)",
};

TEST(RouteConfigTest, LeadsEveryWalk) {
    const WrittenWorld world(Options("healthy"));
    world.Query(TABLES);
    for (const char* fault : FAULTS) {
        EXPECT_THAT(world.Query(fault), ::testing::IsEmpty()) << fault;
    }
    EXPECT_EQ("1", world.Value("select sum(subGraph != '') > 10 and sum(qname != '') > 10"
                               " and sum(instr(label, 'OB_') > 0) > 10 from nodes"));
}

}  // namespace

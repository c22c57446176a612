// The delay causality graph: which trace point's delay can be caused by which other point's, with the
// statistics of the points over one range of time, and the walk down it to the likely root cause.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "fault_common/fault_export.h"
#include "fault_common/fault_series.h"
#include "fault_spectrum_graph/fault_causality_graph_record.h"
#include "fault_spectrum_graph/fault_json_object.h"

struct FaultSqlInputParam;

// Built in this order: InitGraph(), ExtracNodeInfo(), GetData(), a root finder, TraverseByBfs(). Status
// results are 0 for success and 1 for failure. Not virtual; confined to the thread that made it.
class FAULT_EXPORT FaultCausalityGraph {
public:
    // Adds every edge of a configuration's "edges". Throws the standard conversion errors for an end that is
    // no number, Json::LogicError for a value of the wrong type.
    void InitGraph(const Json::Value& edges);

    // Takes over a configuration's "nodes": a later node with the same id replaces an earlier one. Throws
    // Json::LogicError for a value of the wrong type.
    void ExtracNodeInfo(const Json::Value& nodes);

    // Appends an edge. Refuses negative ids and coefficients outside [-1, 1]; the coefficient is not stored.
    uint32_t AddEdge(int32_t sourceId, int32_t targetId, double coff);

    // The root from the topology: the first edge source that is nobody's target, compared as text. On failure
    // `root` stays as it was.
    uint32_t FindRootBySelf(const Json::Value& edges, int32_t& root);

    // The node with the lowest id whose location name contains `label`. On failure `root` stays as it was.
    uint32_t FindRootBySpecificLabel(const std::string& label, int32_t& root);

    // Loads the statistics of all points for a range of compact local times, both ends included. Observation
    // points are optional. Blocks on the database. Throws the standard conversion errors for a cell or time
    // that is no number.
    uint32_t GetData(const std::string& beginDate, const std::string& endDate);

    // Its two halves; times in UTC seconds since 1970, `tables` the data tables to read. A point gets an
    // entry, perhaps empty, whatever came back; the first failed query ends the loading.
    uint32_t GetLumoData(const std::string& beginTime, const std::string& endTime,
                         const std::vector<std::string>& tables);
    uint32_t GetObData(const std::string& beginTime, const std::string& endTime,
                       const std::vector<std::string>& tables);

    // The row callback of the loading: appends twelve values per row to the series of their columns.
    static uint32_t QueryFullDataCb(char** result, int32_t rowCount, int32_t columnCount,
                                    std::map<std::string, FaultSeries>& series);

    // Copies one statistic's series of a trace point. On failure, which is logged, `series` stays as it was.
    uint32_t GetSeriesDataArray(int32_t nodeId, const std::string& statName, FaultSeries& series) const;

    // Reductions of a series' values; 0 for an empty one. The average divides each value before adding,
    // towards zero, and so may be smaller than the true mean; the maximum is never below 0.
    static int64_t SumTimeSeriesArray(const FaultSeries& series);
    static int64_t AvgSeriesArray(const FaultSeries& series);
    static int64_t MaxTimeSeriesArray(const FaultSeries& series);

    // One column of a point's statistics; an empty series where they lack it.
    static const FaultSeries& ColumnOf(const std::map<std::string, FaultSeries>& data,
                                       const std::string& column);

    // The coefficient between the parent's delays and the child's; -1.0 when the child has none.
    double GetCorrelation(const FaultSeries& parentSeries, const NodeBase& child) const;

    // The candidate with the highest coefficient, the earlier of equal ones; id 0 when none is above -1.0.
    // Its kind is always "LUMO_POINT".
    NodeBase SelectNodeByWeightCoff(const FaultSeries& parentSeries,
                                    const std::vector<NodeBase>& candidates) const;

    // The walk: from `root` down the best-correlated children. It ends at a node without a child to follow,
    // and before a node that is already on the path. `pathInfo` stays as it was on failure.
    uint32_t TraverseByBfs(int32_t root, AnomalyPathInfo& pathInfo) const;
    NodeResult SelectChildNode(int32_t parentId, const std::vector<Edge>& edges) const;
    void GetNodeResult(const NodeBase& node, const std::map<std::string, FaultSeries>& data,
                       NodeResult& result) const;
    std::string GetFixAdvice(int32_t nodeId) const;

    // The anomalous node of a path: the deepest one before the coefficient first drops below 0.4. Returns 1,
    // with `pathInfo` unchanged, for a path without one.
    uint32_t GetAnomalyResult(const std::vector<NodeResult>& path, AnomalyPathInfo& pathInfo) const;

    int32_t rootId = 0;                                 // as found by FindRootBySelf()
    std::map<int32_t, std::vector<Edge>> mapGraph;      // by source, in the order of adding
    std::map<int32_t, Node> mapNodeInfo;                // by id
    std::vector<std::string> vecLumoLocName;            // trace points, in the configuration's order
    std::vector<std::string> vecObName;                 // observation points, likewise
    std::map<std::string, FaultSeries> mapObserveData;  // delays of the observation points
    std::map<std::string, std::map<std::string, FaultSeries>> mapLumoData;  // by trace point, then by column

protected:
    // What both kinds of graph share. Log lines carry `file` and the name of the walk's operation.

    // A node's members that both kinds of graph read.
    static Node ReadNode(const Json::Value& json);

    // Appends a point's rows from all tables, column by column. Fails with the first query.
    static uint32_t LoadPoint(FaultSqlInputParam& query, const std::string& point,
                              const std::vector<std::string>& tables,
                              std::map<std::string, FaultSeries>& columns);

    // The series that GetSeriesDataArray() copies; null, and logged, when there is none.
    const FaultSeries* FindSeries(int32_t nodeId, const std::string& statName) const;

    // The node at which a walk starts; null, and logged, when there is none.
    const Node* FindWalkRoot(int32_t root, const char* file) const;

    // The statistics of that node; null, and logged, when there are none.
    const std::map<std::string, FaultSeries>* FindWalkData(const Node& root, const char* file) const;

    // Appends to `path`, which holds the root, what `selectChild`, given a node's id and its edges, chooses
    // as the next one (a NodeResult), until it chooses none, one without data, or one that is on the path
    // already. See fault_causality_graph_walk.h.
    template <typename ChildChoice>
    void Descend(std::vector<NodeResult>& path, ChildChoice selectChild, const char* file) const;
};

// The graph "SAN_IO_READ", with its data for a range of compact local times if they could be loaded. Null,
// and "inner error" printed, when the configuration does not have it.
FAULT_EXPORT std::unique_ptr<FaultCausalityGraph> ConstructGraph(const std::string& startTime,
                                                                 const std::string& endTime);

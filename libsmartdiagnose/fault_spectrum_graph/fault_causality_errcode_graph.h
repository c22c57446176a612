// The error-code causality graph: which trace point's failed requests can be caused by which other point's,
// with the error counts of the points over one range of time, and the walk down it to the root cause of the
// errors of one type.
//
// An error type is told by its index, -1 to -5 for the columns errCode0 to errCode4 (see g_mapErrIdxName). An
// error count is the sum of such a column over the loaded range.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "fault_common/fault_export.h"
#include "fault_common/fault_series.h"
#include "fault_spectrum_graph/fault_causality_graph.h"

// How a trace point counts its errors. `attr` is searched for three words: "automic", an atomic point that
// has an error index of its own and is counted under `qname`; "whole", a point that is counted under its own
// name even so; "follow", a point that is preferred to its siblings as soon as it has errors.
struct ErrCodeAttr {
    std::string label;  // the point's name
    std::string attr;
    std::string qname;
    int32_t erridx = -1;
};

// The point under whose name the errors of one with these attributes are stored.
const std::string& FaultCountedPoint(const ErrCodeAttr& attr);

// Whether attribute words say that a point follows its parent.
bool FaultFollowsParent(const std::string& attr);

// Built and used as the delay graph is, which see; the operations below take the place of its own. A node
// whose description contains "MODULE" groups others: it has neither attributes nor statistics.
class FAULT_EXPORT FaultCausalityErrCodeGraph : public FaultCausalityGraph {
public:
    // Makes the graph a frame: neither attributes nor statistics are taken. Always does, whatever the
    // argument.
    void SetFrameGraphFlag(bool flag);

    // Takes over a configuration's "nodes": a later node with the same id replaces an earlier one, and later
    // attributes for a name replace earlier ones. Throws the standard conversion errors for an error index
    // that is no number, Json::LogicError for a value of the wrong type; the nodes before stay.
    void ExtracNodeInfo(const Json::Value& nodes);

    // Loads the statistics of all points with attributes for a range of compact local times, both ends
    // included. Blocks on the database. Throws the standard conversion errors for a cell or time that is no
    // number.
    uint32_t GetData(const std::string& startDate, const std::string& endDate);

    // Its last step; times in UTC seconds since 1970, `tables` the data tables to read. A point gets an
    // entry, perhaps empty, whatever came back; the first failed query ends the loading.
    uint32_t GetErrCodeData(const std::string& startTime, const std::string& endTime,
                            const std::vector<std::string>& tables);

    // The sum of a series' values, despite the name: what an error count is.
    static int64_t AvgSeriesArray(const FaultSeries& series);

    // Whether the point's errors reach the host under another type than the one that the point counts.
    bool CheckIfReturnDiffErrCodeToTop(const NodeBase& node) const;

    // A node's error count for a type. Where it is 0 and the errors of the point reach the host under another
    // type, the count of the first other type that has one, from errCode4 down. An index that
    // g_mapErrIdxName does not have is added to it, without a column.
    int64_t GetErrCodeAvgNum(const NodeBase& node, int32_t erridx) const;
    int64_t GetOtherErrCodeAvgNum(const NodeBase& node, int32_t erridx) const;

    // A node's counts and advice; `endFlag` is set when it has no name or no statistics. Adds an unknown
    // index of the node to g_mapErrIdxName, as the counts do.
    NodeResult GetNodeResult(const NodeBase& node, const std::map<std::string, FaultSeries>& data) const;

    // The candidate with the highest count for the type, the earlier of equal ones; one that follows its
    // parent and has errors wins over all that do not. Id 0 when no candidate has errors.
    NodeBase SelectNodeByErrCountWeight(const std::vector<NodeBase>& candidates, int32_t erridx) const;

    // The child to go on with; id 0 when there is none.
    NodeResult SelectChildNode(const std::vector<Edge>& edges, int32_t erridx) const;

    // The walk: from `root` down the children with the highest counts for the type. It ends at a node without
    // a child to follow, and before a node that is already on the path. A root without statistics is no
    // failure: `pathInfo` stays as it was then, as it does on failure.
    uint32_t TraverseByBfs(int32_t root, AnomalyPathInfo& pathInfo, int32_t erridx) const;

    // Makes the last node of a path, which must not be empty, the root cause. Returns 0.
    uint32_t GetAnomalyResult(const std::vector<NodeResult>& path, AnomalyPathInfo& pathInfo) const;

    std::map<std::string, ErrCodeAttr> mapErrCodeAttr;  // by point name
    bool frameGraphFlag = false;
};

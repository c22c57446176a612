// How all runs read a graph of the configuration. Inside fault_rootcause only.
#pragma once

#include "fault_algorithm/fault_rootcause.h"
#include "fault_common/fault_log.h"
#include "fault_spectrum_graph/fault_json_object.h"

enum class FaultGraphReading {
    DONE,
    UNKNOWN_GRAPH,  // the configuration does not have it
    NO_VALUE,       // its nodes or edges cannot be had
    FAILED          // its nodes are bad, or its data cannot be loaded; logged where no exception told it
};

// Runs a step as it is: what it throws goes through.
inline constexpr auto FAULT_RUN_STEP = [](auto step) { return step(); };

// Reads nodes and data of a graph, and its edges as well when `edges` is not null, which they replace. Each
// step but the edges runs by `run`, which gets a function that tells whether the step succeeded, and says the
// same: there a run may end the step's exceptions. Log lines carry the name of `operation`.
template <typename Graph, typename Run>
FaultGraphReading ReadGraph(const char* operation, const std::string& name, const TimeWindow& timeWindow,
                            Run run, Graph& graph, Json::Value* edges = nullptr) {
    FaultJsonObject& config = FaultJsonObject::GetInstance();
    if (!config.IsMember(name)) {
        return FaultGraphReading::UNKNOWN_GRAPH;
    }
    Json::Value nodes;
    const auto readValues = [&] {
        return config.GetGraphValueByKeyTag(name, "nodes", nodes) == 0 &&
               (edges == nullptr || config.GetGraphValueByKeyTag(name, "edges", *edges) == 0);
    };
    if (!run(readValues)) {
        return FaultGraphReading::NO_VALUE;
    }
    if (edges != nullptr) {
        graph.InitGraph(*edges);
    }
    const auto extract = [&] {
        graph.ExtracNodeInfo(nodes);
        return true;
    };
    if (!run(extract)) {
        return FaultGraphReading::FAILED;
    }
    if (!run([&] { return graph.GetData(timeWindow.startTime, timeWindow.endTime) == 0; })) {
        FAULT_LOG(FAULT_IN(operation), FAULT_ERROR, "GetData failed.");
        return FaultGraphReading::FAILED;
    }
    return FaultGraphReading::DONE;
}

// Reads a graph for a search: without its edges, and with the words of searches for failures. Returns 0,
// or 1.
template <typename Graph>
uint32_t FaultSearchGraph(const char* operation, const std::string& graphName, const TimeWindow& timeWindow,
                          Graph& graph) {
    const FaultGraphReading reading = ReadGraph(operation, graphName, timeWindow, FAULT_RUN_STEP, graph);
    if (reading == FaultGraphReading::UNKNOWN_GRAPH) {
        FAULT_LOG(FAULT_IN(operation), FAULT_WARNING, "The %s is not exist.", graphName.c_str());
    } else if (reading == FaultGraphReading::NO_VALUE) {
        FAULT_LOG(FAULT_IN(operation), FAULT_ERROR, "Fail to get graph value, ret(%d).", 1);
    }
    return reading == FaultGraphReading::DONE ? 0 : 1;
}

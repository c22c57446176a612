// What `showgraph` can show of a graph.
#pragma once

#include <array>
#include <string>

#include "fault_common/fault_export.h"
#include "fault_spectrum_graph/fault_causality_graph.h"

// Prints one part of a graph to the console. Without a graph (null) nothing is printed. `locName` names the
// trace point where one is to be shown.
using FaultGraphDisplay = void (*)(const FaultCausalityGraph* graph, const std::string& locName);

void DisplayMapGraph(const FaultCausalityGraph* graph, const std::string& locName);
void DisplayMapNodeInfo(const FaultCausalityGraph* graph, const std::string& locName);
void DisplayVecLumoName(const FaultCausalityGraph* graph, const std::string& locName);
void DisplayVecObName(const FaultCausalityGraph* graph, const std::string& locName);
void DisplayMapObData(const FaultCausalityGraph* graph,
                      const std::string& locName);  // accepted, prints nothing
void DisplayMapLumoData(const FaultCausalityGraph* graph, const std::string& locName);

// A word of the command, and what it shows.
struct FaultGraphDisplayCmd {
    std::string name;
    FaultGraphDisplay display;
};
FAULT_EXPORT extern const std::array<FaultGraphDisplayCmd, 6> g_faultGraphDisplayCmd;

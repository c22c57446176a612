#define FAULT_UNIT_FILE "fault_debug.cpp"
#include "fault_debug/fault_debug_showgraph.h"

#include "fault_debug/fault_debug_command.h"

const std::array<FaultGraphDisplayCmd, 6> g_faultGraphDisplayCmd = {{
    {"mapgraph", DisplayMapGraph},
    {"mapnodeinfo", DisplayMapNodeInfo},
    {"veclumo", DisplayVecLumoName},
    {"vecob", DisplayVecObName},
    {"mapobdata", DisplayMapObData},
    {"maplumodata", DisplayMapLumoData},
}};

namespace {

constexpr int32_t ARGUMENTS = 7;
constexpr int32_t FIRST_TIME_ARGUMENT = 5;

void PrintNames(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        DBG_Print("%s\n", name.c_str());
    }
}

}  // namespace

void DisplayMapGraph(const FaultCausalityGraph* graph, const std::string& /*locName*/) {
    if (graph == nullptr) {
        return;
    }
    DBG_Print("\nCausalityGraph mapGraph\n");
    for (const auto& [sourceId, edges] : graph->mapGraph) {
        DBG_Print("node: %-4d ", sourceId);
        DBG_Print("edge: ");
        for (const Edge& edge : edges) {
            DBG_Print("%-4d ", edge.targetId);
        }
        DBG_Print("\n");
    }
}

void DisplayMapNodeInfo(const FaultCausalityGraph* graph, const std::string& /*locName*/) {
    if (graph == nullptr) {
        return;
    }
    DBG_Print("\nCausalityGraph mapNodeInfo\n");
    DBG_Print("key  ioPointid          locName                         statLabel               nextGraph\n");
    for (const auto& [id, node] : graph->mapNodeInfo) {
        DBG_Print("%-4d ", id);
        DBG_Print("%-16d%-32s%-12s%-15s\n", node.ioPointid, node.locName.c_str(), node.statLabel.c_str(),
                  node.nextGraph.c_str());
    }
}

void DisplayVecLumoName(const FaultCausalityGraph* graph, const std::string& /*locName*/) {
    if (graph == nullptr) {
        return;
    }
    DBG_Print("\nCausalityGraph vecLumoLocName\n");
    DBG_Print("\nLocName\n");
    PrintNames(graph->vecLumoLocName);
}

void DisplayVecObName(const FaultCausalityGraph* graph, const std::string& /*locName*/) {
    if (graph == nullptr) {
        return;
    }
    DBG_Print("\nCausalityGraph vecObName\n");
    DBG_Print("\nObName\n");
    PrintNames(graph->vecObName);
}

void DisplayMapObData(const FaultCausalityGraph* /*graph*/, const std::string& /*locName*/) {}

void DisplayMapLumoData(const FaultCausalityGraph* graph, const std::string& locName) {
    if (graph == nullptr) {
        return;
    }
    DBG_Print("\nCausalityGraph mapLumoData\n");
    const auto point = graph->mapLumoData.find(locName);
    if (point == graph->mapLumoData.end()) {
        DBG_Print("\n LUMO Loc(%s) not exist !\n", locName.c_str());
        return;
    }
    DBG_Print("\nlumoLocName            timestamp   avg\n");
    const auto delays = point->second.find("avgdelay");
    if (delays == point->second.end()) {
        return;
    }
    for (const FaultSeriesRow& row : delays->second) {
        DBG_Print("\n%-30s%-12d%-12d\n", locName.c_str(), static_cast<int32_t>(row[0]),
                  static_cast<int32_t>(row[1]));
    }
}

void FaultShowGraphCommand(int32_t argc, char** argv) {
    DBG_Print("\t\t: ZorvFaultGraphDisplay\n");
    std::string start;
    std::string end;
    if (argc != ARGUMENTS || ParseTimeArgs(argc, argv, FIRST_TIME_ARGUMENT, start, end) != 0) {
        FaultPrintError("type err");
        return;
    }
    const std::unique_ptr<FaultCausalityGraph> graph = ConstructGraph(start, end);
    const std::string word = argv[FIRST_ARGUMENT];
    for (const FaultGraphDisplayCmd& command : g_faultGraphDisplayCmd) {
        if (command.name == word) {
            command.display(graph.get(), argv[FIRST_ARGUMENT + 1]);
            return;
        }
    }
    FaultPrintError("type err");
}

// The descent that the walks of both kinds of graph share. Inside these two units only.
#pragma once

#include <set>
#include <utility>

#include "fault_common/fault_log.h"
#include "fault_spectrum_graph/fault_causality_graph.h"

// The operation that the log lines of a walk name.
constexpr const char* FAULT_WALK = "TraverseByBfs";

template <typename ChildChoice>
void FaultCausalityGraph::Descend(std::vector<NodeResult>& path, ChildChoice selectChild,
                                  const char* file) const {
    std::set<int32_t> visited{path.front().ioPointid};
    for (auto edges = mapGraph.find(path.front().ioPointid); edges != mapGraph.end();
         edges = mapGraph.find(path.back().ioPointid)) {
        NodeResult child = selectChild(edges->first, edges->second);
        if (child.ioPointid == 0 || child.endFlag != 0) {
            return;
        }
        if (!visited.insert(child.ioPointid).second) {
            FAULT_LOG((FaultLogSite{file, __LINE__, FAULT_WALK}), FAULT_WARNING,
                      "node %d is on the path already, the walk ends.", child.ioPointid);
            return;
        }
        path.push_back(std::move(child));
    }
}

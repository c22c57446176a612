// The shares of the extra delay by module.
#pragma once

#include <string>
#include <vector>

namespace explain {

struct ModuleShare {
    std::string module;  // empty: between nodes
    double share = 0.0;
};

// The module of a point: its name up to the first underscore. Empty for points of which each waits for an
// answer or an acknowledgement of another node: what is slow there lies on the way between nodes, or in the
// other one.
std::string ModuleOf(const std::string& point);

}  // namespace explain

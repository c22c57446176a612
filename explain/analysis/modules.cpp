#include "explain/analysis/modules.h"

#include "text/point_names.h"

namespace explain {

std::string ModuleOf(const std::string& point) {
    return WaitsForNodes(point) ? std::string() : point.substr(0, point.find('_'));
}

}  // namespace explain

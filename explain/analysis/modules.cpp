#include "explain/analysis/modules.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace explain {
namespace {

// docs/explain.md has the same list.
constexpr std::array<std::string_view, 7> BETWEEN_NODES = {"SPACE_IOTUNNEL_UC_RSP_READ",
                                                           "SPACE_IOTUNNEL_UC_RSP_WRITE",
                                                           "SPACE_IOTUNNEL_UC_ACK_READ",
                                                           "SPACE_IOTUNNEL_UC_ACK_WRITE",
                                                           "WCACHE_MIRROR_SEND",
                                                           "WCACHE_FS_MIRROR_SEND",
                                                           "MDS_OWNER_QUERY"};

bool WaitsForNodes(const std::string& point) {
    return std::find(BETWEEN_NODES.begin(), BETWEEN_NODES.end(), point) != BETWEEN_NODES.end();
}

}  // namespace

std::string ModuleOf(const std::string& point) {
    return WaitsForNodes(point) ? std::string() : point.substr(0, point.find('_'));
}

}  // namespace explain

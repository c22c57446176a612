#include "text/point_names.h"

#include <algorithm>
#include <array>

namespace {
constexpr std::array<std::string_view, 7> BETWEEN_NODES = {"SPACE_IOTUNNEL_UC_RSP_READ",
                                                           "SPACE_IOTUNNEL_UC_RSP_WRITE",
                                                           "SPACE_IOTUNNEL_UC_ACK_READ",
                                                           "SPACE_IOTUNNEL_UC_ACK_WRITE",
                                                           "WCACHE_MIRROR_SEND",
                                                           "WCACHE_FS_MIRROR_SEND",
                                                           "MDS_OWNER_QUERY"};
}  // namespace

bool WaitsForNodes(std::string_view point) {
    return std::find(BETWEEN_NODES.begin(), BETWEEN_NODES.end(), point) != BETWEEN_NODES.end();
}

#include "simulator/scenario.h"

#include <algorithm>

namespace lumosim {
namespace {

constexpr int64_t ONE_WEEK = 604800;  // no range is longer
// More of a usual graph: from the slow disk back to where a walk began.
constexpr GraphRow BACK_TO_THE_HOST[] = {{0, "BDM_DISK_READ"}, {1, "TGT_LUMO_HOST_READ"}};
constexpr GraphRow BACK_TO_THE_GRAPH[] = {{0, "BDM_DISK_READ", HandOver("SAN_IO_READ")}};

constexpr FaultRecipe SLOW_DISK = {FaultKind::DELAY, "SAN_IO_READ", "BDM_DISK_READ", 20};

}  // namespace

const std::vector<Scenario>& Scenarios() {
    static const std::vector<Scenario> scenarios = {
        {"healthy", "Nothing is wrong."},
        {"slow-disk", "A data disk answers slowly, and host reads with it.", SLOW_DISK},
        {"slow-network",
         "Acknowledgements between the nodes are late, and host writes with them.",
         {FaultKind::DELAY, "SAN_IO_WRITE", "SPACE_IOTUNNEL_UC_ACK_WRITE", 120}},
        {"nas-slow",
         "The file system's log commits slowly, and NFSv3 with it.",
         {FaultKind::DELAY, "NAS_IO_NFSV3", "FS_NFSV3_LOG_COMMIT", 250}},
        {"locked-volume",
         "A snapshot holds a volume's lock, and host commands wait.",
         {FaultKind::DELAY, "SAN_IO_CMD", "SPACE_BLOCK_LUN_ALL_LOCK", 60}},
        {"slow-pool",
         "A disk of the pool answers slowly, in a graph below that of host reads.",
         {FaultKind::DELAY, "SAN_IO_READ", "BDM_POOL_DISK_READ", 20}},
        {"long-queue",
         "A data disk's queue is long, which is seen at an observation point only.",
         {FaultKind::DELAY, "SAN_IO_READ", "BDM_OB_DISK_QUEUE_READ", 20}},
        {"equal-points",
         "Answers of other nodes are late, and acknowledgements have the same statistics.",
         {FaultKind::DELAY, "SAN_IO_READ", "SPACE_IOTUNNEL_UC_RSP_READ", 120, 0,
          "SPACE_IOTUNNEL_UC_ACK_READ"}},
        {"graph-circle",
         "As slow-disk, and an edge leads from the disk back to the host.",
         SLOW_DISK,
         {{"SAN_IO_READ", GraphFamily::FLOW, BACK_TO_THE_HOST}}},
        {"self-handover",
         "As slow-disk, and the graph hands the disk over to itself.",
         SLOW_DISK,
         {{"SAN_IO_READ", GraphFamily::FLOW, BACK_TO_THE_GRAPH}}},
        {"error-burst",
         "A data disk has unreadable sectors, and host reads fail.",
         {FaultKind::ERROR, "ERRCODE_SAN_PROTO", "BDM_DISK_MEDIUM_ERROR", 0.05, 0}},
        {"retry-storm",
         "Requests are retried everywhere now and then, and no point stands out.",
         {},
         {},
         {},
         {},
         false,
         30},
        {"healed",
         "As slow-disk, and the agent has healed the disk and the pool meanwhile.",
         SLOW_DISK,
         {},
         {{-ONE_WEEK, "BDM", "IOHANG", "DISK_SLOW", 1},
          {45, "BDM", "IOHANG", "DISK_SLOW", 1},
          {60, "BDM", "IOHANG", "DISK_SLOW", 2},
          {75, "CACHE", "MEMLEAK", "PAGE_LOST", 1},
          {90, "POOL", "IOERR", "DISK_FAULT", 1},
          {ONE_WEEK, "POOL", "IOERR", "DISK_FAULT", 1}}},
        {"gaps",
         "As slow-disk, but an hour, some intervals and single rows of the statistics are missing.",
         SLOW_DISK,
         {},
         {},
         {},
         true,
         1,
         4},
        {"constant",
         "Nothing is wrong, and the statistics of some points never change.",
         {},
         {},
         {},
         {"TGT_LUMO_HOST_CMD", "SPACE_SPLIT_IO_READ_TOTAL", "SPACE_SPLIT_IO_LOCAL_WRITE",
          "POOL_DOP_READ_TIME_IN_POOL", "BDM_OB_DISK_QUEUE_READ", "NAS_NFSV3_PROC_ALL"}},
    };
    return scenarios;
}

const Scenario* FindScenario(std::string_view name) {
    const auto& all = Scenarios();
    const auto place =
        std::find_if(all.begin(), all.end(), [&](const Scenario& one) { return one.name == name; });
    return place == all.end() ? nullptr : &*place;
}

}  // namespace lumosim

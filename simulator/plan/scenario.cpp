#include "simulator/plan/scenario.h"

#include <algorithm>
#include <utility>

namespace lumosim {
namespace {

constexpr int64_t ONE_WEEK = 604800;  // no range is longer
// More of a usual graph: from the slow disk back to where a walk began.
constexpr GraphRow BACK_TO_THE_HOST[] = {{0, "BDM_DISK_READ"}, {1, "TGT_LUMO_HOST_READ"}};
constexpr GraphRow BACK_TO_THE_GRAPH[] = {{0, "BDM_DISK_READ", HandOver("SAN_IO_READ")}};
// A second way down to the disk.
constexpr GraphRow ALSO_READS_THE_DISK[] = {{0, "SPACE_SPLIT_IO_READ_INNER"}, {1, "BDM_DISK_READ"}};

constexpr FaultRecipe Delay(std::string_view graph, std::string_view point, double strength) {
    return {FaultKind::DELAY, graph, point, strength};
}
constexpr FaultRecipe Early(FaultRecipe fault) {
    fault.when = FaultTime::EARLY;
    fault.course = {0.1, 0.2};
    return fault;
}
constexpr FaultRecipe NotWalked(FaultRecipe fault) {
    fault.isWalked = false;
    return fault;
}
constexpr FaultRecipe WithTwin(FaultRecipe fault, std::string_view twin) {
    fault.twin = twin;
    return fault;
}

constexpr FaultRecipe With(FaultCourse course, FaultRecipe fault) {
    fault.course = course;
    return NotWalked(fault);
}

constexpr FaultRecipe SLOW_DISK = Delay("SAN_IO_READ", "BDM_DISK_READ", 20);
constexpr FaultRecipe LATE_ANSWERS = Delay("SAN_IO_READ", "SPACE_IOTUNNEL_UC_RSP_READ", 120);

// Delays whose cause a walk finds.
std::vector<Scenario> Delays() {
    return {
        {"healthy", "Nothing is wrong."},
        {"slow-disk", "A data disk answers slowly, and host reads with it.", {SLOW_DISK}},
        {"slow-network",
         "Acknowledgements between the nodes are late, and host writes with them.",
         {Delay("SAN_IO_WRITE", "SPACE_IOTUNNEL_UC_ACK_WRITE", 120)}},
        {"nas-slow",
         "The file system's log commits slowly, and NFSv3 with it.",
         {Delay("NAS_IO_NFSV3", "FS_NFSV3_LOG_COMMIT", 250)}},
        {"locked-volume",
         "A snapshot holds a volume's lock, and host commands wait.",
         {Delay("SAN_IO_CMD", "SPACE_BLOCK_LUN_ALL_LOCK", 60)}},
        {"slow-pool",
         "A disk of the pool answers slowly, in a graph below that of host reads.",
         {Delay("SAN_IO_READ", "BDM_POOL_DISK_READ", 20)}},
        {"long-queue",
         "A data disk's queue is long, which is seen at an observation point only.",
         {Delay("SAN_IO_READ", "BDM_OB_DISK_QUEUE_READ", 20)}},
        {"equal-points",
         "Answers of other nodes are late, and acknowledgements have the same statistics.",
         {WithTwin(LATE_ANSWERS, "SPACE_IOTUNNEL_UC_ACK_READ")}},
        {"graph-circle",
         "As slow-disk, and an edge leads from the disk back to the host.",
         {SLOW_DISK},
         {{"SAN_IO_READ", GraphFamily::FLOW, BACK_TO_THE_HOST}}},
        {"self-handover",
         "As slow-disk, and the graph hands the disk over to itself.",
         {SLOW_DISK},
         {{"SAN_IO_READ", GraphFamily::FLOW, BACK_TO_THE_GRAPH}}},
    };
}

// What only an explanation of the delay tells apart.
std::vector<Scenario> Explanations() {
    return {
        {"flat-parent",
         "As slow-disk, but the statistics of the point above the disk never change.",
         {NotWalked(SLOW_DISK)},
         {},
         {"SPACE_BLOCK_BDM_READ"}},
        {"shared-disk",
         "As slow-disk, and the disk serves two branches of host reads.",
         {NotWalked(SLOW_DISK)},
         {{"SAN_IO_READ", GraphFamily::FLOW, ALSO_READS_THE_DISK}}},
        {"two-faults",
         "As slow-disk, and at the same time answers of other nodes are late, but less.",
         {NotWalked(SLOW_DISK), LATE_ANSWERS}},
        {"old-spike",
         "A data disk was slow for a moment, less than answers of other nodes many hours before.",
         {NotWalked(Delay("SAN_IO_READ", "BDM_DISK_READ", 8)),
          Early(Delay("SAN_IO_READ", "SPACE_IOTUNNEL_UC_RSP_READ", 300))},
         {},
         {},
         {},
         24},
        {"load-surge",
         "Nothing is wrong, but hosts read several times as much for a moment.",
         {NotWalked({FaultKind::LOAD, "SAN_IO_READ", "TGT_LUMO_HOST_READ", 4})}},
    };
}

// Delays that are more than a moment, and what else makes them hard to see.
std::vector<Scenario> Courses() {
    constexpr int64_t MINUTE = 60;
    constexpr FaultRecipe DISK = Delay("SAN_IO_READ", "BDM_DISK_READ", 8);
    FaultRecipe outlier = Early(Delay("SAN_IO_READ", "TGT_LUMO_HOST_READ", 8));
    outlier.course.seconds = 1;  // one sample
    Scenario daily{"daily-curve",
                   "Delays rise and fall with the day, and on the second one a data disk is slow.",
                   {With({0.6, 0.3, FaultShape::LEVEL, 0.02}, DISK)}};
    daily.minimumHours = 48;
    daily.variation.swing = 0.3 / LOAD_SWING;
    return {
        {"long-fault",
         "A data disk answers slowly for a third of the range.",
         {With({0.4, 0.15, FaultShape::LEVEL, 0.33}, DISK)}},
        {"ongoing",
         "A data disk has become slow, and still is at the end.",
         {With({0.7, 0.15, FaultShape::LEVEL, 1}, DISK)}},
        {"ramp",
         "A data disk becomes slower and slower, stays so for a while, and is well again.",
         {With({0.4, 0.15, FaultShape::RAMP, 0.33}, DISK)}},
        {"flapping",
         "A data disk is slow for two minutes, well for two, and so on for a while.",
         {With({0.5, 0.2, FaultShape::LEVEL, 0.2, 0, 2 * MINUTE, 4 * MINUTE}, DISK)}},
        {"repeated",
         "A data disk is slow for three minutes every half hour.",
         {With({0.2, 0.15, FaultShape::LEVEL, 0.6, 0, 3 * MINUTE, 30 * MINUTE}, DISK)}},
        {"begun-before",
         "A data disk was slow already before the statistics begin, and recovers.",
         {With({-0.2, 0.1, FaultShape::LEVEL, 0.4}, DISK)}},
        {"outlier",
         "A single sample of host reads stands out, and later a data disk is slow, but less.",
         {With({0.55, 0.3, FaultShape::LEVEL, 0.05}, DISK), outlier}},
        std::move(daily),
    };
}

std::vector<Scenario> Others() {
    return {
        {"error-burst",
         "A data disk has unreadable sectors, and host reads fail.",
         {{FaultKind::ERROR, "ERRCODE_SAN_PROTO", "BDM_DISK_MEDIUM_ERROR", 0.05}}},
        {"retry-storm",
         "Requests are retried everywhere now and then, and no point stands out.",
         {},
         {},
         {},
         {},
         1,
         false,
         30},
        {"healed",
         "As slow-disk, and the agent has healed the disk and the pool meanwhile.",
         {SLOW_DISK},
         {},
         {},
         {{-ONE_WEEK, "BDM", "IOHANG", "DISK_SLOW", 1},
          {45, "BDM", "IOHANG", "DISK_SLOW", 1},
          {60, "BDM", "IOHANG", "DISK_SLOW", 2},
          {75, "CACHE", "MEMLEAK", "PAGE_LOST", 1},
          {90, "POOL", "IOERR", "DISK_FAULT", 1},
          {ONE_WEEK, "POOL", "IOERR", "DISK_FAULT", 1}}},
        {"gaps",
         "As slow-disk, but an hour, some intervals and single rows of the statistics are missing.",
         {SLOW_DISK},
         {},
         {},
         {},
         4,
         true},
        {"constant",
         "Nothing is wrong, and the statistics of some points never change.",
         {},
         {},
         {"TGT_LUMO_HOST_CMD", "SPACE_SPLIT_IO_READ_TOTAL", "SPACE_SPLIT_IO_LOCAL_WRITE",
          "POOL_DOP_READ_TIME_IN_POOL", "BDM_OB_DISK_QUEUE_READ", "NAS_NFSV3_PROC_ALL"}},
    };
}

std::vector<Scenario> AllScenarios() {
    std::vector<Scenario> all;
    for (const auto& group : {Delays, Explanations, Courses, Others}) {
        const std::vector<Scenario> scenarios = group();
        all.insert(all.end(), scenarios.begin(), scenarios.end());
    }
    return all;
}

}  // namespace

const std::vector<Scenario>& Scenarios() {
    static const std::vector<Scenario> scenarios = AllScenarios();
    return scenarios;
}

const Scenario* FindScenario(std::string_view name) {
    const auto& all = Scenarios();
    const auto place =
        std::find_if(all.begin(), all.end(), [&](const Scenario& one) { return one.name == name; });
    return place == all.end() ? nullptr : &*place;
}

}  // namespace lumosim

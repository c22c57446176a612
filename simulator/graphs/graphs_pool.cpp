#include "simulator/graphs/graph_table.h"

namespace lumosim {
namespace {

constexpr GraphRow POOL_READ[] = {
    {0, "POOL_DOP_READ_TIME_IN_POOL"},
    {1, "POOL_GET_ON_ENTRANCE", PLAIN, "Wait at the pool's entrance",
     "Check the pool's queue and quality-of-service limits"},
    {1, "POOL_DOP_GET_DOP_DDP", PLAIN, "Look-up of deduplicated data",
     "Check the fingerprint table's memory"},
    {1, "POOL_KVS_READ_ZONE", PLAIN, "Reads of a zone of the key-value store", ""},
    {2, "ZONEIO_READ_GRAIN", PLAIN, "Reads of grains", ""},
    {3, "BDM_POOL_DISK_READ", PLAIN, "Reads of the pool's disks",
     "Check the disk's health data and latency; replace a disk that stays slow"},
    {3, "BDM_OB_POOL_QUEUE_READ", PLAIN, "Queue depth of the pool's disks during reads", ""},
    {2, "DRGRADE_READ_REBUILD", PLAIN, "Reads that rebuild lost data from redundancy",
     "Look for a failed disk and for the progress of its reconstruction"},
    {1, "MDS_READ_INDEX", PLAIN, "Reads of the pool's index", "Check the metadata disks"},
};

constexpr GraphRow POOL_WRITE[] = {
    {0, "POOL_DOP_WRITE_TIME_IN_POOL"},
    {1, "POOL_PUT_ON_ENTRANCE", PLAIN, "Wait at the pool's entrance",
     "Check the pool's queue and quality-of-service limits"},
    {1, "QOS_ALL_KEEP_LOCAL_QUEUE_LOW", PLAIN, "Wait of requests of low priority",
     "Check the limits of quality of service"},
    {1, "POOL_DOP_PUT_DOP_DDP", PLAIN, "Deduplication of new data", "Check the fingerprint table's memory"},
    {1, "POOL_DOP_KVS_WRITE", PLAIN, "Writes to the key-value store", ""},
    {2, "POOL_KVS_PUT_DATA_DDPOFF", PLAIN, "Writes of data without deduplication", ""},
    {2, "POOL_KVS_WRITE_ZONE", PLAIN, "Writes to a zone", ""},
    {3, "ZONETASK_ALLOC_CKG", PLAIN, "Allocation of a chunk group",
     "Check free capacity and space reclamation"},
    {3, "ZONEIO_WRITE_GRAIN", PLAIN, "Writes of grains", ""},
    {3, "BDM_POOL_DISK_WRITE", PLAIN, "Writes to the pool's disks",
     "Check the disk's health data and latency; replace a disk that stays slow"},
    {3, "BDM_OB_POOL_QUEUE_WRITE", PLAIN, "Queue depth of the pool's disks during writes", ""},
    {1, "MDS_LOG_WRAPPER_APPEND", PLAIN, "Appends to the metadata log", "Check the log device"},
};

constexpr GraphRow MDS_LOOKUP[] = {
    {0, "MDS_LUN_ATTR_QUERY"},
    {1, "MDS_CACHE_LOOKUP", PLAIN, "Look-up in the metadata cache", "Check the metadata cache's hit ratio"},
    {1, "MDS_RADIX_WALK", PLAIN, "Walk through the index tree", ""},
    {2, "BDM_META_DISK_READ", PLAIN, "Reads of the metadata disks", "Check the metadata disks' health data"},
    {2, "MDS_OB_RADIX_DEPTH", PLAIN, "Depth of the index tree", ""},
    {1, "MDS_OWNER_QUERY", PLAIN, "Question to the node that owns the metadata",
     "Check the internal network"},
};

}  // namespace

std::vector<GraphTable> PoolFlowGraphs() {
    return {{"POOL_READ", GraphFamily::FLOW, POOL_READ},
            {"POOL_WRITE", GraphFamily::FLOW, POOL_WRITE},
            {"MDS_LOOKUP", GraphFamily::FLOW, MDS_LOOKUP}};
}

}  // namespace lumosim

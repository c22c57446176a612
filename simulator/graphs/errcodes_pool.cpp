#include "simulator/graphs/graph_table.h"

namespace lumosim {
namespace {

constexpr GraphRow POOL_ERRCODE_READ[] = {
    {0, "POOL_DOP_READ_TIME_IN_POOL", WHOLE},
    {1, "POOL_DDP_CHECKDEC_OVERFLOW", ATOMIC_ERROR, "Decompressed data that does not fit",
     "Report it with the pool's logs; the data is read from redundancy"},
    {1, "POOL_KVS_CHECK_SUM", ATOMIC_ERROR, "Checksum errors of the key-value store",
     "Look for disks with silent errors; start a verification of the pool"},
    {1, "ZONEIO_READ_GRAIN", FOLLOW},
    {2, "ZONEIO_READ_GRAIN_BST_DATA", ATOMIC_ERROR, "Bad stripes found by data reads",
     "Start a verification of the pool"},
    {2, "ZONEIO_READ_GRAIN_BST_META", ATOMIC_ERROR, "Bad stripes found by metadata reads",
     "Start a verification of the pool"},
    {2, "ZONEIO_SPLIT_BST", ATOMIC_ERROR, "Bad stripes found while a request was split", ""},
    {2, "ZONEIO_GATHER_CHECK_CK_TAIL", ATOMIC_ERROR, "Chunk tails that do not match", ""},
    {1, "DRGRADE_READ_REBUILD", FOLLOW},
    {2, "DRGRADE_READ_BST_DATA", ATOMIC_ERROR, "Bad stripes of data in degraded reads",
     "Replace the failed disks before another one fails"},
    {2, "DRGRADE_READ_BST_META", ATOMIC_ERROR, "Bad stripes of metadata in degraded reads",
     "Replace the failed disks before another one fails"},
    {2, "DEGRADE_FAIL_BST", ATOMIC_ERROR, "Degraded reads that failed",
     "More disks failed than the redundancy covers: restore from a copy"},
    {1, "MDS_READ_INDEX", WHOLE},
    {2, "MDS_LOG_WRAPPER_SELF_VERIFY", ATOMIC_ERROR, "Metadata log that fails its own check", ""},
    {2, "MDS_RADIX_READ_DISK_VERIFY", ATOMIC_ERROR, "Index pages that fail their check",
     "Check the metadata disks"},
    {2, "MDS_DEGRADE_READ_CLEAN", ATOMIC_RETRY, "Metadata read from redundancy", ""},
    {2, "MDS_SSD_DEGRADE_READ", ATOMIC_RETRY, "Metadata read around a failed flash device",
     "Replace the failed flash device"},
    {1, "BDM_IO_ERRCODE_COMMON", WholeHandOver("ERRCODE_BDM"), "Error codes of the block device manager",
     "Follow the device manager's error graph"},
};

constexpr GraphRow POOL_ERRCODE_WRITE[] = {
    {0, "POOL_DOP_WRITE_TIME_IN_POOL", WHOLE},
    {1, "POOL_PUT_ON_ENTRANCE", ATOMIC_RETRY},
    {1, "QOS_ALL_KEEP_LOCAL_QUEUE_LOW", ATOMIC_RETRY},
    {1, "POOL_DOP_PUT_DOP_DDP", ATOMIC_ERROR},
    {1, "POOL_DOP_KVS_WRITE", FOLLOW},
    {2, "POOL_KVS_PUT_DATA_DDPOFF", ATOMIC_ERROR},
    {2, "POOL_KVS_WRITE_ZONE", WHOLE},
    {3, "ZONE_LUMO_NO_MEM_HANDLE_FETCH_NEW_CKG_FAILED_DATA", ATOMIC_ERROR, "No chunk group for data",
     "Extend the pool or free space"},
    {3, "ZONE_LUMO_NO_MEM_HANDLE_FETCH_NEW_CKG_FAILED_META", ATOMIC_ERROR, "No chunk group for metadata",
     "Extend the pool or free space"},
    {3, "ZONE_LUMO_NO_MEM_HANDLE_FETCH_NEW_CKG_FAILED_ROOT", ATOMIC_ERROR, "No chunk group for roots", ""},
    {3, "ZONE_LUMO_NO_MEM_HANDLE_FETCH_NEW_CKG_FAILED_EROOT", ATOMIC_ERROR,
     "No chunk group for extended roots", ""},
    {3, "ZONE_LUMO_NO_MEM_HANDLE_FETCH_NEW_CKG_FAILED_DATA_REC", ATOMIC_RETRY,
     "No chunk group for moved data", ""},
    {3, "ZONE_LUMO_NO_MEM_HANDLE_FETCH_NEW_CKG_FAILED_META_REC", ATOMIC_RETRY,
     "No chunk group for moved metadata", ""},
    {3, "ZONE_LUMO_NO_MEM_HANDLE_FETCH_NEW_CKG_FAILED_ROOT_REC", ATOMIC_RETRY,
     "No chunk group for moved roots", ""},
    {3, "ZONE_LUMO_NO_MEM_HANDLE_FETCH_NEW_CKG_FAILED_EROOT_REC", ATOMIC_RETRY,
     "No chunk group for moved extended roots", ""},
    {3, "ZONE_LUMO_NO_MEM_HANDLE_FETCH_NEW_CKG_FAILED_HDD_META", ATOMIC_ERROR,
     "No chunk group for metadata on rotating disks", "Extend the tier of rotating disks"},
    {3, "ZONE_LUMO_NO_MEM_HANDLE_FETCH_NEW_CKG_FAILED_HDD_DATA_REC", ATOMIC_RETRY,
     "No chunk group for moved data on rotating disks", ""},
    {3, "ZONE_LUMO_NO_MEM_HANDLE_FETCH_NEW_CKG_FAILED_HDD_META_REC", ATOMIC_RETRY,
     "No chunk group for moved metadata on rotating disks", ""},
    {1, "BDM_POOL_DISK_WRITE", ATOMIC_ERROR},
};

constexpr GraphRow MKV_IO_READ[] = {
    {0, "POOL_DOP_READ_TIME_IN_POOL", WHOLE},
    {1, "POOL_KVS_READ_ZONE", FOLLOW},
    {2, "ZONETASK_LOG_LOST_LOG_REC", ATOMIC_ERROR, "Log records that are lost",
     "Report it with the pool's logs"},
    {2, "ZONETASK_ANALYZE_CKG_IS_EXIST", ATOMIC_ERROR, "Chunk groups that do not exist", ""},
    {2, "ZONETASK_ANALYZE_CKG_IS_EXIST_HDD", ATOMIC_ERROR, "Chunk groups that do not exist on rotating disks",
     ""},
    {2, "ZONETASK_ANALYZE_CHECK_CKID_DATA", ATOMIC_ERROR, "Wrong chunk of data during analysis", ""},
    {2, "ZONETASK_ANALYZE_CHECK_CKID_META", ATOMIC_ERROR, "Wrong chunk of metadata during analysis", ""},
    {2, "ZONETASK_ANALYZE_CHECK_CKID_ROOT", ATOMIC_ERROR, "Wrong chunk of roots during analysis", ""},
    {2, "ZONETASK_ANALYZE_CHECK_CKID_EROOT", ATOMIC_ERROR, "Wrong chunk of extended roots during analysis",
     ""},
};

constexpr GraphRow MKV_IO_WRITE[] = {
    {0, "POOL_DOP_WRITE_TIME_IN_POOL", WHOLE},
    {1, "ZONETASK_ALLOC_CKG", FOLLOW},
    {2, "ZONETASK_DEFRAG_CHECK_BITMAP", ATOMIC_ERROR, "Bitmaps that do not match during reclamation", ""},
    {2, "ZONETASK_RELEASE_CHECK_CKID_DATA", ATOMIC_ERROR, "Wrong chunk of data during release", ""},
    {2, "ZONETASK_RELEASE_CHECK_CKID_META", ATOMIC_ERROR, "Wrong chunk of metadata during release", ""},
    {2, "ZONETASK_RELEASE_CHECK_CKID_ROOT", ATOMIC_ERROR, "Wrong chunk of roots during release", ""},
    {2, "ZONETASK_RELEASE_CHECK_CKID_EROOT", ATOMIC_ERROR, "Wrong chunk of extended roots during release",
     ""},
    {2, "ZONETASK_RELEASE_CHECK_CKID_LOG", ATOMIC_ERROR, "Wrong chunk of logs during release", ""},
    {2, "ZONETASK_CHECK_GRAIN_NUM_DATA", ATOMIC_ERROR, "Wrong number of data grains", ""},
    {2, "ZONETASK_CHECK_GRAIN_NUM_META", ATOMIC_ERROR, "Wrong number of metadata grains", ""},
    {2, "ZONETASK_CHECK_GRAIN_NUM_ROOT", ATOMIC_ERROR, "Wrong number of root grains", ""},
    {1, "BMTASK_CHECK_ALLOC_BLOCK_INUSE", ATOMIC_ERROR, "New blocks that are in use already",
     "Report it with the pool's logs"},
    {1, "BMTASK_CHECK_LBS_BLOCK_INUSE", ATOMIC_ERROR, "Blocks of the log that are in use", ""},
    {1, "BMTASK_CHECK_FREE_BLOCK_INUSE", ATOMIC_ERROR, "Free blocks that are in use", ""},
    {1, "BMTASK_CHECK_FREE_BLOCK_REFREE", ATOMIC_ERROR, "Blocks that are freed twice", ""},
    {1, "BMTASK_CHECK_SLAVE_FREE_BLOCK_INUSE", ATOMIC_ERROR, "Free blocks that the partner node uses", ""},
};

constexpr GraphRow ERRCODE_POOL[] = {
    {0, "POOL_FS_IO_COMMON", WHOLE},
    {1, "POOL_KVS_READ_ZONE", FOLLOW},
    {1, "POOL_DOP_KVS_WRITE", FOLLOW},
    {1, "POOL_KVS_CHECK_SUM", ATOMIC_ERROR},
    {1, "POOL_OFFLINE_REJECT", ATOMIC_ERROR, "Requests to a pool that is offline",
     "Check the pool's state and its disks"},
};

constexpr GraphRow ERRCODE_BDM[] = {
    {0, "BDM_IO_ERRCODE_COMMON", WHOLE},
    {1, "BDM_POOL_DISK_READ", ATOMIC_ERROR},
    {1, "BDM_DISK_ABORTED", ATOMIC_RETRY, "Commands that a disk aborted",
     "Check the disk's firmware and load"},
    {1, "BDM_DISK_PATH_LOST", ATOMIC_ERROR, "Disks that lost a path",
     "Check cables and enclosure controllers"},
    {1, "BDM_DISK_WRITE_PROTECTED", ATOMIC_DENIED, "Disks that refuse writes", "Replace the disk"},
};

}  // namespace

std::vector<GraphTable> PoolErrorGraphs() {
    return {{"POOL_ERRCODE_READ", GraphFamily::ERRCODE, POOL_ERRCODE_READ},
            {"POOL_ERRCODE_WRITE", GraphFamily::ERRCODE, POOL_ERRCODE_WRITE},
            {"MKV_IO_READ", GraphFamily::ERRCODE, MKV_IO_READ},
            {"MKV_IO_WRITE", GraphFamily::ERRCODE, MKV_IO_WRITE},
            {"ERRCODE_POOL", GraphFamily::ERRCODE, ERRCODE_POOL},
            {"ERRCODE_BDM", GraphFamily::ERRCODE, ERRCODE_BDM}};
}

}  // namespace lumosim

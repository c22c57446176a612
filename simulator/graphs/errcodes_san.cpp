#include "simulator/graphs/graph_table.h"

namespace lumosim {
namespace {

constexpr GraphRow ERRCODE_SAN_PROTO[] = {
    {0, "TGT_IO_ERRCODE_COMMON", WHOLE, "Error codes that the target returns to hosts",
     "Match the times with the hosts' logs"},
    {1, "TGT_ERRCODE_READ", CountedBy("TGT_LUMO_HOST_READ", "-1"), "Failed host reads", ""},
    {2, "SPACE_SPLIT_IO_READ_TOTAL", FOLLOW},
    {3, "SPACE_SPLIT_IO_READ_INNER", WHOLE},
    {4, "SPACE_IOTUNNEL_UC_RSP_READ", ATOMIC_RETRY},
    {4, "SPACE_IOTUNNEL_UC_ACK_READ", ATOMIC_RETRY},
    {3, "SPACE_SPLIT_IO_META_READ", WHOLE},
    {3, "SPACE_SPLIT_IO_LOCAL_READ", WHOLE},
    {4, "SPACE_SPLIT_IO_LOCAL_PROC", ATOMIC_RETRY, "Local processing of a split request", ""},
    {4, "SPACE_BLOCK_VOL_LOC_READ", WHOLE, "Reads in the volume's block layer", ""},
    {5, "SPACE_BLOCK_VOL_FROM_KVS_READ", ATOMIC_ERROR, "Reads from the key-value store",
     "Look for checksum errors of the pool in the same minutes"},
    {5, "SPACE_BLOCK_DIF_CHECK", ATOMIC_ERROR, "Check of the data's integrity field",
     "Check the host adapter's integrity settings"},
    {5, "SPACE_BLOCK_BDM_READ", FOLLOW},
    {6, "BDM_DISK_MEDIUM_ERROR", ATOMIC_ERROR, "Unreadable sectors of a data disk",
     "Replace the disk that reports medium errors; check that reconstruction has started"},
    {6, "BDM_DISK_READ_TIMEOUT", ATOMIC_RETRY, "Reads of a data disk that timed out",
     "Check the disk, its slot and its cable"},
    {5, "POOL_DOP_READ_TIME_IN_POOL", WholeHandOver("POOL_ERRCODE_READ")},
    {1, "TGT_ERRCODE_WRITE", CountedBy("TGT_LUMO_HOST_WRITE", "-1"), "Failed host writes", ""},
    {2, "SPACE_SPLIT_IO_WRITE_TOTAL", FOLLOW},
    {3, "SPACE_SPLIT_IO_WRITE_INNER", WHOLE},
    {4, "SPACE_SPLIT_WRITE_INNER_SPLIT", ATOMIC_RETRY},
    {4, "SPACE_IOTUNNEL_UC_RSP_WRITE", ATOMIC_RETRY},
    {4, "SPACE_IOTUNNEL_UC_ACK_WRITE", ATOMIC_RETRY},
    {3, "SPACE_SPLIT_IO_META_WRITE", WHOLE},
    {3, "SPACE_SPLIT_IO_LOCAL_WRITE", WHOLE},
    {4, "SPACE_BLOCK_VOL_LOC_WRITE", WHOLE, "Writes in the volume's block layer", ""},
    {5, "SPACE_VOL_WRITE_GET_RB_LOCK", ATOMIC_RETRY},
    {5, "SPACE_VOL_WRITE_ALIGNE_READ", ATOMIC_ERROR, "Reads that align a partial write",
     "Check the alignment of the host's partitions"},
    {5, "SPACE_VOL_WRITE_MERGE_DATA", ATOMIC_ERROR, "Merging of new with old data", ""},
    {5, "SPACE_VOL_WRITE_2_DISK", ATOMIC_ERROR, "Writes that bypass the cache",
     "Check why the write cache is off: battery, partner node, configuration"},
    {5, "SPACE_BLOCK_VOL_TO_KVS_WRITE", ATOMIC_ERROR, "Writes to the key-value store", ""},
    {5, "SPACE_BLOCK_BDM_WRITE", ATOMIC_ERROR, "Writes handed to the block device manager",
     "Check the disks' health data"},
    {5, "SPACE_BLOCK_LUN_GROUND_QOS", ATOMIC_RETRY, "Requests held back by the volume's limits",
     "Check the volume's limits of quality of service"},
    {5, "POOL_DOP_WRITE_TIME_IN_POOL", WholeHandOver("POOL_ERRCODE_WRITE")},
    {4, "WCACHE_LUMO_DSG_SEND_VOL", ATOMIC_RETRY},
    {4, "CACHE_PAGE_ALLOC_FAIL", ATOMIC_RETRY, "Cache pages that could not be had",
     "Check the cache's water level and the speed of the pool behind it"},
    {1, "TGT_ERRCODE_CMD", CountedBy("TGT_LUMO_HOST_CMD", "-1"), "Failed host commands", ""},
    {2, "SPACE_SPLIT_IO_RUN_UNMAP", FOLLOW},
    {3, "SPACE_BLOCK_VOL_TO_KVS_UNMAP", ATOMIC_ERROR},
    {3, "SPACE_BLOCK_LUN_ALL_LOCK", ATOMIC_RETRY},
    {2, "SPACE_VOL_WRITE_2_VAAI", WHOLE},
    {3, "SPACE_IOTUNNEL_SHARD_IO_TRANS", ATOMIC_RETRY},
    {3, "SPACE_BLOCK_VOL_LWT_RUN", ATOMIC_ERROR, "Light-weight transactions of a volume", ""},
    {3, "SPACE_BLOCK_REC_REQ_SEND_RSP", ATOMIC_RETRY, "Answers to requests received from other nodes", ""},
    {0, "MODULE_SPACE", PLAIN, "MODULE: the volume layer"},
    {1, "SPACE_SPLIT_IO_READ_TOTAL"},
    {1, "SPACE_SPLIT_IO_WRITE_TOTAL"},
    {0, "MODULE_POOL", PLAIN, "MODULE: the storage pool"},
    {1, "POOL_DOP_READ_TIME_IN_POOL"},
    {1, "POOL_DOP_WRITE_TIME_IN_POOL"},
};

constexpr GraphRow ERRCODE_SAN_TGT[] = {
    {0, "TGT_IO_ERRCODE_COMMON", WHOLE},
    {1, "TGT_CMD_PARSE", ATOMIC_ERROR},
    {1, "TGT_CMD_RESERVATION", ATOMIC_DENIED},
    {1, "TGT_SESSION_LOGOUT", ATOMIC_RETRY, "Sessions that ended with commands in flight",
     "Check the host links and the hosts' time-outs"},
    {1, "TGT_MAPPING_CHECK", ATOMIC_DENIED, "Commands to volumes that are not mapped to the host",
     "Check the mapping of volumes to hosts"},
};

constexpr GraphRow ERRCODE_BLOCK[] = {
    {0, "SPACE_BLOCK_VOL_LOC_READ", WHOLE},     {1, "SPACE_BLOCK_VOL_FROM_KVS_READ", ATOMIC_ERROR},
    {1, "SPACE_BLOCK_DIF_CHECK", ATOMIC_ERROR}, {1, "SPACE_BLOCK_BDM_READ", FOLLOW},
    {2, "BDM_DISK_MEDIUM_ERROR", ATOMIC_ERROR},
};

constexpr GraphRow ERRCODE_CACHE[] = {
    {0, "WCACHE_LUMO_DSG_SEND_VOL", WHOLE},
    {1, "WCACHE_MIRROR_SEND", ATOMIC_RETRY},
    {1, "CACHE_PAGE_ALLOC_FAIL", ATOMIC_RETRY},
    {1, "CACHE_FLUSH_FAIL", ATOMIC_ERROR, "Cache pages that could not be written back",
     "Check the pool's state; data stays in the cache until it can be written"},
};

}  // namespace

std::vector<GraphTable> SanErrorGraphs() {
    return {{"ERRCODE_SAN_PROTO", GraphFamily::ERRCODE, ERRCODE_SAN_PROTO},
            {"ERRCODE_SAN_TGT", GraphFamily::ERRCODE, ERRCODE_SAN_TGT},
            {"ERRCODE_BLOCK", GraphFamily::ERRCODE, ERRCODE_BLOCK},
            {"ERRCODE_CACHE", GraphFamily::ERRCODE, ERRCODE_CACHE}};
}

}  // namespace lumosim

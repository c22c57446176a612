#include "simulator/graphs/graph_table.h"

namespace lumosim {
namespace {

constexpr GraphRow FACTOR_SAN[] = {
    {0, "TGT_LUMO_HOST_READ"},  {1, "TGT_READ_DATA_TRANSFER"},  {1, "TGT_OB_HOST_LINK_READ"},
    {0, "TGT_LUMO_HOST_WRITE"}, {1, "TGT_WRITE_DATA_TRANSFER"}, {1, "TGT_OB_HOST_LINK_WRITE"},
    {0, "TGT_LUMO_HOST_CMD"},   {1, "TGT_CMD_PARSE"},           {1, "TGT_CMD_RESERVATION"},
};

constexpr GraphRow FACTOR_NAS[] = {
    {0, "NAS_TRANS_ALL"},        {1, "NAS_NFSV3_PROC_ALL"},     {2, "NAS_NFSV3_RPC_RECEIVE"},
    {2, "NAS_OB_NFSV3_CLIENTS"}, {1, "NAS_NFSV4_COMPOUND_ALL"}, {2, "NAS_NFSV4_SESSION"},
    {1, "SMB_SMB2_PROC_ALL"},    {2, "SMB_SESSION_SETUP"},      {2, "SMB_CREATE"},
};

constexpr GraphRow FACTOR_FS[] = {
    {0, "FS_READ_TOTAL"},         {1, "FS_INODE_GET"},        {1, "FS_READ_CACHE_LOOKUP"},
    {1, "FS_READ_EXTENT_MAP"},    {0, "FS_WRITE_TOTAL"},      {1, "FS_WRITE_QUOTA"},
    {1, "FS_OB_SNAPSHOT_COPIES"}, {0, "FS_NFSV3_LOG_COMMIT"}, {1, "FS_NFSV3_DIR_LOOKUP"},
};

constexpr GraphRow FACTOR_BLOCK[] = {
    {0, "SPACE_SPLIT_IO_READ_TOTAL"},   {1, "SPACE_SPLIT_IO_READ_INNER"},
    {1, "SPACE_SPLIT_IO_META_READ"},    {1, "SPACE_IOTUNNEL_UC_RSP_READ"},
    {1, "SPACE_IOTUNNEL_UC_ACK_READ"},  {0, "SPACE_SPLIT_IO_WRITE_TOTAL"},
    {1, "SPACE_SPLIT_IO_WRITE_INNER"},  {1, "SPACE_SPLIT_IO_META_WRITE"},
    {1, "SPACE_IOTUNNEL_UC_RSP_WRITE"}, {1, "SPACE_IOTUNNEL_UC_ACK_WRITE"},
    {1, "SPACE_VOL_WRITE_GET_RB_LOCK"},
};

constexpr GraphRow FACTOR_POOL[] = {
    {0, "POOL_DOP_READ_TIME_IN_POOL"},  {1, "POOL_GET_ON_ENTRANCE"}, {1, "POOL_KVS_READ_ZONE"},
    {2, "ZONEIO_READ_GRAIN"},           {2, "DRGRADE_READ_REBUILD"}, {1, "MDS_READ_INDEX"},
    {0, "POOL_DOP_WRITE_TIME_IN_POOL"}, {1, "POOL_PUT_ON_ENTRANCE"}, {1, "POOL_DOP_KVS_WRITE"},
    {2, "ZONETASK_ALLOC_CKG"},          {2, "ZONEIO_WRITE_GRAIN"},   {1, "MDS_LOG_WRAPPER_APPEND"},
};

constexpr GraphRow FACTOR_CACHE[] = {
    {0, "CACHE_READ_LOOKUP"},  {1, "CACHE_PAGE_ALLOC_FAIL"}, {0, "WCACHE_LUMO_DSG_SEND_VOL"},
    {1, "WCACHE_MIRROR_SEND"}, {0, "WCACHE_FS_WRITE"},       {1, "WCACHE_FS_MIRROR_SEND"},
};

constexpr GraphRow FACTOR_BDM[] = {
    {0, "SPACE_BLOCK_BDM_READ"}, {1, "BDM_DISK_READ"},      {1, "BDM_OB_DISK_QUEUE_READ"},
    {0, "ZONEIO_READ_GRAIN"},    {1, "BDM_POOL_DISK_READ"}, {1, "BDM_OB_POOL_QUEUE_READ"},
    {0, "FS_READ_FROM_POOL"},    {1, "BDM_FS_DISK_READ"},   {1, "BDM_OB_FS_DISK_QUEUE"},
    {0, "MDS_RADIX_WALK"},       {1, "BDM_META_DISK_READ"},
};

}  // namespace

std::vector<GraphTable> FactorGraphs() {
    return {{"FACTOR_SAN", GraphFamily::FACTOR, FACTOR_SAN},
            {"FACTOR_NAS", GraphFamily::FACTOR, FACTOR_NAS},
            {"FACTOR_FS", GraphFamily::FACTOR, FACTOR_FS},
            {"FACTOR_BLOCK", GraphFamily::FACTOR, FACTOR_BLOCK},
            {"FACTOR_POOL", GraphFamily::FACTOR, FACTOR_POOL},
            {"FACTOR_CACHE", GraphFamily::FACTOR, FACTOR_CACHE},
            {"FACTOR_BDM", GraphFamily::FACTOR, FACTOR_BDM}};
}

}  // namespace lumosim

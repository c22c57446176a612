#include "fault_common/fault_vocabulary.h"

#include <algorithm>

const FaultNameMultimap g_mapPointSubPoints = {
    {"TGT_LUMO_HOST_READ", "SAN_IO_READ"}, {"TGT_LUMO_HOST_WRITE", "SAN_IO_WRITE"},
    {"TGT_LUMO_HOST_CMD", "SAN_IO_CMD"},   {"NAS_TRANS_ALL", "NAS_IO_NFSV3"},
    {"NAS_TRANS_ALL", "NAS_IO_NFSV4"},     {"NAS_TRANS_ALL", "NAS_IO_SMB2"},
};

const FaultNameMap g_mapModuleFactor = {
    {"SAN_PROTOL", "FACTOR_SAN"}, {"NAS_PROTOL", "FACTOR_NAS"}, {"FS", "FACTOR_FS"},
    {"BLOCK", "FACTOR_BLOCK"},    {"POOL", "FACTOR_POOL"},      {"CACHE", "FACTOR_CACHE"},
    {"BDM", "FACTOR_BDM"},
};

const FaultNameMap g_mapPointErrCodeGraph = {
    {"NAS_QELMAR_IO_COMMON", "ERRCODE_NAS_PROTO"},
    {"SMB_AUTHTICATE_LOGON_FAILURE", "ERRCODE_SMB"},
    {"TGT_IO_ERRCODE_COMMON", "ERRCODE_SAN_PROTO"},
};

const FaultNameMultimap g_mapPointErrCodeRelated = {
    {"NAS_QELMAR_IO_COMMON", "ERRCODE_NAS_PROTO"},
    {"SMB_AUTHTICATE_LOGON_FAILURE", "ERRCODE_SMB"},
    {"TGT_IO_ERRCODE_COMMON", "ERRCODE_SAN_PROTO"},
    {"POOL_DOP_READ_TIME_IN_POOL", "POOL_ERRCODE_READ"},
    {"POOL_DOP_WRITE_TIME_IN_POOL", "POOL_ERRCODE_WRITE"},
    {"POOL_DOP_READ_TIME_IN_POOL", "MKV_IO_READ"},
    {"POOL_DOP_WRITE_TIME_IN_POOL", "MKV_IO_WRITE"},
};

const FaultNameMap g_mapModuleErrCodeGraph = {
    {"SAN_PROTOL", "ERRCODE_SAN_TGT"},
    {"NAS_PROTOL", "ERRCODE_NAS_PROTO"},
    {"FS", "ERRCODE_FS"},
    {"BLOCK", "ERRCODE_BLOCK"},
    {"POOL", "ERRCODE_POOL"},
    {"CACHE", "ERRCODE_CACHE"},
    {"BDM", "ERRCODE_BDM"},
};

const std::map<std::string, FaultNameMultimap> g_mapErrCodeGraphModulePrefix = {
    {"ERRCODE_NAS_PROTO",
     {
         {"NASPROTOL", "NAS_"},
         {"NASPROTOL", "SMB_"},
         {"FS", "FS_"},
         {"CACHE", "WCACHE_"},
         {"POOL", "ZONETASK_"},
         {"POOL", "ZONEIO_"},
         {"POOL", "MDS_"},
         {"POOL", "BDM_"},
         {"POOL", "DRGRADE_"},
         {"POOL", "POOL_"},
     }},
    {"ERRCODE_SMB",
     {
         {"NASPROTOL", "SMB_"},
     }},
    {"ERRCODE_SAN_PROTO",
     {
         {"SANPROTOL", "TGT_"},
         {"SPACE", "SPACE_"},
         {"CACHE", "WCACHE_"},
         {"CACHE", "CACHE_"},
         {"POOL", "POOL_"},
         {"POOL", "ZONETASK_"},
         {"POOL", "ZONEIO_"},
         {"POOL", "MDS_"},
         {"POOL", "BDM_"},
         {"POOL", "DRGRADE_"},
     }},
};

bool FaultIsOfModule(const std::string& point, const FaultNameMultimap& modules, const std::string& module) {
    const auto prefixes = modules.equal_range(module);
    return std::any_of(prefixes.first, prefixes.second, [&](const auto& entry) {
        return point.compare(0, entry.second.size(), entry.second) == 0;
    });
}

const std::map<std::string, int32_t> g_mapTypeIdx = {{"IOERROR", -1}, {"IORETRY", -2}, {"IOACCESSDENY", -3}};

const std::vector<std::string> g_vecPointNameList = {
    "MDS_LOG_WRAPPER_SELF_VERIFY",
    "MDS_RADIX_READ_DISK_VERIFY",
    "MDS_DEGRADE_READ_CLEAN",
    "MDS_SSD_DEGRADE_READ",
    "POOL_DDP_CHECKDEC_OVERFLOW",
    "POOL_KVS_CHECK_SUM",
    "ZONETASK_LOG_LOST_LOG_REC",
    "DRGRADE_READ_BST_DATA",
    "DRGRADE_READ_BST_META",
    "ZONEIO_SPLIT_BST",
    "DEGRADE_FAIL_BST",
    "ZONEIO_GATHER_CHECK_CK_TAIL",
    "ZONETASK_DEFRAG_CHECK_BITMAP",
    "ZONEIO_READ_GRAIN_BST_DATA",
    "ZONEIO_READ_GRAIN_BST_META",
    "ZONETASK_RELEASE_CHECK_CKID_DATA",
    "ZONETASK_RELEASE_CHECK_CKID_META",
    "ZONETASK_RELEASE_CHECK_CKID_ROOT",
    "ZONETASK_RELEASE_CHECK_CKID_EROOT",
    "ZONETASK_RELEASE_CHECK_CKID_LOG",
    "ZONETASK_CHECK_GRAIN_NUM_DATA",
    "ZONETASK_CHECK_GRAIN_NUM_META",
    "ZONETASK_CHECK_GRAIN_NUM_ROOT",
    "ZONETASK_ANALYZE_CHECK_CKID_DATA",
    "ZONETASK_ANALYZE_CHECK_CKID_META",
    "ZONETASK_ANALYZE_CHECK_CKID_ROOT",
    "ZONETASK_ANALYZE_CHECK_CKID_EROOT",
    "ZONETASK_ANALYZE_CKG_IS_EXIST",
    "ZONETASK_ANALYZE_CKG_IS_EXIST_HDD",
    "BMTASK_CHECK_LBS_BLOCK_INUSE",
    "BMTASK_CHECK_ALLOC_BLOCK_INUSE",
    "BMTASK_CHECK_FREE_BLOCK_INUSE",
    "BMTASK_CHECK_FREE_BLOCK_REFREE",
    "BMTASK_CHECK_SLAVE_FREE_BLOCK_INUSE",
    "SPACE_SPLIT_IO_WRITE_TOTAL",
    "SPACE_SPLIT_IO_READ_TOTAL",
    "SPACE_IOTUNNEL_UC_RSP_READ",
    "SPACE_IOTUNNEL_UC_RSP_WRITE",
    "SPACE_IOTUNNEL_UC_ACK_READ",
    "SPACE_IOTUNNEL_UC_ACK_WRITE",
    "SPACE_IOTUNNEL_SHARD_IO_TRANS",
    "SPACE_SPLIT_IO_WRITE_INNER",
    "SPACE_SPLIT_IO_READ_INNER",
    "SPACE_SPLIT_IO_LOCAL_PROC",
    "SPACE_SPLIT_IO_LOCAL_READ",
    "SPACE_SPLIT_IO_LOCAL_WRITE",
    "SPACE_SPLIT_WRITE_INNER_SPLIT",
    "SPACE_SPLIT_IO_RUN_UNMAP",
    "SPACE_SPLIT_IO_META_READ",
    "SPACE_SPLIT_IO_META_WRITE",
    "SPACE_BLOCK_VOL_TO_KVS_WRITE",
    "SPACE_BLOCK_VOL_TO_KVS_UNMAP",
    "SPACE_BLOCK_VOL_FROM_KVS_READ",
    "SPACE_BLOCK_VOL_LWT_RUN",
    "SPACE_VOL_WRITE_GET_RB_LOCK",
    "SPACE_VOL_WRITE_2_VAAI",
    "SPACE_VOL_WRITE_ALIGNE_READ",
    "SPACE_VOL_WRITE_MERGE_DATA",
    "SPACE_VOL_WRITE_2_DISK",
    "SPACE_BLOCK_LUN_ALL_LOCK",
    "SPACE_BLOCK_VOL_LOC_WRITE",
    "SPACE_BLOCK_VOL_LOC_READ",
    "SPACE_BLOCK_BDM_WRITE",
    "SPACE_BLOCK_BDM_READ",
    "SPACE_BLOCK_LUN_GROUND_QOS",
    "SPACE_BLOCK_REC_REQ_SEND_RSP",
    "SPACE_BLOCK_DIF_CHECK",
    "WCACHE_LUMO_DSG_SEND_VOL",
    "QOS_ALL_KEEP_LOCAL_QUEUE_LOW",
    "POOL_DOP_WRITE_TIME_IN_POOL",
    "POOL_PUT_ON_ENTRANCE",
    "POOL_DOP_PUT_DOP_DDP",
    "POOL_DOP_KVS_WRITE",
    "POOL_KVS_PUT_DATA_DDPOFF",
    "POOL_KVS_WRITE_ZONE",
    "ZONE_LUMO_NO_MEM_HANDLE_FETCH_NEW_CKG_FAILED_HDD_META",
    "ZONE_LUMO_NO_MEM_HANDLE_FETCH_NEW_CKG_FAILED_HDD_DATA_REC",
    "ZONE_LUMO_NO_MEM_HANDLE_FETCH_NEW_CKG_FAILED_HDD_META_REC",
    "ZONE_LUMO_NO_MEM_HANDLE_FETCH_NEW_CKG_FAILED_DATA",
    "ZONE_LUMO_NO_MEM_HANDLE_FETCH_NEW_CKG_FAILED_META",
    "ZONE_LUMO_NO_MEM_HANDLE_FETCH_NEW_CKG_FAILED_ROOT",
    "ZONE_LUMO_NO_MEM_HANDLE_FETCH_NEW_CKG_FAILED_EROOT",
    "ZONE_LUMO_NO_MEM_HANDLE_FETCH_NEW_CKG_FAILED_DATA_REC",
    "ZONE_LUMO_NO_MEM_HANDLE_FETCH_NEW_CKG_FAILED_META_REC",
    "ZONE_LUMO_NO_MEM_HANDLE_FETCH_NEW_CKG_FAILED_ROOT_REC",
    "ZONE_LUMO_NO_MEM_HANDLE_FETCH_NEW_CKG_FAILED_EROOT_REC",
};
const std::vector<std::string>& g_vecDiffErrCodePoint = g_vecPointNameList;

bool FaultReturnsDiffErrCode(const std::string& point) {
    return std::find(g_vecPointNameList.begin(), g_vecPointNameList.end(), point) != g_vecPointNameList.end();
}

std::map<int64_t, std::string> g_mapErrIdxName = {
    {-1, "errCode0"}, {-2, "errCode1"}, {-3, "errCode2"}, {-4, "errCode3"}, {-5, "errCode4"}};
std::map<int64_t, std::string>& g_mapErrCodeColumn = g_mapErrIdxName;

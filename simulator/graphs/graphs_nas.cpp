#include "simulator/graphs/graph_table.h"

namespace lumosim {
namespace {

constexpr GraphRow NAS_IO_NFSV3[] = {
    {0, "NAS_TRANS_ALL", PLAIN, "All requests to the file services",
     "Compare the protocols; one slow protocol points to its own path"},
    {1, "NAS_NFSV3_PROC_ALL", PLAIN, "All NFSv3 procedures", ""},
    {2, "NAS_NFSV3_RPC_RECEIVE", PLAIN, "Receipt of NFSv3 calls",
     "Check the client network and its packet loss"},
    {2, "NAS_OB_NFSV3_CLIENTS", PLAIN, "Number of busy NFSv3 clients", ""},
    {2, "NAS_NFSV3_READ", PLAIN, "NFSv3 reads", ""},
    {3, "FS_NFSV3_READ_DATA", HandOver("FS_READ"), "File data read for NFSv3",
     "Follow the file system's read path"},
    {2, "NAS_NFSV3_WRITE", PLAIN, "NFSv3 writes", ""},
    {3, "FS_NFSV3_WRITE_DATA", HandOver("FS_WRITE"), "File data written for NFSv3",
     "Follow the file system's write path"},
    {3, "FS_NFSV3_LOG_COMMIT", PLAIN, "Commit of the file system's log for synchronous writes",
     "Check the log device; ask the clients for asynchronous mounts where they can afford it"},
    {2, "NAS_NFSV3_LOOKUP", PLAIN, "NFSv3 name look-ups", ""},
    {3, "FS_NFSV3_DIR_LOOKUP", PLAIN, "Search of a directory",
     "Look for directories with millions of entries"},
};

constexpr GraphRow NAS_IO_NFSV4[] = {
    {0, "NAS_TRANS_ALL"},
    {1, "NAS_NFSV4_COMPOUND_ALL", PLAIN, "All NFSv4 compounds", ""},
    {2, "NAS_NFSV4_SESSION", PLAIN, "Session and sequence handling",
     "Look for clients with too few session slots"},
    {2, "NAS_OB_NFSV4_DELEGATIONS", PLAIN, "Delegations on loan to clients", ""},
    {2, "NAS_NFSV4_OPEN", PLAIN, "Opening of files", ""},
    {3, "FS_NFSV4_STATE_LOCK", PLAIN, "Wait for the open state of a file",
     "Look for clients that share one file"},
    {2, "NAS_NFSV4_READ", PLAIN, "NFSv4 reads", ""},
    {3, "FS_NFSV4_READ_DATA", HandOver("FS_READ"), "File data read for NFSv4",
     "Follow the file system's read path"},
    {2, "NAS_NFSV4_WRITE", PLAIN, "NFSv4 writes", ""},
    {3, "FS_NFSV4_WRITE_DATA", HandOver("FS_WRITE"), "File data written for NFSv4",
     "Follow the file system's write path"},
};

constexpr GraphRow NAS_IO_SMB2[] = {
    {0, "NAS_TRANS_ALL"},
    {1, "SMB_SMB2_PROC_ALL", PLAIN, "All SMB2 commands", ""},
    {2, "SMB_SESSION_SETUP", PLAIN, "Set-up of sessions", "Check the directory service's response time"},
    {2, "SMB_OB_OPLOCK_BREAKS", PLAIN, "Opportunistic locks that are being broken", ""},
    {2, "SMB_CREATE", PLAIN, "Opening of files", ""},
    {3, "FS_SMB2_ACL_CHECK", PLAIN, "Check of access lists",
     "Look for long access lists and slow name resolution"},
    {2, "SMB_READ", PLAIN, "SMB2 reads", ""},
    {3, "FS_SMB2_READ_DATA", HandOver("FS_READ"), "File data read for SMB2",
     "Follow the file system's read path"},
    {2, "SMB_WRITE", PLAIN, "SMB2 writes", ""},
    {3, "FS_SMB2_WRITE_DATA", HandOver("FS_WRITE"), "File data written for SMB2",
     "Follow the file system's write path"},
};

constexpr GraphRow FS_READ[] = {
    {0, "FS_READ_TOTAL", PLAIN, "Reads in the file system", ""},
    {1, "FS_INODE_GET", PLAIN, "Look-up of the file's inode", "Check the size of the inode cache"},
    {1, "FS_READ_CACHE_LOOKUP", PLAIN, "Look-up in the file cache", "Check the file cache's hit ratio"},
    {1, "FS_READ_EXTENT_MAP", PLAIN, "Mapping of file offsets to extents", "Look for badly fragmented files"},
    {1, "FS_READ_FROM_POOL", PLAIN, "Reads handed to the pool", ""},
    {2, "BDM_FS_DISK_READ", PLAIN, "Reads of the disks behind the file system",
     "Check the disks' health data and latency"},
    {2, "BDM_OB_FS_DISK_QUEUE", PLAIN, "Queue depth of the disks behind the file system", ""},
};

constexpr GraphRow FS_WRITE[] = {
    {0, "FS_WRITE_TOTAL", PLAIN, "Writes in the file system", ""},
    {1, "FS_WRITE_QUOTA", PLAIN, "Check of quotas", "Look for a quota scan that is running"},
    {1, "WCACHE_FS_WRITE", PLAIN, "Writes into the write cache", ""},
    {2, "WCACHE_FS_MIRROR_SEND", PLAIN, "Mirroring of file data to the partner node",
     "Check the mirror link between the two nodes"},
    {1, "FS_WRITE_TO_POOL", PLAIN, "Writes handed to the pool", ""},
    {2, "BDM_FS_DISK_WRITE", PLAIN, "Writes to the disks behind the file system",
     "Check the disks' health data and latency"},
    {2, "FS_OB_SNAPSHOT_COPIES", PLAIN, "Blocks copied for snapshots", ""},
};

}  // namespace

std::vector<GraphTable> NasFlowGraphs() {
    return {{"NAS_IO_NFSV3", GraphFamily::FLOW, NAS_IO_NFSV3},
            {"NAS_IO_NFSV4", GraphFamily::FLOW, NAS_IO_NFSV4},
            {"NAS_IO_SMB2", GraphFamily::FLOW, NAS_IO_SMB2},
            {"FS_READ", GraphFamily::FLOW, FS_READ},
            {"FS_WRITE", GraphFamily::FLOW, FS_WRITE}};
}

}  // namespace lumosim

#include "simulator/graphs/graph_table.h"

namespace lumosim {
namespace {

constexpr GraphRow ERRCODE_NAS_PROTO[] = {
    {0, "NAS_QELMAR_IO_COMMON", WHOLE, "Error codes that the file services return to clients",
     "Match the times with the clients' logs"},
    {1, "NAS_ERRCODE_NFS", CountedBy("NAS_NFSV3_PROC_ALL", "-1"), "Failed NFSv3 procedures", ""},
    {2, "NAS_NFSV3_READ", WHOLE},
    {2, "NAS_NFSV3_WRITE", WHOLE},
    {3, "FS_NFSV3_LOG_COMMIT", ATOMIC_ERROR},
    {2, "NAS_NFSV3_EXPORT_CHECK", ATOMIC_DENIED, "Clients that the export does not admit",
     "Check the export's client list"},
    {1, "NAS_NFSV4_COMPOUND_ALL", FOLLOW},
    {2, "NAS_NFSV4_SESSION", ATOMIC_RETRY},
    {2, "FS_NFSV4_STATE_LOCK", ATOMIC_RETRY},
    {1, "SMB_SMB2_PROC_ALL", FOLLOW},
    {2, "SMB_CREATE", ATOMIC_DENIED},
    {2, "SMB_AUTHTICATE_LOGON_FAILURE", WholeHandOver("ERRCODE_SMB"), "Sessions whose log-on failed",
     "Check user names, passwords and the directory service"},
    {1, "FS_IO_ERRCODE_COMMON", WholeHandOver("ERRCODE_FS"), "Error codes of the file system",
     "Follow the file system's error graph"},
    {1, "WCACHE_FS_WRITE", ATOMIC_RETRY},
    {1, "POOL_FS_IO_COMMON", WholeHandOver("ERRCODE_POOL"), "Error codes of the pool towards file systems",
     "Follow the pool's error graph"},
    {0, "MODULE_FS", PLAIN, "MODULE: the file system"},
    {1, "FS_IO_ERRCODE_COMMON"},
};

constexpr GraphRow ERRCODE_SMB[] = {
    {0, "SMB_AUTHTICATE_LOGON_FAILURE", WHOLE},
    {1, "SMB_KERBEROS_TICKET_FAIL", ATOMIC_DENIED, "Tickets that were refused",
     "Check the clocks of clients, storage and directory service"},
    {1, "SMB_NTLM_FAIL", ATOMIC_DENIED, "Log-ons by password that were refused", "Check the user's password"},
    {1, "SMB_DOMAIN_UNREACHABLE", ATOMIC_ERROR, "Directory service that does not answer",
     "Check network and name service towards the directory service"},
    {1, "SMB_SIGNING_MISMATCH", ATOMIC_ERROR, "Clients that do not sign as required",
     "Align the signing policy of clients and storage"},
};

constexpr GraphRow ERRCODE_FS[] = {
    {0, "FS_IO_ERRCODE_COMMON", WHOLE},
    {1, "FS_READ_TOTAL", FOLLOW},
    {2, "FS_READ_EXTENT_MAP", ATOMIC_ERROR},
    {2, "FS_READ_FROM_POOL", ATOMIC_ERROR},
    {1, "FS_WRITE_TOTAL", FOLLOW},
    {2, "FS_WRITE_QUOTA", ATOMIC_DENIED},
    {2, "FS_WRITE_NO_SPACE", ATOMIC_ERROR, "Writes that found no space",
     "Extend the file system or free space"},
    {2, "FS_WRITE_TO_POOL", ATOMIC_ERROR},
    {1, "FS_SNAPSHOT_COPY_FAIL", ATOMIC_ERROR, "Blocks that could not be copied for a snapshot",
     "Check the snapshot's reserve"},
};

}  // namespace

std::vector<GraphTable> NasErrorGraphs() {
    return {{"ERRCODE_NAS_PROTO", GraphFamily::ERRCODE, ERRCODE_NAS_PROTO},
            {"ERRCODE_SMB", GraphFamily::ERRCODE, ERRCODE_SMB},
            {"ERRCODE_FS", GraphFamily::ERRCODE, ERRCODE_FS}};
}

}  // namespace lumosim

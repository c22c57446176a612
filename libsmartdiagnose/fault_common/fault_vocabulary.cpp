#include "fault_common/fault_vocabulary.h"

const std::multimap<std::string, std::string> g_mapPointGraph = {
    {"TGT_LUMO_HOST_READ", "SAN_IO_READ"}, {"TGT_LUMO_HOST_WRITE", "SAN_IO_WRITE"},
    {"TGT_LUMO_HOST_CMD", "SAN_IO_CMD"},   {"NAS_TRANS_ALL", "NAS_IO_NFSV3"},
    {"NAS_TRANS_ALL", "NAS_IO_NFSV4"},     {"NAS_TRANS_ALL", "NAS_IO_SMB2"},
};

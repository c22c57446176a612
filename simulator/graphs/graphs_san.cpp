#include "simulator/graphs/graph_table.h"

namespace lumosim {
namespace {

constexpr GraphRow SAN_IO_READ[] = {
    {0, "TGT_LUMO_HOST_READ", PLAIN, "Host reads as the target sees them",
     "Compare with the host's own view; a difference lies in the fabric"},
    {1, "TGT_OB_HOST_LINK_READ", PLAIN, "Load of the host links while data is sent", ""},
    {1, "TGT_READ_DATA_TRANSFER", PLAIN, "Transfer of read data to the host",
     "Check the host link's error counters and the multipath policy"},
    {1, "SPACE_SPLIT_IO_READ_TOTAL", PLAIN, "Reads split over the shards of a volume", ""},
    {2, "SPACE_IOTUNNEL_UC_RSP_READ", PLAIN, "Answers of the nodes that own remote shards",
     "Check the internal network: port errors, packet loss, and load of the owning node"},
    {2, "SPACE_IOTUNNEL_UC_ACK_READ", PLAIN, "Acknowledgements between nodes during reads",
     "Check the internal network: port errors and packet loss"},
    {2, "SPACE_SPLIT_IO_READ_INNER", PLAIN, "Inner reads of a split request", ""},
    {2, "SPACE_SPLIT_IO_META_READ", PLAIN, "Reads of shard metadata", "Check the metadata service's load"},
    {1, "SPACE_SPLIT_IO_LOCAL_READ", PLAIN, "Reads of shards that this node owns", ""},
    {2, "CACHE_READ_LOOKUP", PLAIN, "Look-up in the read cache", "Check the cache's hit ratio and size"},
    {2, "SPACE_BLOCK_BDM_READ", PLAIN, "Reads handed to the block device manager", ""},
    {3, "BDM_DISK_READ", PLAIN, "Reads of a data disk",
     "Check the disk's health data and latency; replace a disk that stays slow"},
    {3, "BDM_OB_DISK_QUEUE_READ", PLAIN, "Queue depth of the data disks during reads", ""},
    {2, "POOL_DOP_READ_TIME_IN_POOL", HandOver("POOL_READ"), "Time that a read spends in the storage pool",
     "Follow the pool's read path"},
};

constexpr GraphRow SAN_IO_WRITE[] = {
    {0, "TGT_LUMO_HOST_WRITE", PLAIN, "Host writes as the target sees them",
     "Compare with the host's own view; a difference lies in the fabric"},
    {1, "TGT_OB_HOST_LINK_WRITE", PLAIN, "Load of the host links while data is received", ""},
    {1, "TGT_WRITE_DATA_TRANSFER", PLAIN, "Transfer of write data from the host",
     "Check the host link's error counters and the multipath policy"},
    {1, "SPACE_SPLIT_IO_WRITE_TOTAL", PLAIN, "Writes split over the shards of a volume", ""},
    {2, "SPACE_SPLIT_WRITE_INNER_SPLIT", PLAIN, "Second split of writes that cross a boundary",
     "Check the alignment of the host's partitions"},
    {2, "SPACE_SPLIT_IO_WRITE_INNER", PLAIN, "Inner writes to remote shards", ""},
    {3, "SPACE_IOTUNNEL_UC_ACK_WRITE", PLAIN, "Acknowledgements between nodes during writes",
     "Check the internal network: port errors, packet loss, flow control on the switches"},
    {3, "SPACE_IOTUNNEL_UC_RSP_WRITE", PLAIN, "Answers of the nodes that own remote shards",
     "Check the load of the owning node"},
    {2, "SPACE_SPLIT_IO_META_WRITE", PLAIN, "Writes of shard metadata", "Check the metadata service's load"},
    {1, "SPACE_SPLIT_IO_LOCAL_WRITE", PLAIN, "Writes to shards that this node owns", ""},
    {2, "SPACE_VOL_WRITE_GET_RB_LOCK", PLAIN, "Wait for the range lock of a volume",
     "Look for hosts that write to the same range"},
    {2, "WCACHE_LUMO_DSG_SEND_VOL", PLAIN, "Writes from the write cache to the volume",
     "Check the write cache's water level and the speed of the pool behind it"},
    {3, "WCACHE_MIRROR_SEND", PLAIN, "Mirroring of the write cache to the partner node",
     "Check the mirror link between the two nodes"},
    {2, "POOL_DOP_WRITE_TIME_IN_POOL", HandOver("POOL_WRITE"), "Time that a write spends in the storage pool",
     "Follow the pool's write path"},
};

constexpr GraphRow SAN_IO_CMD[] = {
    {0, "TGT_LUMO_HOST_CMD", PLAIN, "Host commands that carry no data",
     "List the commands by type; frequent ones point to the host's path checker"},
    {1, "TGT_CMD_PARSE", PLAIN, "Parsing and dispatch of a command", "Check the node's processor load"},
    {1, "TGT_CMD_RESERVATION", PLAIN, "Reservations of a volume",
     "Look for hosts that fight over a reservation"},
    {2, "TGT_OB_RESERVATION_CONFLICT", PLAIN, "Conflicts between reservations", ""},
    {1, "SPACE_SPLIT_IO_RUN_UNMAP", PLAIN, "Release of unused blocks",
     "Spread the hosts' trim jobs over time"},
    {2, "SPACE_BLOCK_VOL_TO_KVS_UNMAP", PLAIN, "Release of blocks in the key-value store", ""},
    {2, "SPACE_BLOCK_LUN_ALL_LOCK", PLAIN, "Lock over a whole volume",
     "Look for a snapshot or migration that holds it"},
    {1, "SPACE_VOL_WRITE_2_VAAI", PLAIN, "Copy and zero commands of virtualised hosts",
     "Limit the hosts' clone jobs"},
    {2, "SPACE_IOTUNNEL_SHARD_IO_TRANS", PLAIN, "Copy traffic between shards",
     "Check the internal network's load"},
    {1, "MDS_LUN_ATTR_QUERY", HandOver("MDS_LOOKUP"), "Query of a volume's attributes",
     "Check the metadata service's load"},
};

}  // namespace

std::vector<GraphTable> SanFlowGraphs() {
    return {{"SAN_IO_READ", GraphFamily::FLOW, SAN_IO_READ},
            {"SAN_IO_WRITE", GraphFamily::FLOW, SAN_IO_WRITE},
            {"SAN_IO_CMD", GraphFamily::FLOW, SAN_IO_CMD}};
}

}  // namespace lumosim

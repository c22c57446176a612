// Messages to and from other nodes: without these calls a host knows no node but its own.
#pragma once

#include <memory>

#include "host/cluster/bus.h"

namespace zorv {
// Listens at the address of this node, and sends to the others from then on, as the bus does. Once. Throws
// std::runtime_error, with a message for the operator, when this node cannot listen.
void JoinCluster(const NodeAddresses& addresses, std::shared_ptr<const Credentials> credentials);

// The last call before the process ends: takes no further connections, and removes what would be left
// behind. Does nothing before JoinCluster().
void LeaveCluster();
}  // namespace zorv

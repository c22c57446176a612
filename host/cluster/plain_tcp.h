// Connections that anyone may make who reaches a node.
#pragma once

#include <string>

#include "host/cluster/bus.h"

namespace zorv {
// A warning for the operator when a node listens at a tcp:// address; empty when none does. Unless it is
// allowed `anywhere`, throws std::runtime_error, with a message for the operator, when that is neither on
// this machine nor in a private network, or cannot be told. Names are looked up, which blocks.
std::string WarnOfPlainTcp(const NodeAddresses& nodes, bool anywhere);
}  // namespace zorv

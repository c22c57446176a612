// The file that names the nodes of a cluster.
#pragma once

#include <string>
#include <vector>

#include "host/cluster/bus.h"

namespace zorv {
// Reads the cluster file: a node's id and its address on each line; '#' begins a comment. The nodes of
// `required` must be among them. Throws std::runtime_error, with a message for the operator, when the file
// cannot be read or is not of that form. Blocks on file I/O.
NodeAddresses ReadClusterFile(const std::string& file, const std::vector<uint32_t>& required);
}  // namespace zorv

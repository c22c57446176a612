// What the agent has healed.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "explain/finding/series.h"

namespace explain {

// A healing action of the agent.
struct Healing {
    int64_t time = 0;        // UTC seconds
    std::string kind;        // "IOHANG", "IOERR", or another word of the healing service
    std::string module;      // that was healed
    std::string cause;       // as the service infers it; may be empty
    int64_t node = 0;        // on which it happened
    bool isHere = false;     // that is the node whose statistics these are
    bool isOfDelay = false;  // a kind that explains slow requests: hanging or failed I/O
};

// How long before a range healings are told, seconds.
constexpr int64_t HEALING_LOOK_BACK = 3600;

// All healings of a stretch of time, of all nodes and kinds, in the order of time. Blocks on the heal
// database, which may be without the table: then there are none. Rows without a time or a node, which the
// plug-in does not find either, are left out. Throws NoData when the database cannot be read, and
// std::invalid_argument for a node that is no number.
std::vector<Healing> HealingsIn(const Window& window);

}  // namespace explain

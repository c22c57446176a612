// Messages of one node: its handlers, and the requests that wait for an answer from them.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>

#include "agent/agent_message.h"
#include "host/cluster/answer.h"
#include "host/cluster/rare_event.h"

namespace zorv {

// Thread-safe. Its life must not end before that of the last handler's run.
class Delivery {
public:
    // Returns false when the opcode has a handler already.
    bool Register(uint32_t opcode, ZORV_MSG_HANDLER handler);

    // Runs the handler of info.msgOPCode, on a thread of its own, with a copy of the payload (info.msgLen
    // bytes), and waits for its answer. Nothing comes back when there is no handler, or no answer within the
    // deadline; an answer that comes later is refused. May throw when memory or threads run out.
    std::optional<Answer> Request(ZORV_COMM_INFO_S info, const void* payload,
                                  std::chrono::milliseconds deadline);

    // Answers the request numbered `sequence` with a copy of the data. Returns false when nobody waits for
    // that answer (any more). Throws when memory runs out.
    bool Acknowledge(uint64_t sequence, const void* data, uint32_t length);

private:
    class Waiting;

    ZORV_MSG_HANDLER Handler(uint32_t opcode);

    std::mutex mutex;
    std::condition_variable answered;
    std::map<uint32_t, ZORV_MSG_HANDLER> handlers;
    std::map<uint64_t, std::optional<Answer>> waiting;  // by sequence, which is never used twice
    uint64_t lastSequence = 0;
    RareEvent unhandled, unanswered;
};
}  // namespace zorv

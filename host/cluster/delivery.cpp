#include "host/cluster/delivery.h"

#include <utility>
#include <vector>

#include "host/process/interrupt.h"
#include "host/services/log.h"
#include "host/services/thread.h"

namespace zorv {
namespace {
void StartHandler(ZORV_MSG_HANDLER handler, ZORV_COMM_INFO_S info, const void* payload) {
    std::vector<char> copy;
    if (payload != nullptr) {
        const char* const bytes = static_cast<const char*>(payload);
        copy.assign(bytes, bytes + info.msgLen);
    }
    auto run = [handler, info, message = std::move(copy)]() mutable {
        char* const data = message.empty() ? nullptr : message.data();
        Guarded("message handler", 0U, [&] { return handler(&info, data, nullptr); });
    };
    StartThread(std::move(run)).detach();
}
}  // namespace

// The entry of one request in the table of those that wait; it ends with the wait. The mutex is held when
// it begins and when it ends.
class Delivery::Waiting {
public:
    explicit Waiting(Delivery& owner) : delivery(owner), sequence(++owner.lastSequence) {
        delivery.waiting.emplace(sequence, std::nullopt);
    }
    ~Waiting() { delivery.waiting.erase(sequence); }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;

    uint64_t Sequence() const { return sequence; }
    std::optional<Answer>& Slot() { return delivery.waiting.at(sequence); }

private:
    Delivery& delivery;
    const uint64_t sequence;
};

bool Delivery::Register(uint32_t opcode, ZORV_MSG_HANDLER handler) {
    const std::lock_guard<std::mutex> lock(mutex);
    return handlers.emplace(opcode, handler).second;
}

ZORV_MSG_HANDLER Delivery::Handler(uint32_t opcode) {
    const auto found = handlers.find(opcode);
    return found == handlers.end() ? nullptr : found->second;
}

std::optional<Answer> Delivery::Request(ZORV_COMM_INFO_S info, const void* payload,
                                        std::chrono::milliseconds deadline) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    std::unique_lock<std::mutex> lock(mutex);
    const ZORV_MSG_HANDLER handler = Handler(info.msgOPCode);
    if (handler == nullptr) {
        if (const auto number = unhandled.Count()) {
            HOST_LOG(VPLOG_LEVEL_WARNING,
                     "nobody handles messages with opcode 0x%x: %llu of that kind so far", info.msgOPCode,
                     number);
        }
        return std::nullopt;
    }
    Waiting entry(*this);
    info.sequence = entry.Sequence();
    StartHandler(handler, info, payload);
    if (!WaitUnlessInterrupted(answered, lock, end, [&] { return entry.Slot().has_value(); })) {
        if (const auto number = unanswered.Count()) {
            HOST_LOG(VPLOG_LEVEL_WARNING,
                     "no answer to the message with opcode 0x%x within %lld ms: %llu of that kind so far",
                     info.msgOPCode, static_cast<long long>(deadline.count()), number);
        }
        return std::nullopt;
    }
    return std::move(entry.Slot());
}

bool Delivery::Acknowledge(uint64_t sequence, const void* data, uint32_t length) {
    Answer answer = CopyAnswer(data, length);
    {
        const std::lock_guard<std::mutex> lock(mutex);
        const auto entry = waiting.find(sequence);
        if (entry == waiting.end() || entry->second.has_value()) {
            return false;
        }
        entry->second = std::move(answer);
    }
    answered.notify_all();
    return true;
}
}  // namespace zorv

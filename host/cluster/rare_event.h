// What others can cause without end, and what is to be logged of it.
#pragma once

#include <atomic>
#include <cstdint>

namespace zorv {
// One kind of event, of which the 1st, 2nd, 4th, 8th .. is logged. Thread-safe.
class RareEvent {
public:
    // Counts the event. Returns its number when it is to be logged, else 0.
    unsigned long long Count() {
        const uint64_t number = ++count;
        return (number & (number - 1)) == 0 ? number : 0;
    }

private:
    std::atomic<uint64_t> count{0};
};
}  // namespace zorv

// The connections that others keep open to this node: a bounded number, whoever they are.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <vector>

#include "host/cluster/connection.h"
#include "host/cluster/rare_event.h"

namespace zorv {
// Thread-safe. Its life must not end before that of the last visit.
class Guests {
public:
    explicit Guests(size_t mostAtOnce) : most(mostAtOnce) {}

    // A connection as long as it is served. For the thread that serves it.
    class Visit {
    public:
        // Blocks until there is a place. While there is none, the guest is cut off that keeps this node
        // waiting for the longest time, for the rest of a message or until it takes one; none whose message
        // is being handled. The connection outlives its visit.
        Visit(Guests& inn, Connection& guest);
        ~Visit();
        Visit(const Visit&) = delete;
        Visit& operator=(const Visit&) = delete;

        // As the connection's; a guest that was cut off has std::runtime_error thrown.
        BusFrame Receive();
        void Send(const BusFrame& frame);

    private:
        friend class Guests;
        enum class State { WORKS, WAITS, CUT_OFF };

        void BeginWait();
        void EndWait();

        Guests& guests;
        Connection& connection;
        State state = State::WORKS;
        Moment waitsSince{};
    };

private:
    void CutOffSlowest();

    const size_t most;
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<Visit*> visits;
    RareEvent cutOff;
};
}  // namespace zorv

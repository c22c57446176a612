#include "host/cluster/guests.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>

#include "host/services/log.h"

namespace zorv {
Guests::Visit::Visit(Guests& inn, Connection& guest) : guests(inn), connection(guest) {
    std::unique_lock<std::mutex> lock(guests.mutex);
    while (guests.visits.size() >= guests.most) {
        guests.CutOffSlowest();
        guests.changed.wait(lock);
    }
    guests.visits.push_back(this);
}

Guests::Visit::~Visit() {
    const std::lock_guard<std::mutex> lock(guests.mutex);
    guests.visits.erase(std::find(guests.visits.begin(), guests.visits.end(), this));
    guests.changed.notify_all();
}

BusFrame Guests::Visit::Receive() {
    BeginWait();
    const BusFrame frame = connection.Receive();
    EndWait();
    return frame;
}

void Guests::Visit::Send(const BusFrame& frame) {
    BeginWait();
    connection.Send(frame);
    EndWait();
}

void Guests::Visit::BeginWait() {
    const std::lock_guard<std::mutex> lock(guests.mutex);
    state = State::WAITS;
    waitsSince = std::chrono::steady_clock::now();
    guests.changed.notify_all();
}

void Guests::Visit::EndWait() {
    const std::lock_guard<std::mutex> lock(guests.mutex);
    if (state == State::CUT_OFF) {  // what came in the last moment is not begun
        throw std::runtime_error("it was cut off");
    }
    state = State::WORKS;
}

// One at a time: who was cut off leaves soon. The mutex is held.
void Guests::CutOffSlowest() {
    Visit* slowest = nullptr;
    for (Visit* const visit : visits) {
        if (visit->state == Visit::State::CUT_OFF) {
            return;
        }
        if (visit->state == Visit::State::WAITS &&
            (slowest == nullptr || visit->waitsSince < slowest->waitsSince)) {
            slowest = visit;
        }
    }
    if (slowest == nullptr) {
        return;
    }
    slowest->state = Visit::State::CUT_OFF;
    slowest->connection.CutOff();
    if (const auto number = cutOff.Count()) {
        HOST_LOG(VPLOG_LEVEL_WARNING, "too many connections at once: so far, %llu slow ones were cut off",
                 number);
    }
}
}  // namespace zorv

// Byte streams between nodes, cut into frames. The only place that knows how they are carried.
#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>

#include "host/cluster/bus_frame.h"
#include "host/cluster/credentials.h"

struct nng_aio;
struct nng_stream;
struct nng_stream_listener;

namespace zorv {

using Moment = std::chrono::steady_clock::time_point;

// The other side sent bytes that are no frame.
class NoFrame : public std::runtime_error {
public:
    NoFrame() : std::runtime_error("what it sent is no message of a node") {}
};

// One side has not shown a certificate that the other takes for valid.
class Untrusted : public std::runtime_error {
public:
    Untrusted() : std::runtime_error("its certificate, or the one of this node, was refused") {}
};

// One operation of the library at a time, and what came of it. For the thread that makes it.
class Operation {
public:
    // Watched, it ends at the moment that Wait() is told, whatever the library does.
    explicit Operation(bool watched = false);
    ~Operation();
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

    nng_aio* Get() const { return aio; }

    // Blocks until the operation that was begun ends; when the command that the calling thread runs is
    // interrupted, or at `last`, the operation ends soon, and its stream is closed. Returns the library's
    // error, or 0.
    int Wait(Moment last = Moment::max(), nng_stream* closed = nullptr);

private:
    static void Ended(void* operation);

    const bool isInterruptible, isWatched;
    std::mutex mutex;
    std::condition_variable changed;
    bool hasEnded = false;
    nng_aio* aio = nullptr;
};

// A connection until a moment, after which whatever is asked of it throws std::runtime_error; so it does when
// the other side is gone. Belongs to one thread, which it blocks.
class Connection {
public:
    struct Free {
        void operator()(nng_stream* stream) const;
    };
    using Stream = std::unique_ptr<nng_stream, Free>;

    Connection(Stream connected, Moment lastMoment, bool isTls);

    // Connects to the node that listens at `address`; a tls+tcp address takes the node's credentials.
    Connection(const std::string& address, Moment lastMoment, const Credentials* own = nullptr);

    // Throws std::length_error when the payload is too long.
    void Send(const BusFrame& frame);

    // What comes next, valid until this is called again. Throws NoFrame.
    BusFrame Receive();

    // Any thread, while the connection lives: whatever is asked of it throws from now on, also what has
    // begun.
    void CutOff();

private:
    void Transfer(void (*start)(nng_stream*, nng_aio*), char* bytes, size_t length);

    const Stream stream;
    const Moment end;
    Operation operation;
    std::string received;
};

// The place where other nodes reach this one. Thread-safe.
class Listener {
public:
    // Listens at `address`; the socket file that a killed process has left there is replaced. Throws
    // std::runtime_error, with a message for the operator, when the address cannot be used, or is. A tls+tcp
    // address takes the node's credentials, which are not kept.
    explicit Listener(const std::string& address, const Credentials* own = nullptr);
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    // Blocks until somebody connects; the connection ends after `life`. Null when the listener was closed.
    // Throws std::runtime_error when a connection could not be accepted.
    std::unique_ptr<Connection> Accept(std::chrono::milliseconds life);

    // Takes no further connections, and removes the file that stands for an ipc address.
    void Close();

private:
    const bool isTls;
    nng_stream_listener* listener = nullptr;
};
}  // namespace zorv

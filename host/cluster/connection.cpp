#include "host/cluster/connection.h"

#include <nng/nng.h>
#include <nng/transport/ipc/ipc.h>
#include <nng/transport/tls/tls.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <thread>
#include <utility>

#include "host/cluster/address.h"
#include "host/process/interrupt.h"

namespace zorv {
// Of the library only its byte streams are used. Its messages could be sent once more without our knowledge;
// and its ipc listener for them, in version 1.5.2, hears nothing more after a connection that is closed at
// once, such as every second process makes that tries to listen there. Nor does it close a descriptor at
// once, but on a thread of its own, which is the slower the more it has to close.

namespace {
constexpr int OWNER_ONLY = 0600;
constexpr int MANY_DESCRIPTORS = 256;
constexpr std::chrono::milliseconds PAUSE{5};
constexpr int MOST_PAUSES = 200;
constexpr std::chrono::milliseconds GRACE{200};  // before a stream is closed that missed its time

void Check(int error) {
    if (error == NNG_EPEERAUTH || error == NNG_ECRYPTO) {
        throw Untrusted();
    }
    if (error != 0) {
        throw std::runtime_error(nng_strerror(error));
    }
}

nng_duration Left(Moment end) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now()).count();
    return static_cast<nng_duration>(std::clamp<int64_t>(left, 0, INT32_MAX));
}

Connection::Stream StreamOf(const Operation& operation) {
    return Connection::Stream(static_cast<nng_stream*>(nng_aio_get_output(operation.Get(), 0)));
}

// Without credentials of our own the library would let anyone in.
bool NeedsCredentials(const std::string& address, const Credentials* own) {
    const bool isTls = Behind(TLS, address).has_value();
    if (isTls && own == nullptr) {
        throw std::runtime_error("this node has no certificate");
    }
    return isTls;
}

Connection::Stream Dial(const std::string& address, Moment end, const Credentials* own) {
    nng_stream_dialer* dialer = nullptr;
    Check(nng_stream_dialer_alloc(&dialer, address.c_str()));
    const std::unique_ptr<nng_stream_dialer, void (*)(nng_stream_dialer*)> owner(dialer,
                                                                                 nng_stream_dialer_free);
    if (NeedsCredentials(address, own)) {  // its many small pieces would wait for each other
        Check(nng_stream_dialer_set_ptr(dialer, NNG_OPT_TLS_CONFIG, own->ForAsking()));
        Check(nng_stream_dialer_set_bool(dialer, NNG_OPT_TCP_NODELAY, true));
    }
    for (;;) {
        Operation operation;
        nng_aio_set_timeout(operation.Get(), Left(end));
        nng_stream_dialer_dial(dialer, operation.Get());
        const int error = operation.Wait();
        if (error != NNG_EAGAIN || Left(end) == 0 || Interrupted()) {
            Check(error);
            return StreamOf(operation);
        }
        SleepUnlessInterrupted(PAUSE);  // more wait there to be let in than an ipc address holds
    }
}

bool HasManyDescriptors() {
    std::error_code ignored;
    const std::filesystem::directory_iterator open("/proc/self/fd", ignored);
    return std::distance(begin(open), end(open)) > MANY_DESCRIPTORS;
}

// Lets the library close what it has to close: whoever connects again and again would use up all descriptors,
// the databases' as well. Not for ever: they may have other reasons to be many.
void AwaitDescriptors() {
    for (int i = 0; i < MOST_PAUSES && HasManyDescriptors(); ++i) {
        std::this_thread::sleep_for(PAUSE);
    }
}

// The library would take any file at the address for what a killed process has left, and remove it.
void RefuseOtherFiles(const std::string& path) {
    std::error_code ignored;
    const auto status = std::filesystem::status(path, ignored);
    if (std::filesystem::exists(status) && !std::filesystem::is_socket(status)) {
        throw std::runtime_error("the file there is no socket");
    }
}

void Listen(const std::string& address, const Credentials* own, nng_stream_listener** listener) {
    const auto path = Behind(IPC, address);
    if (path.has_value()) {
        RefuseOtherFiles(std::string(*path));
    }
    Check(nng_stream_listener_alloc(listener, address.c_str()));
    if (path.has_value()) {
        Check(nng_stream_listener_set_int(*listener, NNG_OPT_IPC_PERMISSIONS, OWNER_ONLY));
    }
    if (NeedsCredentials(address, own)) {
        Check(nng_stream_listener_set_ptr(*listener, NNG_OPT_TLS_CONFIG, own->ForListening()));
        Check(nng_stream_listener_set_bool(*listener, NNG_OPT_TCP_NODELAY, true));
    }
    Check(nng_stream_listener_listen(*listener));
}
}  // namespace

// The library calls back on a thread of its own, which takes its time: only where somebody has to hear of it.
Operation::Operation(bool watched) : isInterruptible(RunsCommand()), isWatched(watched || isInterruptible) {
    Check(nng_aio_alloc(&aio, isWatched ? &Operation::Ended : nullptr, this));
}

Operation::~Operation() {
    nng_aio_free(aio);
}

void Operation::Ended(void* operation) {
    auto& ended = *static_cast<Operation*>(operation);
    const std::lock_guard<std::mutex> lock(ended.mutex);
    ended.hasEnded = true;
    ended.changed.notify_one();
}

// With TLS the library, in version 1.5.2, may miss that something has arrived, and then misses timeouts and
// what is cancelled too; it does not miss that its stream was closed.
int Operation::Wait(Moment last, nng_stream* closed) {
    std::unique_lock<std::mutex> lock(mutex);
    const auto ended = [this] { return hasEnded; };
    const bool isInTime = isInterruptible ? WaitUnlessInterrupted(changed, lock, last, ended)
                                          : !isWatched || changed.wait_until(lock, last, ended);
    lock.unlock();
    if (!isInTime) {
        nng_aio_cancel(aio);
        if (closed != nullptr) {
            nng_stream_close(closed);
        }
    }
    nng_aio_wait(aio);
    hasEnded = false;  // nobody else looks until the next operation begins
    return nng_aio_result(aio);
}

void Connection::Free::operator()(nng_stream* freed) const {
    nng_stream_free(freed);
}

Connection::Connection(Stream connected, Moment lastMoment, bool isTls)
    : stream(std::move(connected)), end(lastMoment), operation(isTls) {}

Connection::Connection(const std::string& address, Moment lastMoment, const Credentials* own)
    : stream(Dial(address, lastMoment, own)), end(lastMoment), operation(Behind(TLS, address).has_value()) {}

void Connection::Send(const BusFrame& frame) {
    std::string bytes = EncodeFrame(frame);
    Transfer(nng_stream_send, bytes.data(), bytes.size());
}

BusFrame Connection::Receive() {
    received.resize(FRAME_HEADER);
    Transfer(nng_stream_recv, received.data(), FRAME_HEADER);
    const std::optional<size_t> length = PayloadLength(received);
    if (!length.has_value()) {
        throw NoFrame();
    }
    received.resize(FRAME_HEADER + *length);
    Transfer(nng_stream_recv, received.data() + FRAME_HEADER, *length);
    return DecodeFrame(received).value();
}

// What is begun on a stream that was closed would not end before its time.
void Connection::CutOff() {
    nng_aio_stop(operation.Get());
}

void Connection::Transfer(void (*start)(nng_stream*, nng_aio*), char* bytes, size_t length) {
    while (length > 0) {
        const nng_iov part = {bytes, length};
        Check(nng_aio_set_iov(operation.Get(), 1, &part));
        nng_aio_set_timeout(operation.Get(), Left(end));
        start(stream.get(), operation.Get());
        Check(operation.Wait(end + GRACE, stream.get()));
        const size_t done = nng_aio_count(operation.Get());
        bytes += done;
        length -= done;
    }
}

Listener::Listener(const std::string& address, const Credentials* own)
    : isTls(Behind(TLS, address).has_value()) {
    try {
        Listen(address, own, &listener);
    } catch (const std::runtime_error& error) {
        nng_stream_listener_free(listener);
        throw std::runtime_error("cannot listen at " + address + ": " + error.what());
    }
}

Listener::~Listener() {
    nng_stream_listener_free(listener);
}

std::unique_ptr<Connection> Listener::Accept(std::chrono::milliseconds life) {
    AwaitDescriptors();
    Operation operation;
    nng_aio_set_timeout(operation.Get(), NNG_DURATION_INFINITE);
    nng_stream_listener_accept(listener, operation.Get());
    const int error = operation.Wait();
    if (error == NNG_ECLOSED) {
        return nullptr;
    }
    Check(error);
    return std::make_unique<Connection>(StreamOf(operation), std::chrono::steady_clock::now() + life, isTls);
}

void Listener::Close() {
    nng_stream_listener_close(listener);
}
}  // namespace zorv

#include "host/cluster/bus.h"

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <thread>
#include <utility>

#include "host/services/log.h"
#include "host/services/thread.h"

namespace zorv {
namespace {
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr size_t AT_ONCE = 16;  // connections of other nodes that are served at once
constexpr milliseconds AFTER_ERROR{100};

// A moment on this node's clock, as frames carry it.
uint64_t Milliseconds(Moment moment) {
    return static_cast<uint64_t>(std::chrono::duration_cast<milliseconds>(moment.time_since_epoch()).count());
}

// Throws unless `frame` answers `question` with an answer of that kind.
void CheckAnswer(const BusFrame& frame, const BusFrame& question, FrameKind kind) {
    if (frame.srcNid != question.dstNid || frame.dstNid != question.srcNid ||
        frame.opcode != question.opcode) {
        throw std::runtime_error("what it sent answers something else");
    }
    if (frame.kind != kind) {
        throw std::runtime_error("it has no answer");
    }
}

void LogRarely(RareEvent& event, const char* what) {
    if (const auto number = event.Count()) {
        HOST_LOG(VPLOG_LEVEL_WARNING, "from other nodes came, so far, %llu %s", number, what);
    }
}
}  // namespace

Bus::Bus(uint32_t ownNode, NodeAddresses known, std::shared_ptr<const Credentials> shown)
    : node(ownNode),
      addresses(std::move(known)),
      credentials(std::move(shown)),
      listener(addresses.at(ownNode), credentials.get()),
      guests(AT_ONCE) {}

void Bus::Start(MessageServer server, milliseconds most) {
    serve = std::move(server);
    longest = most;
    for (size_t i = 0; i <= AT_ONCE; ++i) {  // one more, for whom another makes room
        StartThread([this] { Serve(); }).detach();
    }
}

std::optional<Answer> Bus::Request(const ZORV_COMM_INFO_S& info, const void* payload, milliseconds deadline) {
    try {
        return Ask(info, {static_cast<const char*>(payload), info.msgLen}, steady_clock::now() + deadline);
    } catch (const std::exception& error) {
        HOST_LOG(VPLOG_LEVEL_WARNING, "node %u did not answer the message with opcode 0x%x: %s", info.dstNid,
                 info.msgOPCode, error.what());
        return std::nullopt;
    }
}

// Each request has a connection of its own: an answer that comes late finds nobody. And before the request
// goes out the other node tells its time, so that it can be told, on its own clock, until when to begin: what
// was held up on its way is not handled after the operator has been told that it failed.
Answer Bus::Ask(const ZORV_COMM_INFO_S& info, std::string_view payload, Moment end) {
    const auto address = addresses.find(info.dstNid);
    if (address == addresses.end()) {
        throw std::runtime_error("the cluster has no such node");
    }
    Connection connection(address->second, end, credentials.get());
    BusFrame frame = {FrameKind::ASK_TIME, node,           info.dstNid, info.module,
                      info.msgOPCode,      info.needReply, 0,           {}};
    connection.Send(frame);
    const BusFrame told = connection.Receive();
    CheckAnswer(told, frame, FrameKind::TELL_TIME);
    // Their clock was read before ours is now, so their end comes no later than ours.
    const Moment now = steady_clock::now();
    frame.kind = FrameKind::REQUEST;
    frame.moment = told.moment + (now < end ? Milliseconds(Moment(end - now)) : 0);
    frame.payload = payload;
    connection.Send(frame);
    const BusFrame answer = connection.Receive();
    CheckAnswer(answer, frame, FrameKind::ANSWER);
    return CopyAnswer(answer.payload.data(), static_cast<uint32_t>(answer.payload.size()));
}

void Bus::Serve() {
    for (bool isOpen = true; isOpen;) {
        isOpen = Guarded("bus", true, [this] {
            std::unique_ptr<Connection> connection;
            try {
                connection = listener.Accept(longest);
            } catch (const std::exception&) {
                LogRarely(lost, "connections that could not be accepted");
                std::this_thread::sleep_for(AFTER_ERROR);
                return true;
            }
            if (connection == nullptr) {
                return false;
            }
            Guests::Visit visit(guests, *connection);
            Converse(visit);
            return true;
        });
    }
}

void Bus::Converse(Guests::Visit& visit) {
    try {
        for (;;) {
            std::optional<Answer> answer;
            visit.Send(ReplyTo(visit.Receive(), answer));
        }
    } catch (const NoFrame&) {
        LogRarely(garbage, "messages that were none");
    } catch (const Untrusted&) {
        LogRarely(untrusted, "connections without a valid certificate, or that refused the one of this node");
    } catch (const std::runtime_error&) {
        return;  // the other side has what it wanted, or its time is over
    }
}

// The reply; its payload is in `answer`.
BusFrame Bus::ReplyTo(const BusFrame& frame, std::optional<Answer>& answer) {
    if (frame.kind != FrameKind::ASK_TIME && frame.kind != FrameKind::REQUEST) {
        throw NoFrame();
    }
    BusFrame reply = {FrameKind::NO_ANSWER, frame.dstNid, frame.srcNid, 0, frame.opcode, 0, 0, {}};
    if (frame.dstNid != node) {
        LogRarely(astray, "messages for somebody else: do all nodes have the same cluster file?");
    } else if (frame.kind == FrameKind::ASK_TIME) {
        reply.kind = FrameKind::TELL_TIME;
        reply.moment = Milliseconds(steady_clock::now());
    } else {
        answer = Handle(frame);
    }
    if (answer.has_value() && answer->length <= LARGEST_PAYLOAD) {
        reply.kind = FrameKind::ANSWER;
        reply.payload = {static_cast<const char*>(answer->data.get()), answer->length};
    }
    return reply;
}

std::optional<Answer> Bus::Handle(const BusFrame& request) {
    const uint64_t now = Milliseconds(steady_clock::now());
    if (request.moment <= now) {
        LogRarely(late, "messages too late to be handled");
        return std::nullopt;
    }
    const milliseconds time(std::min(request.moment - now, static_cast<uint64_t>(longest.count())));
    const auto length = static_cast<uint32_t>(request.payload.size());
    return serve({request.srcNid, node, request.module, request.opcode, length, request.needReply, 0},
                 request.payload.data(), time);
}
}  // namespace zorv

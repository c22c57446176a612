// The way to other nodes.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "agent/agent_message.h"
#include "host/cluster/answer.h"
#include "host/cluster/bus_frame.h"
#include "host/cluster/connection.h"
#include "host/cluster/guests.h"
#include "host/cluster/rare_event.h"

namespace zorv {
// Where each node of the cluster listens: "ipc:///PATH", "tls+tcp://HOST:PORT" or "tcp://HOST:PORT".
using NodeAddresses = std::map<uint32_t, std::string>;

// Runs the handler of a message that came from another node, and waits for its answer; on a thread of the
// bus. Nothing comes back when there is no answer within the time.
using MessageServer = std::function<std::optional<Answer>(const ZORV_COMM_INFO_S& info, const void* payload,
                                                          std::chrono::milliseconds time)>;

// This node's end of the bus. Thread-safe. Its life must not end once it has begun to serve.
class Bus {
public:
    // Listens at the address of `ownNode`, which is one of the nodes; tls+tcp addresses take credentials,
    // which are null where there are none. Throws std::runtime_error, with a message for the operator, when
    // that is not possible.
    Bus(uint32_t ownNode, NodeAddresses known, std::shared_ptr<const Credentials> shown = nullptr);

    // Serves other nodes from then on: sixteen connections at once, each for no longer than `most`. Who comes
    // then takes the place of the one that keeps this node waiting for the longest time, or waits while all
    // are being served. Who sends anything but messages of a node is cut off. Once.
    void Start(MessageServer server, std::chrono::milliseconds most);

    // Sends `info.msgLen` bytes at `payload` to node info.dstNid and blocks until the answer is there.
    // Nothing comes back when there is nobody, or no answer; after `deadline` at the latest. The node begins
    // to handle the message within the deadline or not at all, and once only.
    std::optional<Answer> Request(const ZORV_COMM_INFO_S& info, const void* payload,
                                  std::chrono::milliseconds deadline);

    // Takes no further connections, and removes what stands for the address in the file system.
    void Leave() { listener.Close(); }

private:
    Answer Ask(const ZORV_COMM_INFO_S& info, std::string_view payload, Moment end);
    void Serve();
    void Converse(Guests::Visit& visit);
    BusFrame ReplyTo(const BusFrame& frame, std::optional<Answer>& answer);
    std::optional<Answer> Handle(const BusFrame& request);

    const uint32_t node;
    const NodeAddresses addresses;
    const std::shared_ptr<const Credentials> credentials;
    MessageServer serve;
    std::chrono::milliseconds longest{0};
    Listener listener;
    Guests guests;
    RareEvent garbage, untrusted, astray, late, lost;
};
}  // namespace zorv

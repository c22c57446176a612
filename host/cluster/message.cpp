#include "host/cluster/message.h"

#include <atomic>
#include <optional>
#include <utility>

#include "agent/agent_message.h"
#include "host/cluster/delivery.h"
#include "host/process/immortal.h"
#include "host/process/settings.h"
#include "host/services/log.h"

namespace zorv {
namespace {
Delivery& LocalDelivery() {
    static Delivery& delivery = MakeImmortal<Delivery>();
    return delivery;
}

std::atomic<Bus*> g_bus{nullptr};  // null: there are no other nodes

std::optional<Answer> HandleHere(const ZORV_COMM_INFO_S& info, const void* payload,
                                 std::chrono::milliseconds time) {
    return LocalDelivery().Request(info, payload, time);
}

// The way to a node leads through here.
std::optional<Answer> RequestFrom(const ZORV_COMM_INFO_S& info, const void* payload) {
    const HostSettings& settings = GetHostSettings();
    if (info.dstNid == settings.node) {
        return HandleHere(info, payload, settings.messageDeadline);
    }
    Bus* const bus = g_bus;
    if (bus == nullptr) {
        HOST_LOG(VPLOG_LEVEL_WARNING, "node %u is out of reach of node %u", info.dstNid, settings.node);
        return std::nullopt;
    }
    return bus->Request(info, payload, settings.messageDeadline);
}

uint32_t SendRequest(const ZORV_COMM_INFO_S& info, const void* payload, ZORV_COMM_RET_S& reply) {
    if (payload == nullptr && info.msgLen > 0) {
        return 1;
    }
    std::optional<Answer> answer = RequestFrom(info, payload);
    if (!answer.has_value()) {
        return 1;
    }
    reply.length = answer->length;
    reply.data = answer->data.release();
    return 0;
}
}  // namespace

void JoinCluster(const NodeAddresses& addresses, std::shared_ptr<const Credentials> credentials) {
    const HostSettings& settings = GetHostSettings();
    auto& bus = MakeImmortal<Bus>(settings.node, addresses, std::move(credentials));
    bus.Start(HandleHere, settings.messageDeadline);
    g_bus = &bus;
}

void LeaveCluster() {
    if (Bus* const bus = g_bus) {
        bus->Leave();
    }
}
}  // namespace zorv

uint32_t ZORV_CommRegMsgHandle(uint32_t opcode, ZORV_MSG_HANDLER handler) {
    if (handler == nullptr) {
        return 1;
    }
    return zorv::Guarded("message registration", 1U,
                         [=] { return zorv::LocalDelivery().Register(opcode, handler) ? 0U : 1U; });
}

uint32_t ZORV_CommSendAckMsg(ZORV_COMM_INFO_S* info, void* data, uint32_t length) {
    if (info == nullptr || (data == nullptr && length > 0)) {
        return 1;
    }
    return zorv::Guarded("message answer", 1U, [=] {
        return zorv::LocalDelivery().Acknowledge(info->sequence, data, length) ? 0U : 1U;
    });
}

void ZORV_CommFillinCommInfoInner(ZORV_COMM_INFO_S* info, uint32_t dstNid, uint32_t module, uint32_t opcode,
                                  uint32_t length, uint32_t needReply) {
    *info = {zorv::GetHostSettings().node, dstNid, module, opcode, length, needReply, 0};
}

uint32_t ZORV_CommSendRequestMsg(ZORV_COMM_INFO_S* info, void* request, ZORV_COMM_RET_S* reply) {
    if (info == nullptr || reply == nullptr) {
        return 1;
    }
    *reply = {};
    return zorv::Guarded("message request", 1U, [=] { return zorv::SendRequest(*info, request, *reply); });
}

void ZORV_CommFreeRetData(ZORV_COMM_RET_S* reply) {
    if (reply != nullptr) {
        std::free(reply->data);
        reply->data = nullptr;
    }
}

uint32_t ZORV_GetMasterNid() {
    return zorv::GetHostSettings().master;
}

uint32_t ZORV_GetLocalNid() {
    return zorv::GetHostSettings().node;
}

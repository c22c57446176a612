#include "agent/agent_message.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <cstring>
#include <functional>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

#include "host/services/settings.h"

namespace {
enum : uint32_t { NODE = 7, ECHO = 1, EMPTY, TWICE, SILENT, THROWING, LATE, PATIENT, UNKNOWN };

// What the handler below leaves behind, and waits for.
std::mutex g_mutex;
std::condition_variable g_changed;
std::thread::id g_handlerThread;
std::optional<uint32_t> g_secondAck, g_lateAck;
bool g_released = false;

void Change(const std::function<void()>& change) {
    const std::lock_guard<std::mutex> lock(g_mutex);
    change();
    g_changed.notify_all();
}

void Await(const std::function<bool()>& condition) {
    std::unique_lock<std::mutex> lock(g_mutex);
    EXPECT_TRUE(g_changed.wait_for(lock, std::chrono::seconds(30), condition));
}

// Answers with the message, each opcode in its own way.
uint32_t Handle(ZORV_COMM_INFO_S* info, char* msg, void* /*context*/) {
    Change([] { g_handlerThread = std::this_thread::get_id(); });
    EXPECT_EQ(info->srcNid, NODE);
    const uint32_t opcode = info->msgOPCode;
    if (opcode == THROWING) {
        throw std::runtime_error("a handler's own");
    }
    if (opcode == SILENT) {
        return 0;
    }
    if (opcode == LATE) {  // when its requester has given up, and the next one waits
        Await([] { return g_released; });
    }
    if (opcode == PATIENT) {  // when that late answer has come
        Change([] { g_released = true; });
        Await([] { return g_lateAck.has_value(); });
    }
    const uint32_t result = ZORV_CommSendAckMsg(info, msg, opcode == EMPTY ? 0 : info->msgLen);
    if (opcode == LATE) {
        Change([=] { g_lateAck = result; });
    }
    if (opcode == TWICE) {
        Change([=] { g_secondAck = ZORV_CommSendAckMsg(info, msg, 1); });
    }
    return 0;
}

// The answer's text; nothing when the request failed.
std::optional<std::string> Ask(uint32_t node, uint32_t opcode, std::string text) {
    ZORV_COMM_INFO_S info;
    std::memset(&info, 0xff, sizeof info);
    ZORV_CommFillinCommInfoInner(&info, node, 422, opcode, static_cast<uint32_t>(text.size()), 1);
    ZORV_COMM_RET_S reply = {text.data(), 99, 99};
    if (ZORV_CommSendRequestMsg(&info, text.data(), &reply) != 0) {
        EXPECT_EQ(reply.data, nullptr);
        return std::nullopt;
    }
    const std::string answer(static_cast<char*>(reply.data), reply.length);
    ZORV_CommFreeRetData(&reply);
    EXPECT_EQ(reply.data, nullptr);
    return answer;
}

void UseDeadline(std::chrono::milliseconds deadline) {
    HostSettings settings;
    settings.node = settings.master = NODE;
    settings.messageDeadline = deadline;
    SetHostSettings(settings);
}

TEST(MessageTest, AnswersAndDeadlines) {
    UseDeadline(std::chrono::seconds(30));
    EXPECT_EQ(ZORV_GetLocalNid(), NODE);
    EXPECT_EQ(ZORV_GetMasterNid(), NODE);
    for (const uint32_t opcode : {ECHO, EMPTY, TWICE, SILENT, THROWING, LATE, PATIENT}) {
        EXPECT_EQ(ZORV_CommRegMsgHandle(opcode, Handle), 0U);
        EXPECT_NE(ZORV_CommRegMsgHandle(opcode, Handle), 0U);
    }
    EXPECT_EQ(Ask(NODE, ECHO, "one"), "one");
    EXPECT_NE(g_handlerThread, std::this_thread::get_id());
    EXPECT_EQ(Ask(NODE, EMPTY, "x"), "");
    EXPECT_EQ(Ask(NODE, TWICE, "first"), "first");
    Await([] { return g_secondAck.has_value(); });
    EXPECT_NE(g_secondAck, 0U);
    EXPECT_EQ(Ask(NODE, UNKNOWN, "x"), std::nullopt);
    EXPECT_EQ(Ask(NODE + 1, ECHO, "x"), std::nullopt);

    UseDeadline(std::chrono::milliseconds(20));
    EXPECT_EQ(Ask(NODE, SILENT, ""), std::nullopt);
    EXPECT_EQ(Ask(NODE, THROWING, "x"), std::nullopt);
    EXPECT_EQ(Ask(NODE, LATE, "late"), std::nullopt);

    UseDeadline(std::chrono::seconds(30));
    EXPECT_EQ(Ask(NODE, PATIENT, "right"), "right");
    EXPECT_NE(g_lateAck, 0U);
}
}  // namespace

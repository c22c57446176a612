#include "host/cluster/bus.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <future>
#include <random>
#include <vector>

#include "host/cluster/plain_tcp.h"
#include "host/process/immortal.h"
#include "tests/host/temp_root.h"

namespace {
using std::chrono::steady_clock;
using namespace std::chrono_literals;
using namespace zorv;

enum : uint32_t { OWN = 1, OTHER, FAKE, UNKNOWN, STORE = 0x70002120, BLOCK = 0x12345678 };
const std::string VALUE("\3\0\0\0", 4);

BusFrame Store(uint64_t moment, uint32_t opcode = STORE, uint32_t node = OWN) {
    return {FrameKind::REQUEST, OTHER, node, 422, opcode, 1, moment, VALUE};
}

TEST(FrameTest, IsDecodedWholeOrNotAtAll) {
    const std::string bytes = EncodeFrame(Store(0x0102030405060708));
    EXPECT_EQ(bytes,
              std::string("ZBUS\0\1\0\3\0\0\0\2\0\0\0\1\0\0\1\xA6\x70\0\x21\x20\0\0\0\1\1\2\3\4\5\6\7\x8"
                          "\0\0\0\4\3\0\0\0",
                          44));
    EXPECT_EQ(EncodeFrame(DecodeFrame(bytes).value()), bytes);
    for (size_t length = 0; length < bytes.size(); ++length) {
        EXPECT_FALSE(DecodeFrame(bytes.substr(0, length)).has_value()) << length;
    }
    EXPECT_FALSE(DecodeFrame(bytes + '\0').has_value());
    for (const auto& [place, byte] :
         {std::pair(0, 'z'), {3, 'T'}, {4, 1}, {5, 2}, {6, 1}, {7, 0}, {7, 1}, {7, 6}, {36, -1}, {39, 3}}) {
        std::string damaged = bytes;
        damaged[static_cast<size_t>(place)] = static_cast<char>(byte);
        EXPECT_FALSE(DecodeFrame(damaged).has_value()) << place;
    }
    EXPECT_EQ(PayloadLength(std::string(bytes).replace(37, 1, "\1")), std::nullopt) << "too long";
}

TEST(PlainTcpTest, StaysOnThisMachineOrInPrivateNetworks) {
    for (const char* host :
         {"localhost", "127.255.0.1", "10.0.0.1", "172.16.0.0", "172.31.255.255", "192.168.9.9",
          "169.254.1.1", "[::1]", "[fdff::1]", "[febf::1]", "[::ffff:10.0.0.1]"}) {
        EXPECT_NE(WarnOfPlainTcp({{1, "tcp://" + std::string(host) + ":1"}}, false), "") << host;
    }
    for (const char* host :
         {"0.0.0.0", "[::]", "[::2]", "9.255.255.255", "172.15.255.255", "172.32.0.0", "192.169.0.1",
          "[fe00::1]", "[fec0::1]", "[::ffff:11.0.0.1]", "no.such.host.invalid"}) {
        const NodeAddresses nodes = {{1, "ipc:///a"}, {2, "tcp://" + std::string(host) + ":1"}};
        EXPECT_THROW(WarnOfPlainTcp(nodes, false), std::runtime_error) << host;
        EXPECT_NE(WarnOfPlainTcp(nodes, true), "");
    }
    EXPECT_EQ(WarnOfPlainTcp({{1, "ipc:///a"}, {2, "tls+tcp://8.8.8.8:1"}}, false), "");
}

// Two nodes in one process, and a third that a test plays itself.
class BusTest : public testing::Test {
protected:
    BusTest() {
        static std::vector<const Bus*> reached;  // what its threads use is not lost
        reached.push_back(&own);
        own.Start([this](const auto& info, const void* payload, auto) { return Serve(info, payload); }, 30s);
    }

    std::optional<Answer> Serve(const ZORV_COMM_INFO_S& info, const void* payload) {
        if (info.msgOPCode == STORE) {
            ++stored;
            const std::string_view value(static_cast<const char*>(payload), info.msgLen);
            onlyValue = onlyValue && (value.size() != VALUE.size() || value == VALUE);
        } else if (info.msgOPCode == BLOCK) {
            blocked.set_value();
            unblock.get_future().wait();
        }
        return info.msgOPCode == UNKNOWN ? std::nullopt : std::optional(CopyAnswer(payload, info.msgLen));
    }

    // Node 2 asks; the answer's text.
    std::string Ask(uint32_t node, uint32_t opcode, std::chrono::milliseconds deadline = 30s) {
        const auto start = steady_clock::now();
        const auto answer = other.Request({OTHER, node, 422, opcode, 4, 1, 0}, VALUE.data(), deadline);
        EXPECT_LT(steady_clock::now() - start, deadline + 20s);  // the machine may be busy
        return answer.has_value() ? std::string(static_cast<char*>(answer->data.get()), answer->length)
                                  : "none";
    }

    // A plain socket that is connected to the node.
    int Reach(const std::string& node) {
        sockaddr_un address = {AF_UNIX, {}};
        root.Path(node).copy(address.sun_path, sizeof address.sun_path - 1);
        const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
        EXPECT_EQ(connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        return fd;
    }

    const TempRoot root;
    const NodeAddresses addresses = {{OWN, "ipc://" + root.Path("/own")},
                                     {OTHER, "ipc://" + root.Path("/other")},
                                     {FAKE, "ipc://" + root.Path("/fake")}};
    std::atomic<int> stored{0};
    std::atomic<bool> onlyValue{true};
    std::promise<void> blocked, unblock;
    Bus& own = MakeImmortal<Bus>(OWN, addresses);
    Bus other{OTHER, addresses};  // which asks only
};

TEST_F(BusTest, AnswersWhatIsRightAndInTime) {
    auto slow = std::async(std::launch::async, [this] { return Ask(OWN, BLOCK); });
    blocked.get_future().wait();
    Connection connection(addresses.at(OWN), steady_clock::now() + 30s);
    const std::pair<BusFrame, FrameKind> cases[] = {
        {Store(UINT64_MAX), FrameKind::ANSWER},
        {Store(1), FrameKind::NO_ANSWER},  // its time is long over
        {Store(UINT64_MAX, UNKNOWN), FrameKind::NO_ANSWER},
        {Store(UINT64_MAX, STORE, FAKE), FrameKind::NO_ANSWER},
    };
    for (const auto& [frame, reply] : cases) {
        connection.Send(frame);
        EXPECT_EQ(connection.Receive().kind, reply);
    }
    EXPECT_EQ(stored, 1);
    unblock.set_value();
    EXPECT_EQ(slow.get(), VALUE);
}

TEST_F(BusTest, TakesNothingElseForAnAnswer) {
    Listener fake(addresses.at(FAKE));
    EXPECT_EQ(Ask(FAKE, STORE, 100ms), "none") << "of one that accepts only";
    fake.Accept(1s);
    const BusFrame time = {FrameKind::TELL_TIME, FAKE, OTHER, 0, STORE, 0, 0, {}};
    const BusFrame answer = {FrameKind::ANSWER, FAKE, OTHER, 0, STORE, 0, 0, "right"};
    const BusFrame ofOther = {FrameKind::ANSWER, OWN, OTHER, 0, STORE, 0, 0, "wrong"};
    const BusFrame toOther = {FrameKind::ANSWER, FAKE, OTHER, 0, UNKNOWN, 0, 0, "wrong"};
    const std::vector<BusFrame> cases[] = {
        {}, {time}, {answer}, {time, time}, {time, ofOther}, {time, toOther}, {time, answer}};
    for (const auto& frames : cases) {
        const bool isRight = &frames == std::end(cases) - 1;
        const auto player = std::async(std::launch::async, [&, &frames = frames] {
            const auto connection = fake.Accept(30s);
            for (const BusFrame& frame : frames) {
                connection->Receive();
                connection->Send(frame);
            }
            EXPECT_THROW((connection->Receive(), connection->Receive()), std::runtime_error);  // it gives up
        });
        EXPECT_EQ(Ask(FAKE, STORE, isRight ? 30s : 200ms), isRight ? "right" : "none") << &frames - cases;
    }
}

// A hundred silent ones: sixteen have places, of which any is for whoever comes. Who talks on is heard as
// long as the bus was told.
TEST_F(BusTest, BoundsPlacesAndTime) {
    std::vector<int> silent(100);
    for (int& fd : silent) {
        fd = Reach("/own");
        send(fd, "Z", 1, MSG_NOSIGNAL);
    }
    EXPECT_EQ(Ask(OWN, STORE), VALUE);
    char byte = 0;
    const auto isOpen = [&](int fd) { return recv(fd, &byte, 1, MSG_DONTWAIT) != 0; };
    const auto end = steady_clock::now() + 30s;
    while (std::count_if(silent.begin(), silent.end(), isOpen) > 16 && steady_clock::now() < end) {
    }
    EXPECT_LE(std::count_if(silent.begin(), silent.end(), isOpen), 16);
    std::for_each(silent.begin(), silent.end(), close);

    static Bus& hasty = MakeImmortal<Bus>(FAKE, addresses);
    hasty.Start([](const auto&...) { return std::optional<Answer>(); }, 50ms);
    Connection talker(addresses.at(FAKE), end);
    const auto talk = [&] {
        for (;;) {
            talker.Send({FrameKind::ASK_TIME, OTHER, FAKE, 0, STORE, 0, 0, {}});
            talker.Receive();
        }
    };
    EXPECT_THROW(talk(), std::runtime_error);
    EXPECT_LT(steady_clock::now(), end);
}

// A hundred thousand messages, each damaged in up to three bytes; the last of fifty on a connection is none.
TEST_F(BusTest, SurvivesGarbage) {
    std::mt19937 random(1);
    const std::string good = EncodeFrame(Store(UINT64_MAX));
    std::string bytes;
    for (int i = 1; i <= 100000; ++i) {
        bytes += good;
        for (size_t damages = random() % 4; damages > 0; --damages) {
            bytes[bytes.size() - good.size() + 8 + random() % 28] = static_cast<char>(random());
        }
        if (i % 50 == 0) {
            bytes[bytes.size() - good.size() + random() % FRAME_HEADER] = static_cast<char>(random());
            bytes.resize(bytes.size() - 1 - random() % good.size());
            const int fd = Reach("/own");
            send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            shutdown(fd, SHUT_WR);
            for (char reply[4096]; read(fd, reply, sizeof reply) > 0;) {
            }
            close(fd);
            bytes.clear();
        }
    }
    EXPECT_EQ(Ask(OWN, STORE), VALUE);
    EXPECT_GT(stored, 100000 / 5) << "the undamaged ones, at least";
    EXPECT_TRUE(onlyValue);
}
}  // namespace

// What nodes send to each other, as bytes: a frame is one message in a fixed byte order, whatever carries it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zorv {
enum class FrameKind : uint16_t {
    ASK_TIME = 1,  // what is the time on your clock?
    TELL_TIME,     // `moment` is
    REQUEST,       // run the handler, unless your clock shows `moment` or later
    ANSWER,        // what the handler answered
    NO_ANSWER      // there is none, and none will come
};

constexpr size_t LARGEST_PAYLOAD = 65536;
constexpr size_t FRAME_HEADER = 40;  // bytes before the payload

struct BusFrame {
    FrameKind kind = FrameKind::NO_ANSWER;
    uint32_t srcNid = 0, dstNid = 0;  // node ids
    uint32_t module = 0;              // these three: as in ZORV_COMM_INFO_S
    uint32_t opcode = 0;
    uint32_t needReply = 0;
    uint64_t moment = 0;       // milliseconds on the clock of the node that is asked
    std::string_view payload;  // bytes of somebody else; only a request and an answer have any
};

// The frame as bytes. Throws std::length_error when the payload is longer than LARGEST_PAYLOAD.
std::string EncodeFrame(const BusFrame& frame);

// How many bytes of payload come after these, the first FRAME_HEADER of a frame; nothing when no frame of
// this version begins so. The same holds for these bytes as below.
std::optional<size_t> PayloadLength(std::string_view header);

// The frame that `bytes` are, with its payload among them; nothing when they are no frame of this version,
// from the first byte to the last. Any bytes will do; no state is kept.
std::optional<BusFrame> DecodeFrame(std::string_view bytes);
}  // namespace zorv

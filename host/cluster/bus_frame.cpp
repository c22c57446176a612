#include "host/cluster/bus_frame.h"

#include <stdexcept>

namespace zorv {
namespace {
constexpr uint32_t MAGIC = 0x5A425553;  // "ZBUS"
constexpr uint16_t VERSION = 1;

// The most significant byte first.
template <typename T>
void Put(std::string& bytes, T number) {
    for (size_t left = sizeof number; left > 0; --left) {
        bytes.push_back(static_cast<char>(uint64_t{number} >> (8 * (left - 1)) & 0xFFU));
    }
}

// Takes a number off the front; there are enough bytes.
template <typename T>
T Take(std::string_view& bytes) {
    uint64_t number = 0;
    for (size_t i = 0; i < sizeof(T); ++i) {
        number = number << 8U | static_cast<unsigned char>(bytes[i]);
    }
    bytes.remove_prefix(sizeof(T));
    return static_cast<T>(number);
}

bool IsKind(uint16_t kind) {
    return kind >= static_cast<uint16_t>(FrameKind::ASK_TIME) &&
           kind <= static_cast<uint16_t>(FrameKind::NO_ANSWER);
}

bool MayCarry(FrameKind kind, size_t length) {
    const bool carrier = kind == FrameKind::REQUEST || kind == FrameKind::ANSWER;
    return length <= (carrier ? LARGEST_PAYLOAD : 0);
}

// Takes the header off the front: the frame without its payload, and the length of that.
std::optional<BusFrame> TakeHeader(std::string_view& bytes, size_t& length) {
    if (bytes.size() < FRAME_HEADER || Take<uint32_t>(bytes) != MAGIC || Take<uint16_t>(bytes) != VERSION) {
        return std::nullopt;
    }
    const auto kind = Take<uint16_t>(bytes);
    BusFrame frame;
    frame.kind = static_cast<FrameKind>(kind);
    frame.srcNid = Take<uint32_t>(bytes);
    frame.dstNid = Take<uint32_t>(bytes);
    frame.module = Take<uint32_t>(bytes);
    frame.opcode = Take<uint32_t>(bytes);
    frame.needReply = Take<uint32_t>(bytes);
    frame.moment = Take<uint64_t>(bytes);
    length = Take<uint32_t>(bytes);
    return IsKind(kind) && MayCarry(frame.kind, length) ? std::optional<BusFrame>(frame) : std::nullopt;
}
}  // namespace

std::string EncodeFrame(const BusFrame& frame) {
    if (!MayCarry(frame.kind, frame.payload.size())) {
        throw std::length_error("a message of " + std::to_string(frame.payload.size()) +
                                " bytes is too long");
    }
    std::string bytes;
    bytes.reserve(FRAME_HEADER + frame.payload.size());
    Put(bytes, MAGIC);
    Put(bytes, VERSION);
    Put(bytes, static_cast<uint16_t>(frame.kind));
    Put(bytes, frame.srcNid);
    Put(bytes, frame.dstNid);
    Put(bytes, frame.module);
    Put(bytes, frame.opcode);
    Put(bytes, frame.needReply);
    Put(bytes, frame.moment);
    Put(bytes, static_cast<uint32_t>(frame.payload.size()));
    return bytes.append(frame.payload);
}

std::optional<size_t> PayloadLength(std::string_view header) {
    size_t length = 0;
    return TakeHeader(header, length).has_value() ? std::optional<size_t>(length) : std::nullopt;
}

std::optional<BusFrame> DecodeFrame(std::string_view bytes) {
    size_t length = 0;
    std::optional<BusFrame> frame = TakeHeader(bytes, length);
    if (!frame.has_value() || bytes.size() != length) {
        return std::nullopt;
    }
    frame->payload = bytes;
    return frame;
}
}  // namespace zorv

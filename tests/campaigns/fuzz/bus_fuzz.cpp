// Any bytes as a message from another node.
#include "campaigns/fuzz/fuzz.h"
#include "host/cluster/bus_frame.h"

using namespace zorv;

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::optional<BusFrame> frame = DecodeFrame(bytes);
    const std::optional<size_t> length = PayloadLength(bytes.substr(0, FRAME_HEADER));
    Demand(!frame || length == frame->payload.size(), "a frame's header tells how long it is");
    Demand(!frame || EncodeFrame(*frame) == bytes, "what is taken for a frame is the bytes of that frame");
    return 0;
}

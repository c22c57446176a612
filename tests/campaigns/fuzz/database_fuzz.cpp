// A damaged statistics database. The first byte chooses a command; then come patches: an offset in two bytes,
// a length, and as many bytes for there; a patch of none cuts the file off at its offset.
#include <algorithm>

#include "campaigns/fuzz/fuzz.h"
#include "fault_database/fault_database.h"

static std::string Damaged(std::string file, const uint8_t* patch, const uint8_t* end) {
    while (end - patch >= 3 && !file.empty()) {
        const size_t offset = static_cast<size_t>(patch[0] + patch[1] * 256) % file.size();
        const size_t length =
            std::min({size_t{patch[2]}, static_cast<size_t>(end - patch - 3), file.size() - offset});
        file.replace(offset, length, reinterpret_cast<const char*>(patch) + 3, length);
        file.resize(patch[2] == 0 ? offset : file.size());
        patch += 3 + length;
    }
    return file;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const FuzzNode node;
    static const std::string whole = BytesOf(node.world.Path(LUMO_DATABASE_FILE));
    static const std::string commands[] = {"showvalidtime",           "datashow A " + RANGE + " 9",
                                           "delaydetect " + RANGE,    "delayanal " + RANGE,
                                           "showallerr " + RANGE,     "errcodeshow IOERROR ALL " + RANGE,
                                           "errcodeshowall " + RANGE, "showgraph maplumodata B " + RANGE};
    if (size > 0) {
        FuzzNode::Renew();
        FaultDataBaseRelease();
        node.world.Write(LUMO_DATABASE_FILE, Damaged(whole, data + 1, data + size));
        FaultDataBaseInit();
        FuzzNode::Type(commands[data[0] % std::size(commands)]);
    }
    return 0;
}

// Any bytes as a console line: cut into words as the local host does it, and given to the plug-in's handlers.
#include <algorithm>

#include "campaigns/fuzz/fuzz.h"
#include "host/command/command_line.h"

static bool IsControl(uint8_t letter) {
    return (letter < ' ' && letter != '\n' && letter != '\t') || letter == 0x7f;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const FuzzNode node;
    const std::string line(reinterpret_cast<const char*>(data), size);
    FuzzNode::Renew();
    try {
        const zorv::Words words = zorv::SplitLine(line);
        // Days of synthetic samples take long, and no other code than an hour of them.
        const bool takesLong =
            words.size() == 3 && words[0] == "simudetect" && words[1].substr(0, 10) != words[2].substr(0, 10);
        const std::string screen = takesLong ? "" : FuzzNode::Type(line);
        Demand(std::any_of(data, data + size, IsControl) ||
                   std::none_of(screen.begin(), screen.end(), IsControl),
               "no control characters but those that were typed");
    } catch (const zorv::UsageError&) {
    }
    return 0;
}

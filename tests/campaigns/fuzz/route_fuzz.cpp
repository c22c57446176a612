// Any bytes as the route configuration: read as at start-up, then used by commands, on a small stack.
#include <thread>

#include "campaigns/fuzz/fuzz.h"
#include "fault_server/fault_diagnose.h"

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const FuzzNode node;
    static pthread_attr_t small;
    static const bool isSmall = pthread_attr_init(&small) + pthread_attr_setstacksize(&small, 256 * 1024) +
                                    pthread_setattr_default_np(&small) ==
                                0;
    Demand(isSmall, "threads have small stacks");
    static const std::string commands[] = {"errcodeshow IOERROR ALL ",
                                           "errcodeshow IORETRY POOL ",
                                           "showgraph mapgraph A ",
                                           "showgraph mapnodeinfo A ",
                                           "showfaultfactor SAN_PROTOL ",
                                           "errcodeshowall ",
                                           "showallerr "};
    FuzzNode::Renew();
    node.world.Config({reinterpret_cast<const char*>(data), size});
    std::thread([size] {
        ZorvSmartDiagnoseJsonObjectInit();
        FuzzNode::Type("delayanal " + RANGE);
        FuzzNode::Type(commands[size % std::size(commands)] + RANGE);
    }).join();
    return 0;
}

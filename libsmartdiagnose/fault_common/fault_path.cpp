#include "fault_common/fault_path.h"

#include "agent/agent_storage.h"

std::string FaultPath(const char* fixedPath) {
    // The service is optional: its address is null where the agent does not define it.
    const char* root = vopx_root_directory != nullptr ? vopx_root_directory() : nullptr;
    return (root != nullptr ? std::string(root) : std::string()) + fixedPath;
}

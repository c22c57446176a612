#include "agent/agent_storage.h"
#include "host/process/settings.h"

const char* vopx_root_directory() {
    const std::string& root = zorv::GetHostSettings().root;
    return root.empty() ? nullptr : root.c_str();
}

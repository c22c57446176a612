#include "agent/agent_storage.h"
#include "host/services/settings.h"

const char* vopx_root_directory() {
    const std::string& root = GetHostSettings().root;
    return root.empty() ? nullptr : root.c_str();
}

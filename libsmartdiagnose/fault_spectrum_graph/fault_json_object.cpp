#include "fault_spectrum_graph/fault_json_object.h"

#include <json/reader.h>

#include <filesystem>
#include <fstream>
#include <memory>

#include "agent/agent_storage.h"
#include "fault_common/fault_log.h"

namespace {

// Null unless the stream holds one JSON object. The reader throws when the nesting is too deep; its own limit
// of 1,000 ends a thread of 256 KiB of stack.
Json::Value ParseObject(std::istream& stream) {
    Json::CharReaderBuilder reader;
    reader["stackLimit"] = ZORV_ROUTE_CONFIG_NESTING;
    Json::Value parsed;
    std::string error;
    try {
        if (Json::parseFromStream(reader, stream, &parsed, &error) && parsed.isObject()) {
            return parsed;
        }
    } catch (const Json::Exception&) {
        return {};
    }
    return {};
}

}  // namespace

FaultJsonObject* FaultJsonObject::pInstance = nullptr;

FaultJsonObject& FaultJsonObject::GetInstance() {
    if (pInstance == nullptr) {
        pInstance = std::make_unique<FaultJsonObject>().release();
    }
    return *pInstance;
}

uint32_t FaultJsonObject::ParseJsonConfig(const std::string& path) {
    std::ifstream file;
    std::error_code ignored;
    if (std::filesystem::is_regular_file(path, ignored)) {  // to open a pipe would wait for its writer
        file.open(path, std::ios::binary);
    }
    if (!file.is_open()) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "Failed to open the configuration file.");
        return 1;
    }
    root = ParseObject(file);
    if (root.isNull()) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "Failed to parse json data stream.");
        return 1;
    }
    return 0;
}

uint32_t FaultJsonObject::GetGraphValueByKeyTag(const std::string& graphName, const std::string& keyTag,
                                                Json::Value& value) {
    if (keyTag != "nodes" && keyTag != "edges") {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "the key(%s) is incorrect.", keyTag.c_str());
        return 1;
    }
    if (root.isNull()) {
        FAULT_LOG(FAULT_HERE, FAULT_ERROR, "FlowGraph is null.");
        return 1;
    }
    value = root[graphName][keyTag];
    return 0;
}

bool FaultJsonObject::IsMember(const std::string& graphName) const {
    return root.isMember(graphName);
}

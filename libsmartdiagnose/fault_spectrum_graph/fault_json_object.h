// The route configuration: the causality graphs that the analyses walk, as read from one JSON file.
#pragma once

#include <json/value.h>

#include <cstdint>
#include <string>

#include "fault_common/fault_export.h"

// A JSON object whose members are graphs by name, each with the arrays "nodes" and "edges". One instance
// serves the process; it is read at start-up and lives as long as the process. Look-ups may add members (see
// below) and are not guarded: they come from console commands, which run one at a time.
class FAULT_EXPORT FaultJsonObject {
public:
    // The instance; null until GetInstance() or the start-up has created it.
    static FaultJsonObject* pInstance;

    // The instance, created empty if there is none yet.
    static FaultJsonObject& GetInstance();

    // Reads the file at `path` in place of what was read before. Returns 0; 1 when the file cannot be opened
    // (what was read before stays) or does not hold a JSON object (nothing is left). Logs the reason.
    // Blocks on file I/O.
    uint32_t ParseJsonConfig(const std::string& path);

    // Copies member `keyTag` ("nodes" or "edges") of graph `graphName` to `value`. Returns 0; `value` is then
    // null when there is no such graph or member, and the null member is added to the configuration. Returns
    // 1, with `value` unchanged, for another tag or while nothing has been read. Throws Json::LogicError when
    // the graph is no object.
    uint32_t GetGraphValueByKeyTag(const std::string& graphName, const std::string& keyTag,
                                   Json::Value& value);

    // Whether the configuration has a graph of that name. A look-up of a graph that is not there adds it.
    bool IsMember(const std::string& graphName) const;

private:
    Json::Value root;
};

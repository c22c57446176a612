#include "simulator/files/fleet_world.h"

#include "agent/agent_storage.h"
#include "simulator/files/replaced_file.h"
#include "simulator/files/world_files.h"
#include "simulator/plan/fleet_plan.h"

namespace lumosim {
namespace {
namespace fs = std::filesystem;

constexpr char TRUTH_FILE[] = "truth.json";

// As a copy is that was interrupted.
void Break(const fs::path& root) {
    constexpr uintmax_t PART = 3;
    const fs::path statistics = root.string() + LUMO_DATABASE_FILE;
    fs::resize_file(statistics, fs::file_size(statistics) / PART);
}

Json::Value FaultOf(const FleetNode& node, const PlantedFault& fault) {
    Json::Value value;
    value["node"] = node.name;
    value["point"] = std::string(fault.recipe.point);
    value["since_epoch"] = Json::Int64{fault.start};
    value["until_epoch"] = Json::Int64{fault.last};
    return value;
}

Json::Value NodeValue(const FleetNode& node) {
    Json::Value value;
    value["node"] = node.name;
    value["role"] = WordOf(node.role);
    value["scenario"] = node.options.scenario;
    return value;
}

}  // namespace

WorldSummary WriteFleet(const WorldOptions& options, int64_t count, const Progress& progress) {
    WorldSummary all{0, 0, options.root / TRUTH_FILE};
    Json::Value truth;
    truth["version"] = 1;
    truth["fault"] = Json::Value();
    truth["nodes"] = Json::Value(Json::arrayValue);
    const std::vector<FleetNode> nodes = PlanFleet(options, count);
    for (size_t i = 0; i < nodes.size(); ++i) {
        const WorldModel model(nodes[i].options);
        const WorldSummary summary = WriteWorld(model, [&](double done) {
            progress((static_cast<double>(i) + done) / static_cast<double>(nodes.size()));
        });
        all.pointCount += summary.pointCount;
        all.rowCount += summary.rowCount;
        if (nodes[i].role == FleetRole::BROKEN) {
            Break(nodes[i].options.root);
        }
        if (nodes[i].role == FleetRole::CAUSE && model.plan.Fault() != nullptr) {
            truth["fault"] = FaultOf(nodes[i], *model.plan.Fault());
        }
        truth["nodes"].append(NodeValue(nodes[i]));
    }
    ReplacedFile file(all.truthFile);
    file.Write(JsonText(truth));
    file.Commit();
    return all;
}

}  // namespace lumosim

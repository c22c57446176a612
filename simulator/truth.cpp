#include "simulator/truth.h"

#include "simulator/error_choice.h"
#include "simulator/json_text.h"
#include "simulator/local_time.h"

namespace lumosim {
namespace {

bool IsDelay(const PlantedFault& fault) {
    return fault.recipe.kind == FaultKind::DELAY;
}

std::string_view DetectorPoint(const PlantedFault& fault) {
    return fault.path.front().points.front();
}

// The points from top to bottom; one that hands over to a graph of its own name is there once.
Json::Value PathValue(const GraphPath& path) {
    Json::Value value(Json::arrayValue);
    for (const GraphStretch& stretch : path) {
        for (const std::string_view point : stretch.points) {
            if (value.empty() || value[value.size() - 1].asString() != point) {
                value.append(std::string(point));
            }
        }
    }
    return value;
}

// The way as a walk goes it, graph after graph: to the last point that is a trace point.
Json::Value WalkValue(const Topology& topology, const GraphPath& path) {
    Json::Value value(Json::arrayValue);
    for (const GraphStretch& stretch : path) {
        Json::Value& part = value.append(Json::Value(Json::objectValue));
        part["graph"] = std::string(stretch.graph);
        for (const std::string_view point : stretch.points) {
            if (!topology.Points()[topology.IndexOf(point)].IsObservation()) {
                part["points"].append(std::string(point));
            }
        }
    }
    return value;
}

Json::Value FaultValue(const WorldOptions& options, const Topology& topology, const PlantedFault& fault,
                       const PeakFinder& peak) {
    Json::Value value(Json::objectValue);
    value["kind"] = IsDelay(fault) ? "delay" : "error";
    value["point"] = std::string(fault.recipe.point);
    value["graph"] = std::string(fault.path.back().graph);
    value["advice"] = std::string(topology.Points()[topology.IndexOf(fault.recipe.point)].advice);
    value["path"] = PathValue(fault.path);
    value["walk"] = Json::Value();
    value["answer"] = Json::Value();
    if (IsDelay(fault) || BeginsErrorWalk(fault.recipe.graph)) {
        value["walk"] = WalkValue(topology, fault.path);
        const Json::Value& points = value["walk"][value["walk"].size() - 1]["points"];
        value["answer"] = points[points.size() - 1];
    }
    value["detector_point"] = IsDelay(fault) ? Json::Value(std::string(DetectorPoint(fault))) : Json::Value();
    if (!IsDelay(fault)) {
        value["error_type"] = std::string(ERROR_TYPES[static_cast<size_t>(fault.recipe.errorColumn)]);
        value["error_column"] = "errCode" + std::to_string(fault.recipe.errorColumn);
    }
    value["start_epoch"] = Json::Int64{fault.start};
    value["end_epoch"] = Json::Int64{fault.last};
    value["peak_epoch"] = Json::Int64{peak.Time()};
    value["peak_local"] = ReadableTime(peak.Time(), options.zoneOffset);
    value["peak_compact"] = CompactTime(peak.Time(), options.zoneOffset);
    value["peak_value"] = Json::Int64{peak.Value()};
    return value;
}

Json::Value EventValue(const HealEvent& event) {
    Json::Value value(Json::objectValue);
    value["healtime"] = event.time;
    value["modulename"] = std::string(event.recipe.module);
    value["healcause"] = std::string(event.recipe.cause);
    value["infercause"] = std::string(event.recipe.inferredCause);
    value["nodeid"] = event.recipe.node;
    return value;
}

}  // namespace

PeakFinder::PeakFinder(const Topology& topology, const Plan& worldPlan) : plan(worldPlan) {
    if (const PlantedFault* fault = plan.Fault()) {
        watched = topology.IndexOf(IsDelay(*fault) ? DetectorPoint(*fault) : fault->recipe.point);
    }
}

void PeakFinder::Observe(size_t point, int64_t sampleTime, const Sample& sample) {
    const PlantedFault* fault = plan.Fault();
    if (fault == nullptr || point != watched) {
        return;
    }
    const FaultRecipe& recipe = fault->recipe;
    const int64_t found = recipe.kind == FaultKind::DELAY
                              ? sample.averageDelay
                              : sample.errorCodes[static_cast<size_t>(recipe.errorColumn)];
    if (found > value) {
        time = sampleTime;
        value = found;
    }
}

std::string Truth(const WorldOptions& options, const Topology& topology, const Plan& plan,
                  const PeakFinder& peak, const std::vector<HealEvent>& events) {
    Json::Value truth(Json::objectValue);
    truth["version"] = 1;
    truth["scenario"] = options.scenario;
    truth["seed"] = Json::UInt64{options.seed};
    truth["start"] = CompactTime(options.Start(), options.zoneOffset);
    truth["start_epoch"] = Json::Int64{options.Start()};
    truth["end"] = CompactTime(options.end, options.zoneOffset);
    truth["end_epoch"] = Json::Int64{options.end};
    truth["step"] = Json::Int64{options.step};
    truth["fault"] =
        plan.Fault() != nullptr ? FaultValue(options, topology, *plan.Fault(), peak) : Json::Value();
    truth["heal_events"] = Json::Value(Json::arrayValue);
    for (const HealEvent& event : events) {
        truth["heal_events"].append(EventValue(event));
    }
    return JsonText(truth);
}

}  // namespace lumosim

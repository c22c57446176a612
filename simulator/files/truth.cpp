#include "simulator/files/truth.h"

#include <algorithm>
#include <numeric>

#include "simulator/files/world_files.h"
#include "simulator/plan/choices.h"
#include "text/local_time.h"

namespace lumosim {
namespace {

bool IsError(const PlantedFault& fault) {
    return fault.recipe.kind == FaultKind::ERROR;
}

const char* NameOf(FaultKind kind) {
    switch (kind) {
        case FaultKind::DELAY:
            return "delay";
        case FaultKind::ERROR:
            return "error";
        case FaultKind::LOAD:
            return "load";
    }
    return "";
}

// Local time as the diagnosis lists it, without leading zeros: 2023/1/5 14:3:0.
std::string ReadableTime(int64_t utc, int64_t zoneOffset) {
    const std::string compact = CompactTime(utc, zoneOffset);
    std::string text = compact.substr(0, 4);
    for (size_t part = 0; part < 5; ++part) {
        text += "// ::"[part] + std::to_string(std::stoi(compact.substr(4 + 2 * part, 2)));
    }
    return text;
}

// The point at the top of all that wait for the fault.
std::string_view TopPoint(const PlantedFault& fault) {
    return fault.path.front().points.front();
}

// Whether that is one at which hosts enter.
bool IsSeenByHosts(const PlantedFault& fault) {
    return !IsError(fault) && IsEntered(fault.recipe.graph);
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
        Json::Value part(Json::objectValue);
        part["graph"] = std::string(stretch.graph);
        for (const std::string_view point : stretch.points) {
            if (!topology.Points()[topology.IndexOf(point)].IsObservation()) {
                part["points"].append(std::string(point));
            }
        }
        if (part.isMember("points")) {
            value.append(part);
        }
    }
    return value;
}

// Where a walk ends; null where it has no point.
Json::Value LastPoint(const Json::Value& walk) {
    if (walk.empty()) {
        return {};
    }
    const Json::Value& points = walk[walk.size() - 1]["points"];
    return points[points.size() - 1];
}

Json::Value StretchValue(const Stretch& stretch, int64_t zoneOffset) {
    Json::Value value(Json::objectValue);
    value["start"] = CompactTime(stretch.first, zoneOffset);
    value["start_epoch"] = Json::Int64{stretch.first};
    value["end"] = CompactTime(stretch.last, zoneOffset);
    value["end_epoch"] = Json::Int64{stretch.last};
    return value;
}

Json::Value PlantedValue(const WorldOptions& options, const Topology& topology, const Plan& plan,
                         const PlantedFault& fault) {
    Json::Value value(Json::objectValue);
    value["kind"] = NameOf(fault.recipe.kind);
    value["point"] = std::string(fault.recipe.point);
    value["graph"] = std::string(fault.path.back().graph);
    value["advice"] = std::string(topology.Points()[topology.IndexOf(fault.recipe.point)].advice);
    value["path"] = PathValue(fault.path);
    value["start_epoch"] = Json::Int64{fault.start};
    value["end_epoch"] = Json::Int64{fault.last};
    value["ongoing"] = plan.IsOngoing(fault);
    for (const Stretch& burst : fault.bursts) {
        value["times"].append(StretchValue(burst, options.zoneOffset));
    }
    return value;
}

Json::Value FaultValue(const WorldOptions& options, const Topology& topology, const Plan& plan,
                       const PeakFinder& peak) {
    const PlantedFault& fault = *plan.Fault();
    Json::Value value = PlantedValue(options, topology, plan, fault);
    value["walk"] = Json::Value();
    value["answer"] = Json::Value();
    if (IsError(fault) ? IsEntered(fault.recipe.graph) : fault.recipe.isWalked) {
        value["walk"] = WalkValue(topology, fault.path);
        value["answer"] = LastPoint(value["walk"]);
    }
    const bool isSeen = IsSeenByHosts(fault);
    value["detector_point"] = isSeen ? Json::Value(std::string(TopPoint(fault))) : Json::Value();
    if (IsError(fault)) {
        value["error_type"] = std::string(ERROR_TYPES[static_cast<size_t>(fault.recipe.errorColumn)]);
        value["error_column"] = "errCode" + std::to_string(fault.recipe.errorColumn);
    }
    value["flagged"] = IsError(fault) ? Json::Value() : Json::Value(isSeen && peak.StandsOut());
    value["peak_epoch"] = Json::Int64{peak.Time()};
    value["peak_local"] = ReadableTime(peak.Time(), options.zoneOffset);
    value["peak_compact"] = CompactTime(peak.Time(), options.zoneOffset);
    value["peak_value"] = Json::Int64{peak.Value()};
    return value;
}

// The faults at the time of the first one, those first that add most to the delay that hosts see.
std::vector<const PlantedFault*> LargestFirst(const Topology& topology, const Plan& plan) {
    const PlantedFault& first = plan.Faults().front();
    std::vector<const PlantedFault*> faults;
    for (const PlantedFault& fault : plan.Faults()) {
        if (fault.start == first.start) {
            faults.push_back(&fault);
        }
    }
    const size_t seen = topology.IndexOf(TopPoint(first));
    const auto delay = [seen](const PlantedFault* fault) {
        return std::accumulate(fault->added[seen].begin(), fault->added[seen].end(), 0.0);
    };
    std::stable_sort(faults.begin(), faults.end(),
                     [&](const auto* a, const auto* b) { return delay(a) > delay(b); });
    return faults;
}

// What an explanation of the latest delay must come to.
Json::Value ExplanationValue(const Topology& topology, const Plan& plan) {
    Json::Value value(Json::objectValue);
    const PlantedFault* first = plan.Fault();
    const bool isSlow = first != nullptr && !IsError(*first);
    value["graph"] = isSlow ? Json::Value(std::string(first->path.front().graph)) : Json::Value();
    value["verdict"] = !isSlow ? "nothing" : first->recipe.kind == FaultKind::LOAD ? "load" : "point";
    value["points"] = Json::Value(Json::arrayValue);
    if (value["verdict"] == "point") {
        for (const PlantedFault* fault : LargestFirst(topology, plan)) {
            if (const Json::Value point = LastPoint(WalkValue(topology, fault->path)); !point.isNull()) {
                value["points"].append(point);
            }
            if (!fault->recipe.twin.empty()) {
                value["points"].append(std::string(fault->recipe.twin));
            }
        }
    }
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
        watched = topology.IndexOf(IsError(*fault) ? fault->recipe.point : TopPoint(*fault));
    }
}

void PeakFinder::Observe(size_t point, int64_t sampleTime, const Sample& sample) {
    const PlantedFault* fault = plan.Fault();
    if (fault == nullptr || point != watched) {
        return;
    }
    const FaultRecipe& recipe = fault->recipe;
    const int64_t found =
        IsError(*fault) ? sample.errorCodes[static_cast<size_t>(recipe.errorColumn)] : sample.averageDelay;
    if (found > value) {
        time = sampleTime;
        value = found;
    }
    ++count;
    const double distance = static_cast<double>(found) - mean;
    mean += distance / count;
    squares += distance * (static_cast<double>(found) - mean);
}

bool PeakFinder::StandsOut() const {
    const double distance = static_cast<double>(value) - mean;
    return distance * distance * (count - 1) > 9 * squares;
}

std::string Truth(const WorldOptions& options, const Topology& topology, const Plan& plan,
                  const PeakFinder& peak, const std::vector<HealEvent>& events) {
    Json::Value truth(Json::objectValue);
    truth["version"] = 1;
    truth["scenario"] = options.scenario;
    truth["seed"] = Json::UInt64{options.seed};
    truth["start"] = CompactTime(options.Start(), options.zoneOffset);
    truth["start_epoch"] = Json::Int64{options.Start()};
    truth["end"] = CompactTime(plan.End(), options.zoneOffset);
    truth["end_epoch"] = Json::Int64{plan.End()};
    truth["step"] = Json::Int64{options.step};
    truth["fault"] = plan.Fault() != nullptr ? FaultValue(options, topology, plan, peak) : Json::Value();
    truth["other_faults"] = Json::Value(Json::arrayValue);
    for (size_t i = 1; i < plan.Faults().size(); ++i) {
        truth["other_faults"].append(PlantedValue(options, topology, plan, plan.Faults()[i]));
    }
    truth["explain"] = ExplanationValue(topology, plan);
    truth["heal_events"] = Json::Value(Json::arrayValue);
    for (const HealEvent& event : events) {
        truth["heal_events"].append(EventValue(event));
    }
    return JsonText(truth);
}

}  // namespace lumosim

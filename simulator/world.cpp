#include "simulator/world.h"

#include <algorithm>
#include <system_error>
#include <vector>

#include "agent/agent_storage.h"
#include "simulator/error_choice.h"
#include "simulator/heal_events.h"
#include "simulator/levels.h"
#include "simulator/noise.h"
#include "simulator/plan.h"
#include "simulator/replaced_file.h"
#include "simulator/route_config.h"
#include "simulator/sample_source.h"
#include "simulator/scenario.h"
#include "simulator/topology.h"
#include "simulator/truth.h"

namespace lumosim {
namespace {
namespace fs = std::filesystem;

void CreateRoot(const fs::path& root) {
    std::error_code error;
    fs::create_directories(root, error);
    if (!error && !fs::is_directory(root, error)) {
        error = std::make_error_code(std::errc::not_a_directory);
    }
    if (error) {
        throw BadInput("cannot create the folder " + root.string() + ": " + error.message());
    }
}

std::vector<GraphTable> GraphsOf(const Scenario& scenario) {
    std::vector<GraphTable> tables = AllGraphs();
    tables.insert(tables.end(), scenario.graphs.begin(), scenario.graphs.end());
    return tables;
}

std::vector<HealEvent> ReportedEvents(const std::vector<HealEvent>& events, const WorldOptions& options) {
    std::vector<HealEvent> reported;
    std::copy_if(events.begin(), events.end(), std::back_inserter(reported),
                 [&](const HealEvent& event) { return IsReported(event, options); });
    return reported;
}

}  // namespace

WorldSummary WriteWorld(const WorldOptions& options, const Progress& progress) {
    CheckOptions(options);
    Scenario scenario = *FindScenario(options.scenario);
    const Topology topology(GraphsOf(scenario));
    ChooseErrors(options, topology, scenario);
    CreateRoot(options.root);
    const Noise noise(options.seed);
    const Levels levels = UsualLevels(topology);
    const Plan plan(options, scenario, topology, levels, noise);
    const SampleSource source(options, topology, levels, plan, noise);

    ReplacedFile config(options.root.string() + ZORV_ROUTE_CONFIG_FILE);
    ReplacedFile heals(options.root.string() + ZORV_HEAL_DATABASE_FILE);
    ReplacedFile statistics(options.root.string() + LUMO_DATABASE_FILE);
    ReplacedFile truth(options.root / "truth.json");

    WorldSummary summary;
    summary.pointCount =
        static_cast<size_t>(std::count_if(topology.Points().begin(), topology.Points().end(),
                                          [](const Point& point) { return !point.IsGroup(); }));
    summary.truthFile = options.root / "truth.json";
    PeakFinder peak(topology, plan);
    const auto observe = [&](size_t point, int64_t time, const Sample& sample) {
        ++summary.rowCount;
        peak.Observe(point, time, sample);
    };
    const std::vector<HealEvent> events = HealEvents(options, scenario, plan);
    config.Write(RouteConfig(topology));
    WriteHealEvents(heals.NewPath(), events);
    WriteStatistics(statistics.NewPath(), options, topology, plan, source, observe, progress);
    truth.Write(Truth(options, topology, plan, peak, ReportedEvents(events, options)));

    // A running reader opens both databases anew when it sees the statistics being replaced.
    for (ReplacedFile* file : {&config, &heals, &statistics, &truth}) {
        file->Commit();
    }
    return summary;
}

}  // namespace lumosim

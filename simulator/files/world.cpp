#include "simulator/files/world.h"

#include <algorithm>
#include <system_error>
#include <vector>

#include "agent/agent_storage.h"
#include "simulator/files/replaced_file.h"
#include "simulator/files/sqlite_file.h"
#include "simulator/files/truth.h"
#include "simulator/files/world_files.h"
#include "simulator/plan/heal_events.h"

namespace lumosim {
namespace {
namespace fs = std::filesystem;

constexpr char TRUTH_FILE[] = "truth.json";

void CreateRoot(const fs::path& root) {
    std::error_code error;
    fs::create_directories(root, error);
    if (!error && !fs::is_directory(root, error)) {
        error = std::make_error_code(std::errc::not_a_directory);
    }
    if (error) {
        throw cli::UsageError("cannot create the folder " + root.string() + ": " + error.message());
    }
}

std::vector<HealEvent> ReportedEvents(const std::vector<HealEvent>& events, const WorldModel& model) {
    std::vector<HealEvent> reported;
    std::copy_if(events.begin(), events.end(), std::back_inserter(reported),
                 [&](const HealEvent& event) { return IsReported(event, model.options, model.plan); });
    return reported;
}

// What a world must not be written over: files of a storage node that no lumo-sim has written.
void CheckReplaceable(const fs::path& root) {
    if (fs::exists(fs::symlink_status(root / TRUTH_FILE))) {
        return;
    }
    for (const char* file : {ZORV_ROUTE_CONFIG_FILE, ZORV_HEAL_DATABASE_FILE, LUMO_DATABASE_FILE}) {
        if (fs::exists(fs::symlink_status(root.string() + file))) {
            throw cli::UsageError(root.string() + file + " is not of a world, as there is no " +
                                  (root / TRUTH_FILE).string() + "; --force replaces it");
        }
    }
}

// The samples that are not written yet.
void ObserveTheFuture(const WorldModel& model, PeakFinder& peak, const Progress& progress) {
    const WorldOptions& options = model.options;
    std::vector<Sample> samples;
    for (int64_t time = options.end; time < model.plan.End(); time += options.step) {
        model.source.Fill(time, samples);
        for (size_t point = 0; point < samples.size(); ++point) {
            peak.Observe(point, time, samples[point]);
        }
        progress(static_cast<double>(time - options.end) /
                 static_cast<double>(model.plan.End() - options.end));
    }
}

}  // namespace

WorldSummary WriteWorld(const WorldOptions& options, const Progress& progress) {
    return WriteWorld(WorldModel(options), progress);
}

WorldSummary WriteWorld(const WorldModel& model, const Progress& progress) {
    const WorldOptions& options = model.options;
    CreateRoot(options.root);
    if (!options.mayReplace) {
        CheckReplaceable(options.root);
    }
    ReplacedFile config(options.root.string() + ZORV_ROUTE_CONFIG_FILE);
    ReplacedFile heals(options.root.string() + ZORV_HEAL_DATABASE_FILE);
    ReplacedFile statistics(options.root.string() + LUMO_DATABASE_FILE);
    ReplacedFile truth(options.root / TRUTH_FILE);

    WorldSummary summary{model.PointCount(), 0, options.root / TRUTH_FILE};
    PeakFinder peak(model.topology, model.plan);
    const auto observe = [&](size_t point, int64_t time, const Sample& sample) {
        ++summary.rowCount;
        peak.Observe(point, time, sample);
    };
    const std::vector<HealEvent> events = HealEvents(options, model.scenario, model.plan);
    config.Write(model.config ? *model.config : RouteConfig(model.topology, options.schema));
    WriteHealEvents(heals.NewPath(), events);
    const double past = static_cast<double>(options.end - options.Start()) /
                        static_cast<double>(model.plan.End() - options.Start());
    WriteStatistics(statistics.NewPath(), model, options.Start(), options.end, observe,
                    [&](double done) { progress(past * done); });
    ObserveTheFuture(model, peak, [&](double done) { progress(past + (1 - past) * done); });
    truth.Write(Truth(options, model.topology, model.plan, peak, ReportedEvents(events, model)));

    // The truth first: who is killed here leaves what the next one knows as a world. A running reader opens
    // both databases anew when it sees the statistics being replaced.
    RecoverDatabase(options.root.string() + LUMO_DATABASE_FILE);
    for (ReplacedFile* file : {&truth, &config, &heals, &statistics}) {
        file->Commit();
    }
    return summary;
}

}  // namespace lumosim

#include "check/plant/proof.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <filesystem>
#include <map>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>
#include <utility>

#include "check/plant/likeness.h"
#include "check/plant/trial.h"
#include "cli/program.h"
#include "text/nearest_name.h"

namespace check {
namespace {

using Trials = std::map<std::string, std::array<Trial, PLANT_SEEDS.size()>>;  // by point

// Lets several threads plant, each into a world of its own, until all is done or one of them fails.
class Planter {
public:
    Planter(const Model& toRead, const ProofOptions& toFollow, std::vector<std::string> likeness,
            Trials& toFill, const std::function<void(size_t, size_t)>& listener)
        : model(toRead), options(toFollow), worldOptions(std::move(likeness)), tell(listener) {
        for (auto& [point, trials] : toFill) {
            for (size_t i = 0; i < trials.size(); ++i) {
                tasks.push_back({&point, PLANT_SEEDS[i], &trials[i]});
            }
        }
    }

    void Run(const std::string& directory) {
        std::vector<std::thread> threads;
        for (size_t i = 0; i < std::min(options.jobs, tasks.size()); ++i) {
            const std::string root = directory + "/world" + std::to_string(i);
            std::filesystem::create_directory(root);
            threads.emplace_back([this, root] { Work(root); });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        if (failure) {
            std::rethrow_exception(failure);
        }
    }

private:
    struct Task {
        const std::string* point;
        uint64_t seed;
        Trial* trial;
    };

    void Work(const std::string& root) {
        for (size_t i = next++; i < tasks.size(); i = next++) {
            try {
                const Task& task = tasks[i];
                *task.trial = PlantAndAsk(
                    {options.configuration, options.told, *task.point, task.seed, worldOptions}, root, model);
                const std::lock_guard<std::mutex> lock(mutex);
                tell(++done, tasks.size());
            } catch (...) {
                const std::lock_guard<std::mutex> lock(mutex);
                failure = failure ? failure : std::current_exception();
                next = tasks.size();
            }
        }
    }

    const Model& model;
    const ProofOptions& options;
    const std::vector<std::string> worldOptions;
    const std::function<void(size_t, size_t)>& tell;
    std::vector<Task> tasks;
    std::atomic<size_t> next{0};
    std::mutex mutex;  // guards what follows, and the listener
    size_t done = 0;
    std::exception_ptr failure;
};

// The verdicts on the site in a trial; none where the analysis did not come about.
const Verdicts& VerdictsOn(const Site& site, const Trial& trial) {
    static const Verdicts none;
    const auto found = trial.find(site.entry);
    return found != trial.end() ? found->second : none;
}

Blindness WhyMissed(const Site& site, const Verdicts& verdicts) {
    const std::string& named = verdicts.explanation;
    const auto& evidence = verdicts.evidence;
    const auto own = evidence.find(site.point);
    const auto other = evidence.find(named);
    const auto isFlat = [&](const std::string& point) {
        const auto found = evidence.find(point);
        return found != evidence.end() && found->second[0] >= 0 && found->second[0] == found->second[1];
    };
    if (site.isObservation) {
        return Blindness::OBSERVATION;
    }
    if (named.empty()) {
        return Blindness::NOT_SEEN;
    }
    if (isFlat(site.point)) {
        return Blindness::CONSTANT;
    }
    if (own != evidence.end() && other != evidence.end() && own->second == other->second) {
        return Blindness::SAME_STATISTICS;
    }
    if (std::any_of(site.above.begin(), site.above.end(), isFlat)) {
        return Blindness::FLAT_PARENT;
    }
    return Blindness::UNKNOWN;
}

SiteProof Judge(const Site& site, const std::array<Trial, PLANT_SEEDS.size()>& trials) {
    SiteProof proof{site, {}, {}, {}};
    for (size_t i = 0; i < trials.size(); ++i) {
        const Verdicts& verdicts = VerdictsOn(site, trials[i]);
        proof.walk.named[i] = verdicts.walk;
        proof.explanation.named[i] = verdicts.explanation;
        proof.walk.right += verdicts.walk == site.point ? 1U : 0U;
        proof.explanation.right += verdicts.explanation == site.point ? 1U : 0U;
        if (verdicts.explanation != site.point && !proof.blindness) {
            proof.blindness = WhyMissed(site, verdicts);
        }
    }
    return proof;
}

std::vector<Site> SitesToPlantAt(std::vector<Site> sites, const std::string& point) {
    if (point.empty()) {
        return sites;
    }
    std::set<std::string> names;
    for (const Site& site : sites) {
        names.insert(site.point);
    }
    sites.erase(
        std::remove_if(sites.begin(), sites.end(), [&](const Site& site) { return site.point != point; }),
        sites.end());
    if (sites.empty()) {
        const std::string nearest = NearestName(point, {names.begin(), names.end()});
        throw cli::UsageError("no analysis of delays comes to a point \"" + point + "\"" +
                              (nearest.empty() ? "" : "; did you mean " + nearest + "?"));
    }
    return sites;
}

}  // namespace

std::string Answers::Usual(const std::string& point) const {
    std::map<std::string, size_t> counts;
    for (const std::string& name : named) {
        counts[name] += name != point ? 1U : 0U;
    }
    const auto most = std::max_element(counts.begin(), counts.end(),
                                       [](const auto& a, const auto& b) { return a.second < b.second; });
    return most->second > 0 ? most->first : point;
}

Proof Prove(const Model& model, const ProofOptions& options, const std::string& directory,
            const std::function<void(size_t, size_t)>& progress) {
    const std::vector<Site> all = SitesOf(model);
    if (all.empty()) {
        throw std::runtime_error(options.told +
                                 " has no graph in which an analysis of delays begins; without --plant "
                                 "zorv-check tells what is wrong");
    }
    const std::vector<Site> sites = SitesToPlantAt(all, options.point);
    Trials trials;
    for (const Site& site : sites) {
        trials[site.point];
    }
    std::vector<std::string> likeness;
    if (options.statistics != nullptr) {
        likeness = LikenessOptions(*options.statistics, all);
    }
    Planter(model, options, std::move(likeness), trials, progress).Run(directory);
    Proof proof;
    for (const Site& site : sites) {
        const SiteProof& judged = proof.sites.emplace_back(Judge(site, trials[site.point]));
        if (!site.isObservation) {
            ++proof.counting;
            proof.walkFound += judged.walk.IsFound() ? 1U : 0U;
            proof.explanationFound += judged.explanation.IsFound() ? 1U : 0U;
        }
    }
    return proof;
}

}  // namespace check

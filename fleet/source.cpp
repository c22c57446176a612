#include "fleet/source.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <thread>

#include "cli/progress.h"
#include "fleet/collecting/answer_lines.h"
#include "fleet/collecting/hosts.h"
#include "fleet/collecting/jobs.h"
#include "fleet/collecting/reply.h"
#include "host/capture/inputs.h"
#include "host/capture/kept_archives.h"
#include "host/capture/temporary_directory.h"
#include "text/local_time.h"
#include "text/printable.h"

namespace fleet {
namespace {
namespace fs = std::filesystem;

using Words = std::vector<std::string>;

constexpr size_t HOSTS_AT_A_TIME = 64;
constexpr const char* FIRST_LABEL = "explaining the nodes";
constexpr const char* SECOND_LABEL = "comparing the nodes";

// Behind the words that say whom to ask: the window, in the node's own zone.
Words WindowWords(const Window& window, int64_t zoneOffset) {
    return {"--during", CompactTime(window.start, zoneOffset), CompactTime(window.end, zoneOffset)};
}

Words Joined(Words words, const Words& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

// Without what only tells how it is packed.
std::string StemOf(const std::string& capture) {
    const fs::path path = fs::absolute(capture).lexically_normal();
    std::string name = (path.has_filename() ? path : path.parent_path()).filename();
    for (const char* const ending : {".tar", ".tar.gz", ".tgz", ".tar.xz", ".txz", ".tar.zst", ".tzst"}) {
        const std::string end = ending;
        if (name.size() > end.size() && name.compare(name.size() - end.size(), end.size(), end) == 0 &&
            !fs::is_directory(path)) {
            return name.substr(0, name.size() - end.size());
        }
    }
    return name;
}

// No two nodes have one name: behind equal ones stands where they come from.
void NameApart(std::vector<NodeAnswer>& answers, const Words& origins) {
    std::map<std::string, size_t> uses;
    for (const NodeAnswer& answer : answers) {
        ++uses[answer.name];
    }
    for (size_t i = 0; i < answers.size(); ++i) {
        if (uses[answers[i].name] > 1) {
            answers[i].name += " (" + origins[i] + ")";
        }
    }
}

class Captures : public Source {
public:
    explicit Captures(const Options& toAsk) : options(toAsk), captures(toAsk.Captures()) {
        limits.atATime = options.jobs > 0 ? options.jobs : std::max(1U, std::thread::hardware_concurrency());
        limits.time = std::chrono::seconds(options.timeout);
        if (std::any_of(captures.begin(), captures.end(), IsArchive) && !IsPlaceCaptured()) {
            archives.emplace();
            zorv::KeepArchivesIn(archives->Path());
        }
    }

    std::vector<NodeAnswer> First() override {
        std::vector<Words> jobs;
        for (size_t i = 0; i < captures.size(); ++i) {
            jobs.push_back(Joined(WordsFor(i), options.pages ? Words{"--html", PageOf(i)} : Words{}));
            jobs.back() = Joined(jobs.back(), options.Times());
        }
        std::vector<NodeAnswer> answers(captures.size());
        Run(FIRST_LABEL, jobs, nullptr,
            [&](size_t job, NodeAnswer answer) { answers[job] = std::move(answer); });
        for (size_t i = 0; i < answers.size(); ++i) {
            answers[i].name = answers[i].isNamed ? answers[i].name : StemOf(captures[i]);
        }
        TellOfArchives(answers);
        NameApart(answers, captures);
        return answers;
    }

    void Again(const std::vector<NodeAnswer>& answers, const SecondLook& look,
               const std::function<void(size_t, size_t, NodeAnswer)>& take) override {
        std::vector<Words> jobs;
        std::vector<std::pair<size_t, size_t>> subjects;
        for (size_t node = 0; node < answers.size(); ++node) {
            for (size_t window = 0; window < look.windows.size() && answers[node].failure.empty(); ++window) {
                jobs.push_back(
                    Joined(WordsFor(node), WindowWords(look.windows[window], answers[node].zoneOffset)));
                subjects.emplace_back(window, node);
            }
        }
        Run(SECOND_LABEL, jobs, &look.points, [&](size_t job, NodeAnswer answer) {
            take(subjects[job].first, subjects[job].second, std::move(answer));
        });
    }

    std::string PageOf(size_t capture) const override {
        if (!options.pages) {
            return {};
        }
        const size_t before = static_cast<size_t>(std::count_if(
            captures.begin(), captures.begin() + static_cast<std::ptrdiff_t>(capture),
            [&](const std::string& other) { return StemOf(other) == StemOf(captures[capture]); }));
        return *options.pages + "/" + StemOf(captures[capture]) +
               (before > 0 ? "-" + std::to_string(before + 1) : "") + ".html";
    }

private:
    void Run(const char* label, const std::vector<Words>& jobs, const std::set<std::string>* points,
             const std::function<void(size_t, NodeAnswer)>& take) const {
        cli::TerminalProgress progress(label);
        RunJobs(jobs, limits, points, take, [&](size_t done) {
            progress.Show(static_cast<double>(done) / static_cast<double>(jobs.size()));
        });
    }

    Words WordsFor(size_t capture) const {
        Words words = {"--json", "--capture", captures[capture]};
        words = Joined(words, options.zone ? Words{"--zone", *options.zone} : Words{});
        return Joined(words, options.emptyHeal ? Words{"--empty-heal"} : Words{});
    }

    static bool IsArchive(const std::string& capture) {
        std::error_code ignored;
        return fs::is_regular_file(capture, ignored);
    }

    // Whoever is asked says so.
    bool IsPlaceCaptured() const {
        return std::any_of(captures.begin(), captures.end(), [](const std::string& capture) {
            return zorv::WhyNotWritten(zorv::TemporaryPlace() + "/root", {capture, true});
        });
    }

    void TellOfArchives(const std::vector<NodeAnswer>& answers) const {
        if (!archives) {
            return;
        }
        std::set<std::string> read;
        for (size_t i = 0; i < answers.size(); ++i) {
            if (answers[i].failure.empty() && IsArchive(captures[i])) {
                read.insert(captures[i]);
            }
        }
        const auto kept = static_cast<size_t>(
            std::distance(fs::directory_iterator(archives->Path()), fs::directory_iterator()));
        if (kept < read.size()) {
            std::fprintf(stderr,
                         "zorv-fleet: %zu of %zu archives are unpacked again for each look: half of what was "
                         "free in %s is used up\n",
                         read.size() - kept, read.size(), Printable(zorv::TemporaryPlace()).c_str());
        }
    }

    const Options options;
    const Words captures;
    JobLimits limits;
    std::optional<zorv::TemporaryDirectory> archives;  // where they are unpacked, each once
};

class Hosts : public Source {
public:
    explicit Hosts(const Options& toAsk) : options(toAsk), hosts(ReadHosts(*toAsk.hosts)) {
        limits.atATime = options.jobs > 0 ? options.jobs : HOSTS_AT_A_TIME;
        limits.time = std::chrono::seconds(options.timeout);
    }

    std::vector<NodeAnswer> First() override {
        std::vector<NodeAnswer> answers;
        cli::TerminalProgress progress(FIRST_LABEL);
        for (auto& [host, answer] : AskHosts(hosts, Joined(OwnWords(), options.Times()), limits, nullptr,
                                             [&](double done) { progress.Show(done); })) {
            answer.name = answer.isNamed ? answer.name : host;
            answers.push_back(std::move(answer));
        }
        NameApart(answers, hosts);
        return answers;
    }

    void Again(const std::vector<NodeAnswer>& answers, const SecondLook& look,
               const std::function<void(size_t, size_t, NodeAnswer)>& take) override {
        std::map<int64_t, Words> byZone;
        for (size_t node = 0; node < answers.size(); ++node) {
            if (answers[node].failure.empty()) {
                byZone[answers[node].zoneOffset].push_back(hosts[node]);
            }
        }
        cli::TerminalProgress progress(SECOND_LABEL);
        for (size_t window = 0; window < look.windows.size(); ++window) {
            const auto show = [&](double done) {
                progress.Show((static_cast<double>(window) + done) /
                              static_cast<double>(look.windows.size()));
            };
            for (const auto& [zone, some] : byZone) {
                const Words words = Joined(OwnWords(), WindowWords(look.windows[window], zone));
                for (auto& [host, answer] : AskHosts(some, words, limits, &look.points, show)) {
                    const auto node = std::lower_bound(hosts.begin(), hosts.end(), host) - hosts.begin();
                    take(window, static_cast<size_t>(node), std::move(answer));
                }
            }
        }
    }

private:
    Words OwnWords() const {
        Words words = {"--json"};
        words = Joined(words, options.root ? Words{"--root", *options.root} : Words{});
        return Joined(words, options.zone ? Words{"--zone", *options.zone} : Words{});
    }

    const Options options;
    const Words hosts;  // ascending
    HostLimits limits;
};

class Lines : public Source {
public:
    explicit Lines(const Options& options) : files(options.words) {}

    std::vector<NodeAnswer> First() override {
        std::vector<NodeAnswer> answers;
        if (files.empty()) {
            ReadAnswerLines(std::cin, "standard input", answers);
        }
        for (const std::string& file : files) {
            std::ifstream stream(file);
            if (!stream) {
                throw cli::UsageError("the file of answers '" + file + "' cannot be read");
            }
            ReadAnswerLines(stream, file, answers);
        }
        return OnePerNode(std::move(answers));
    }

private:
    const Words files;
};

}  // namespace

void Source::Again(const std::vector<NodeAnswer>& /*answers*/, const SecondLook& /*look*/,
                   const std::function<void(size_t, size_t, NodeAnswer)>& /*take*/) {}

std::string Source::PageOf(size_t /*node*/) const {
    return {};
}

std::unique_ptr<Source> SourceOf(const Options& options) {
    if (options.isFold) {
        return std::make_unique<Lines>(options);
    }
    if (options.hosts) {
        return std::make_unique<Hosts>(options);
    }
    return std::make_unique<Captures>(options);
}

}  // namespace fleet

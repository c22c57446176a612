#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <set>
#include <stdexcept>

#include "cli/program.h"
#include "fleet/collecting/hosts.h"
#include "fleet/options.h"
#include "fleet/reports/report.h"
#include "fleet/rounds.h"
#include "fleet/source.h"
#include "host/capture/inputs.h"
#include "host/process/files.h"
#include "host/process/process.h"
#include "text/printable.h"

namespace fleet {
namespace {

// The best that was said, else the worst.
int StatusOf(const Outcome& outcome) {
    int highest = 0;
    for (const NodeAnswer& node : outcome.nodes) {
        if (node.status == ANSWERED) {
            return ANSWERED;
        }
        highest = std::max(highest, node.status);
    }
    return outcome.nodes.empty() ? STATUS_NOT_ASKED : highest;
}

void Tell(const NodeAnswer& node, const std::string& why) {
    std::fprintf(stderr, "zorv-fleet: %s: %s\n", Printable(node.name).c_str(), Printable(why).c_str());
}

// A node or a point without an answer is a line, not an end; why, is told beside the report.
void TellFailures(const Outcome& outcome) {
    for (const NodeAnswer& node : outcome.nodes) {
        if (!node.failure.empty()) {
            Tell(node, node.failure);
        }
        std::set<std::string> points;  // each may stand in several graphs
        for (const Finding& finding : node.findings) {
            if (finding.verdict == Verdict::CANNOT_TELL && points.insert(finding.point).second) {
                Tell(node, finding.point + " cannot be told: " + finding.reason);
            }
        }
    }
}

// Nothing that is read is written to, and nothing in a capture.
void RefuseInputs(const Options& options) {
    const std::vector<std::string> captures =
        options.isFold || options.hosts ? std::vector<std::string>{""} : options.Captures();
    for (const std::string& capture : captures) {
        zorv::Inputs inputs = {capture, !capture.empty()};
        inputs.others = options.isFold ? options.words : std::vector<std::string>{options.hosts.value_or("")};
        for (const std::string& path :
             {options.html.value_or(""), options.pages ? *options.pages + "/page" : ""}) {
            const auto reason = path.empty() ? std::nullopt : zorv::WhyNotWritten(path, inputs);
            if (reason) {
                throw cli::UsageError(*reason);
            }
        }
    }
}

// A path as a link has it: what has a meaning there is written as its number.
std::string LinkTo(const std::string& path) {
    static constexpr const char* PLAIN =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    std::string link;
    for (const char letter : path) {
        char number[4] = {letter, '\0'};
        if (std::strchr(PLAIN, letter) == nullptr) {
            std::snprintf(number, sizeof number, "%%%02X",
                          static_cast<unsigned>(static_cast<unsigned char>(letter)));
        }
        link += number;
    }
    return link;
}

// As the page refers to them, from where it lies.
void LinkPages(const Options& options, const Source& source, Outcome& outcome) {
    if (!options.html || !options.pages) {
        return;
    }
    const auto folder = std::filesystem::absolute(*options.html).parent_path();
    for (size_t node = 0; node < outcome.nodes.size(); ++node) {
        const std::string page = source.PageOf(node);
        const bool isThere = outcome.nodes[node].failure.empty() && std::filesystem::exists(page);
        outcome.pages.push_back(isThere ? LinkTo(std::filesystem::relative(page, folder)) : "");
    }
}

bool Write(const Options& options, const Outcome& outcome) {
    const std::string text = options.json ? JsonReport(outcome) : TextReport(outcome);
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
        std::fprintf(stderr, "zorv-fleet: the answer cannot be printed: %s\n", std::strerror(errno));
        return false;
    }
    if (options.html && !zorv::WriteFile(*options.html, HtmlReport(outcome))) {
        std::fprintf(stderr, "zorv-fleet: the page '%s' cannot be written: %s\n",
                     Printable(*options.html).c_str(), std::strerror(errno));
        return false;
    }
    return true;
}

int Run(int argc, char** argv) {
    Options options;
    if (const std::optional<int> status = ParseOptions(argc, argv, options)) {
        return *status;
    }
    RefuseInputs(options);
    if (options.pages) {
        std::filesystem::create_directories(*options.pages);
    }
    const std::unique_ptr<Source> source = SourceOf(options);
    Outcome outcome = AskTwice(*source);
    LinkPages(options, *source, outcome);
    TellFailures(outcome);
    return Write(options, outcome) ? StatusOf(outcome) : STATUS_NOT_WRITTEN;
}

}  // namespace
}  // namespace fleet

int main(int argc, char** argv) {
    zorv::BeginProcess();
    return cli::RunProgram("zorv-fleet", fleet::STATUS_NOT_ASKED, [&] { return fleet::Run(argc, argv); });
}

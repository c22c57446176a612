#include <unistd.h>

#include <array>
#include <csignal>
#include <optional>

#include "agent/agent_console.h"
#include "cli/progress.h"
#include "host/collecting/collector.h"
#include "host/console/commands.h"
#include "host/process/interrupt.h"
#include "host/process/settings.h"
#include "text/counted.h"
#include "text/local_time.h"
#include "text/printable.h"
#include "text/time_words.h"

namespace zorv {
namespace {
constexpr const char* USAGE = "usage: capture [--name NAME] [--timeout SECONDS] DIR|FILE.tar.zst";
constexpr int64_t MOST_SECONDS = 86400;

std::string NameOfMachine() {
    std::array<char, 256> name{};
    return gethostname(name.data(), name.size() - 1) == 0 && name[0] != '\0' ? name.data() : "localhost";
}

std::chrono::seconds LimitIn(const std::string& word) {
    try {
        const bool isNumber = word.find_first_not_of("0123456789") == std::string::npos;
        const int64_t seconds = LengthOf(isNumber ? word + "s" : word);
        if (seconds <= MOST_SECONDS) {
            return std::chrono::seconds(seconds);
        }
    } catch (const TimeError&) {
    }
    throw UsageError("--timeout is a number of seconds from 1 to " + std::to_string(MOST_SECONDS));
}

CaptureOrder OrderOf(const Words& words) {
    CaptureOrder order;
    order.node = NameOfMachine();
    order.number = GetHostSettings().node;
    for (size_t i = 1; i < words.size(); ++i) {
        const bool hasValue = i + 1 < words.size();
        if (words[i] == "--name" && hasValue && !words[i + 1].empty()) {
            order.node = Printable(words[++i]);
        } else if (words[i] == "--timeout" && hasValue) {
            order.limit = LimitIn(words[++i]);
        } else if (words[i].empty() || words[i].front() == '-' || !order.target.empty()) {
            throw UsageError(USAGE);
        } else {
            order.target = words[i];
        }
    }
    if (order.target.empty()) {
        throw UsageError(USAGE);
    }
    return order;
}

// How one of the databases was copied, where that was not the usual way.
std::string RemarkOf(const Manifest::File& file) {
    return !file.copying || !file.copying->wasEndedAtOnce
               ? ""
               : file.path + " was copied in one step in the end, after " +
                     Counted(file.copying->restarts, "restart") + ": it was written all the time.";
}

void Tell(const CaptureOrder& order, const CaptureTaken& taken) {
    const Manifest& manifest = taken.manifest;
    uint64_t bytes = 0;
    for (const Manifest::File& file : manifest.files) {
        bytes += file.bytes;
        if (const std::string remark = RemarkOf(file); !remark.empty()) {
            std::fprintf(stderr, "zorv-local: %s\n", remark.c_str());
        }
    }
    for (const std::string& note : taken.notes) {
        std::fprintf(stderr, "zorv-local: %s\n", Printable(note).c_str());
    }
    const std::string rows = manifest.rows
                                 ? "rows from " + LocalTime(manifest.rows->start, manifest.zoneOffset) +
                                       " to " + LocalTime(manifest.rows->end, manifest.zoneOffset)
                                 : "no rows";
    DBG_Print("%s: node %u, %s; %s of %llu bytes; %s, zone %s\n", Printable(order.target).c_str(),
              manifest.number, manifest.node.c_str(), Counted(manifest.files.size(), "file").c_str(),
              static_cast<unsigned long long>(bytes), rows.c_str(), ZoneText(manifest.zoneOffset).c_str());
}
}  // namespace

ExitStatus RunCapture(const Words& words, ConsoleState& /*state*/) {
    CaptureOrder order = OrderOf(words);
    if (GetHostSettings().capture) {
        throw std::runtime_error("these files are a capture already; capture takes one from a node");
    }
    const TidyEnd tidy({SIGINT, SIGTERM, SIGHUP});
    std::optional<cli::TerminalProgress> progress;
    std::string shown;
    order.show = [&](const std::string& what, double done) {
        if (what != shown) {
            progress.reset();
            progress.emplace(shown = what);
        }
        progress->Show(done);
    };
    const CaptureTaken taken = TakeCapture(order);
    progress.reset();
    Tell(order, taken);
    return STATUS_OK;
}

Words WordsAfterCapture(const Words& before) {
    const bool wantsValue = before.back() == "--name" || before.back() == "--timeout";
    return wantsValue ? Words() : Words{"--name", "--timeout"};
}
}  // namespace zorv

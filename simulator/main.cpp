#include <csignal>
#include <cstdio>
#include <optional>
#include <stdexcept>

#include "cli/options.h"
#include "cli/program.h"
#include "simulator/files/world.h"
#include "simulator/live/live_world.h"
#include "simulator/options.h"
#include "simulator/progress.h"
#include "text/local_time.h"
#include "text/printable.h"

namespace lumosim {
namespace {

enum ExitStatus { EXIT_WRITTEN = 0, EXIT_NOT_WRITTEN = 1 };

WorldSummary WriteWithProgress(const WorldOptions& options) {
    TerminalProgress progress;
    return WriteWorld(options, [&progress](double done) { progress.Show(done); });
}

void PlayWithEvents(const Request& request) {
    std::optional<TerminalProgress> progress(std::in_place);
    const auto tell = [&](int64_t time, const std::string& event) {
        progress.reset();  // its line is there while the history is written, before any event
        std::printf("%s %s\n", CompactTime(time, request.world.zoneOffset).c_str(), Printable(event).c_str());
        std::fflush(stdout);
    };
    PlayWorld(request.world, *request.live, tell, [&](double done) { progress->Show(done); });
}

void CheckTold() {
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        throw std::runtime_error("what there is to tell cannot be printed");
    }
}

void Run(int argc, char** argv) {
    const Request request = ParseCommandLine(argc, argv);
    if (request.text) {
        std::fputs(request.text->c_str(), stdout);
        return;
    }
    cli::TakeZone("lumo-sim");
    if (request.live) {
        PlayWithEvents(request);
        return;
    }
    const WorldSummary summary = WriteWithProgress(request.world);
    std::printf("%s: %zu points, %zu rows; the truth is in %s\n", request.world.scenario.c_str(),
                summary.pointCount, summary.rowCount, Printable(summary.truthFile.string()).c_str());
}

}  // namespace
}  // namespace lumosim

int main(int argc, char** argv) {
    std::signal(SIGXFSZ, SIG_IGN);  // a file that grows too long is an error as others are
    return cli::RunProgram("lumo-sim", lumosim::EXIT_NOT_WRITTEN, [&] {
        lumosim::Run(argc, argv);
        lumosim::CheckTold();
        return lumosim::EXIT_WRITTEN;
    });
}

#include "check/plant/plant.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <thread>

#include "check/plant/proof.h"
#include "check/plant/proof_report.h"
#include "host/capture/temporary_directory.h"

namespace check {
namespace {

// On the terminal, one line that is wiped out at the end.
class ProgressLine {
public:
    ~ProgressLine() {
        if (isShown) {
            std::fputs("\r\033[K", stderr);
        }
    }
    ProgressLine() = default;
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    void Show(size_t done, size_t all) {
        if (isTerminal) {
            isShown = true;
            std::fprintf(stderr, "\rplanted %zu of %zu faults", done, all);
            std::fflush(stderr);
        }
    }

private:
    const bool isTerminal = isatty(STDERR_FILENO) == 1;
    bool isShown = false;
};

// The programs may read the configuration for as long as they like, wherever it came from.
std::string CopyOf(const Input& input, const std::string& directory) {
    std::string path = directory + "/configuration.json";
    std::ofstream file(path, std::ios::binary);
    file << input.Configuration();
    file.close();
    if (!file.good()) {
        throw std::runtime_error("no copy of the configuration can be written below " + directory);
    }
    return path;
}

}  // namespace

std::string PlantFaults(const Options& options, const Input& input, const Model& model, bool& allFound) {
    setenv("TZ", "UTC0", 1);  // so that it is the same everywhere
    const zorv::TemporaryDirectory directory;
    const size_t cores = std::max(1U, std::thread::hardware_concurrency());
    const std::optional<PointStatistics> statistics = input.Statistics();
    const ProofOptions order{CopyOf(input, directory.Path()), input.File(), options.point,
                             options.jobs > 0 ? options.jobs : cores, statistics ? &*statistics : nullptr};
    Proof proof;
    {
        ProgressLine line;
        proof = Prove(model, order, directory.Path(), [&](size_t done, size_t all) { line.Show(done, all); });
    }
    allFound = proof.explanationFound == proof.counting;
    return options.json ? ProofJson(input.File(), proof) : ProofText(proof);
}

}  // namespace check

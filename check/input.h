// What is checked, and where it is.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "check/graph/statistics.h"
#include "check/options.h"
#include "host/capture/capture.h"

namespace check {

// The configuration that is asked for, and the statistics database beside it. One per process.
class Input {
public:
    // Throws std::runtime_error, with an operator's sentence, for a root or capture that cannot be used. A
    // large capture is copied. Blocks on file I/O, as all of these do.
    explicit Input(const Options& options);

    // The configuration's path as the operator knows it.
    const std::string& File() const { return file; }

    // Its bytes. Throws std::runtime_error when it cannot be read.
    std::string Configuration() const;

    // What the database holds; nothing where only a file is checked. Throws std::runtime_error when it cannot
    // be read.
    std::optional<PointStatistics> Statistics() const;

private:
    std::unique_ptr<zorv::Capture> capture;  // used as long as it lives
    std::string file;
    std::string configuration;  // where it is read
    std::string database;       // empty: there is none
};

}  // namespace check

// Where the data comes from.
#pragma once

#include <memory>
#include <string>

#include "explain/options.h"
#include "host/capture/capture.h"

namespace explain {

// The files of a root or of a capture, and the agent's services over them. One per process.
class Input {
public:
    // Sets up the services; a large capture is copied. Throws std::runtime_error, with an operator's
    // sentence, for a root or capture that cannot be used. Blocks on file I/O.
    explicit Input(const Options& options);

    // The directory of the files, that of a capture even if another stands for it; empty for the machine's
    // own files.
    const std::string& Directory() const { return capture ? capture->Directory() : directory; }

    // Both throw std::runtime_error, with an operator's sentence, when that cannot be; the second may be
    // called again, also when they are open.
    void ReadConfiguration() const;
    void OpenDatabases() const;

    void Open() const {
        ReadConfiguration();
        OpenDatabases();
    }

private:
    const std::string directory;
    std::unique_ptr<zorv::Capture> capture;  // used as long as it lives
};

}  // namespace explain

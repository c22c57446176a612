// Where the data comes from.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "explain/options.h"
#include "host/capture/capture.h"

namespace explain {

// The files of a root or of a capture, and the agent's services over them. One per process.
class Input {
public:
    // Takes the zone and sets up the services; a large capture is copied. Call it before anything asks for
    // local time. Throws std::runtime_error, with an operator's
    // sentence, for a root or capture that cannot be used. Blocks on file I/O.
    explicit Input(const Options& options);

    // The file that a fixed path stands for, that of a capture even if another stands for it.
    std::string PathOf(const std::string& fixedPath) const {
        return capture ? capture->Files().PathOf(fixedPath) : directory + fixedPath;
    }

    // The node's name, where a capture tells it.
    std::optional<std::string> Node() const { return capture ? capture->Node() : std::nullopt; }

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

// Collecting what a capture needs from a node that runs.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "host/capture/manifest.h"

namespace zorv {
struct CaptureOrder {
    std::string target;              // a folder, or a file whose name ends in .tar.zst
    std::string node;                // the node's name
    uint32_t number = 1;             // its id
    std::chrono::seconds limit{60};  // of a database's paced copying
    // Is told what is being done, and how much of that is done, from 0 to 1.
    std::function<void(const std::string& what, double done)> show;
};

struct CaptureTaken {
    Manifest manifest;
    std::vector<std::string> notes;  // what the node lacks, a sentence each
};

// Copies the node's files from below the root of the host's settings: each database as it was at one moment,
// the configuration, the switch, the alarms, and writes a manifest. All is collected beside the target, for
// its owner alone, and renamed when it is on disk: a target is whole or not there. Throws CaptureError, with
// nothing left behind, for a target that is there and not empty, a node without statistics (it may be making
// them anew), want of space, and where the command was interrupted. Only a process that is killed leaves its
// folder, which begins with a dot. Writes nothing else. Blocks; the console's thread.
CaptureTaken TakeCapture(const CaptureOrder& order);
}  // namespace zorv

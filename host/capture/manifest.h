// What lies beside captured files and tells of them: whose they are, and when and how they were taken.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "text/table_zone.h"

namespace zorv {
constexpr const char* MANIFEST_FILE = "/manifest.json";  // in the folder before the fixed paths

struct Manifest {
    // Of a database: how it was copied.
    struct Copying {
        uint64_t steps = 0;
        uint64_t restarts = 0;        // a step of it found that somebody had written
        bool wasEndedAtOnce = false;  // the last step took all pages
        double longestStep = 0.0;     // seconds
    };
    struct File {
        std::string path;  // below the folder
        uint64_t bytes = 0;
        std::string hash{};  // SHA-256 in hexadecimal
        std::optional<Copying> copying{};
    };

    std::string node;                               // its name
    uint32_t number = 1;                            // its id
    int64_t zoneOffset = 0;                         // of the node, seconds east of UTC
    int64_t takenAt = 0;                            // UTC seconds, as all times
    std::map<std::string, std::string> versions{};  // of the programs that took part
    std::optional<TableSpan::Rows> rows{};          // of the statistics; none: there are none
    std::vector<File> files{};
};

constexpr size_t LONGEST_NODE_NAME = 255;  // bytes

// Whether a manifest may call a node so: not empty, not too long, nothing in it but what is printed as it is.
bool IsNodeName(const std::string& name);

// The manifest as JSON, as docs/manifest.schema.json describes it.
std::string ManifestText(const Manifest& manifest);

// Of the manifest in the file `path`, name, number and zone of the node, and the files with bytes and hash.
// None when there is no such file, or it is another kind of document. Throws CaptureError for a manifest that
// cannot be understood.
std::optional<Manifest> ReadManifest(const std::string& path);
}  // namespace zorv

// A capture: a copy of a storage node's files, in a folder or an archive, of which nothing may change.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/capture/capture_files.h"
#include "host/capture/captured_database.h"
#include "host/capture/manifest.h"
#include "host/capture/temporary_directory.h"

namespace zorv {
// A temporary root that stands for a capture. The captured files are in it as symbolic links; databases that
// SQLite could not read without writing, as copies with all rows. What services write under the root goes
// into it and is gone with it. A program that this one starts, on the same capture, takes this one's root.
class Capture {
public:
    // Of the files in the folder `name`, or in the archive `name` (see CaptureFiles and UnpackOnce()), which
    // is unpacked into the temporary root. Throws CaptureError when it cannot be unpacked or the databases
    // cannot be used; with `emptyHeal`, an empty heal database stands in for one that is missing or empty;
    // with `wantsZone`, the zone is looked for and told. Files that differ from what the manifest
    // tells of them are noted. Blocks while it unpacks, copies and reads each file once for that. Call it
    // before there are other threads and before the first connection to a database is opened.
    Capture(const std::string& name, bool emptyHeal, bool wantsZone = false);

    // The temporary root.
    const std::string& Root() const { return root; }

    // The captured files' own root, an absolute path; that of an archive is where it was unpacked.
    const std::string& Directory() const { return files->Directory(); }

    // Where the captured files are.
    const CaptureFiles& Files() const { return *files; }

    // The node's name, as its manifest tells; its zone, if it was wanted, as for --zone. None: nothing tells.
    std::optional<std::string> Node() const;
    std::optional<std::string> Zone() const;

    // What the operator has to know about the answers, a sentence or more each.
    const std::vector<std::string>& Notes() const { return notes; }

private:
    void Prepare(const std::string& name, bool emptyHeal);
    std::unique_ptr<CaptureFiles> FilesIn(const std::string& name) const;
    void CompareWithManifest();

    std::unique_ptr<TemporaryDirectory> temporary;  // none when the root is that of another process
    std::string root;
    std::unique_ptr<CaptureFiles> files;
    std::optional<Manifest> manifest;
    std::optional<int64_t> zone;
    std::vector<std::string> notes;
};
}  // namespace zorv

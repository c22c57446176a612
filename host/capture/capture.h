// A capture: a copy of a storage node's files, in a folder or an archive, of which nothing may change.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/capture/captured_database.h"
#include "host/capture/temporary_directory.h"

namespace zorv {
// A temporary root that stands for a capture. The captured files are in it as symbolic links; databases that
// SQLite could not read without writing, as copies with all rows. What services write under the root goes
// into it and is gone with it. A program that this one starts, on the same capture, takes this one's root.
class Capture {
public:
    // Of the files below the folder `name`, or in the archive `name` (see Unpack()), which is unpacked into
    // the temporary root. Throws CaptureError when it cannot be unpacked or the databases cannot be used;
    // with `emptyHeal`, an empty heal database stands in for one that is missing or empty. Blocks while it
    // unpacks and copies. Call it before there are other threads and before the first connection to a
    // database is opened.
    Capture(const std::string& name, bool emptyHeal);

    // The temporary root.
    const std::string& Root() const { return root; }

    // The captured files' own root, an absolute path; that of an archive is below the temporary root.
    const std::string& Directory() const { return directory; }

    // What the operator has to know about the answers, a sentence or more each.
    const std::vector<std::string>& Notes() const { return notes; }

private:
    std::string directory;
    std::unique_ptr<TemporaryDirectory> temporary;  // none when the root is that of another process
    std::string root;
    std::vector<std::string> notes;
};
}  // namespace zorv

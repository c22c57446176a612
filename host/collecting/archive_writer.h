// A folder in one file: a tar archive, compressed by zstd, as Unpack() reads it.
#pragma once

#include <functional>
#include <string>

namespace zorv {
// Packs the files below `folder` into the new file `archive`, where they stand below the folder `name`, for
// their owner to read and write. Returns when that is on disk. `show` is told how much is done, from 0 to 1.
// Throws CaptureError when it cannot, for want of space among others, or the command was interrupted; what
// was written until then stays. Blocks; any thread.
void Pack(const std::string& folder, const std::string& name, const std::string& archive,
          const std::function<void(double)>& show);
}  // namespace zorv

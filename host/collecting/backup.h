// A copy of a database beside its writer.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "host/capture/manifest.h"

namespace zorv {
// Copies the database `from`, which somebody may be writing, to the new file `to`: all tables as they were at
// one moment, in one file that is read without writing. Takes steps of some MiB with pauses between, so that
// the writer and the disk are busy with others for at least half of the time; whatever it writes meanwhile
// makes SQLite begin again, so after three times, or after `limit`, the last step takes all pages, and the
// writer of a database with a rollback journal waits for it. `show` is told how much is done, from 0 to 1.
// Writes nothing but `to`, which stays as it is when it fails; SQLite itself may need the files beside a
// database in WAL mode, as for every reader. Throws CaptureError, also where the command was interrupted.
// Returns nothing for a database without a table, which makes no file. Blocks; any thread.
std::optional<Manifest::Copying> BackUp(const std::string& from, const std::string& to,
                                        std::chrono::milliseconds limit,
                                        const std::function<void(double)>& show);
}  // namespace zorv

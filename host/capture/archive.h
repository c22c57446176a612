// A captured node in one file: a tar archive, as it is or compressed by gzip, xz or zstd. It comes from
// anywhere.
#pragma once

#include <cstdint>
#include <string>

namespace zorv {
// What an archive may hold at most. Beyond it somebody wants to fill a disk.
struct ArchiveBounds {
    uint64_t bytes = 64ULL << 30;  // of all files together, holes among them
    uint64_t entries = 10000;      // files and folders
    uint64_t ratio = 200;          // bytes of files for each byte of the archive; of small ones not asked
};

// Unpacks the files and folders of `archive` into the folder `directory`, which is there, empty, and nobody
// else's; they are for their owner alone and keep their times. Throws CaptureError, which says what and why,
// when it is no such archive, cut short or damaged, beyond the bounds, there is no space, or an entry is
// refused: an absolute name, one with "..", a link, a device. What was unpacked until then stays. Nothing
// outside of `directory` is touched. Blocks on file I/O; any thread.
void Unpack(const std::string& archive, const std::string& directory, const ArchiveBounds& bounds = {});
}  // namespace zorv

// The -wal file of a database: what SQLite takes over from it, and what it leaves out without a word.
#pragma once

#include <cstdint>
#include <string>

namespace zorv {
// Counts of frames, each of which holds a page. What an older log has left behind the newest one is in none
// of them.
struct WriteAheadLog {
    bool isSound = false;           // it begins as a log does; else SQLite takes over nothing
    bool isCutShort = false;        // it ends within a frame
    uint64_t taken = 0;             // frames up to the last commit that SQLite reaches
    uint64_t left = 0;              // frames behind these: SQLite leaves them out
    uint64_t lostTransactions = 0;  // that were committed, in the frames that are left, behind a broken one
    uint64_t strange = 0;           // frames that are of no log
};

// Reads the log `path`, a frame at a time. Throws CaptureError when the file cannot be read. Opens and closes
// it: call it while SQLite has no connection to its database.
WriteAheadLog ReadWriteAheadLog(const std::string& path);

// What the operator has to know about the log `shownPath`, a sentence or more; empty when nothing is lost.
std::string LossesOf(const WriteAheadLog& log, const std::string& shownPath);
}  // namespace zorv

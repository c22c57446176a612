// A database file among captured files: what can be told about it without SQLite, and a copy that SQLite may
// change. SQLite writes beside a database that it only reads (a -shm file and a -wal file), and cannot read
// one that a transaction was left unfinished in.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace zorv {
// Files cannot be used; what() is for the operator: what, why, and what to do.
class CaptureError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct CapturedDatabase {
    std::string path;            // behind all links: there SQLite looks for the other files
    uint64_t size = 0;           // bytes of the database
    uint64_t promisedSize = 0;   // as its header tells; 0: not told
    uint64_t walSize = 0;        // 0 for what is no file or not there, too
    uint64_t journalSize = 0;    // the same
    bool isWal = false;          // by its header
    bool hasWal = false;         // the -wal is not empty, or no file: SQLite would make a -shm for a pipe
    bool isHot = false;          // the -journal is one that SQLite would roll back
    bool hasOddJournal = false;  // the -journal is no file: SQLite would wait for a pipe without end

    bool NeedsCopy() const { return isWal || hasWal || isHot || hasOddJournal; }
};

// Looks at the database `path` and the files beside it. Throws CaptureError when there is no file, it is
// empty, cannot be read, or is no SQLite database, or its hot journal is damaged. Opens and closes the files,
// which would drop the locks of SQLite in this process: call it before the first connection is opened.
CapturedDatabase LookAtDatabase(const std::string& path);

// Copies the file `from` to `to`, which is then for its owner to read and write. Throws CaptureError, when
// there is no space among others.
void CopyFile(const std::string& from, const std::string& to);

// Copies the database and the files beside it that SQLite needs to `path`. Returns the number of bytes.
// Throws CaptureError, when there is no space among others.
uint64_t CopyDatabase(const CapturedDatabase& database, const std::string& path);

// Makes SQLite roll back or take over what lies beside the copy at `path`: afterwards it is one file, which
// can be read without writing. Throws CaptureError, which names `shownPath`, as those below do.
void SettleCopy(const std::string& path, const std::string& shownPath);

// Makes sure that SQLite can read the database at `path` and that it has the tables. Throws CaptureError.
// Does not write.
void CheckTables(const std::string& path, const std::vector<std::string>& tables,
                 const std::string& shownPath);

// Makes a new database at `path` with an SQL statement. Throws CaptureError.
void MakeDatabase(const std::string& path, const std::string& statement);
}  // namespace zorv

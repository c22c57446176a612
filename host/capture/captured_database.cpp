#include "host/capture/captured_database.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <vector>

#include "host/process/files.h"
#include "host/process/guarded_database.h"

namespace zorv {
namespace {
namespace fs = std::filesystem;

constexpr const char* AGAIN = ". Copy it from the node again.";

using Header = std::array<unsigned char, 100>;

uint32_t BigEndian(const unsigned char* bytes) {
    return uint32_t{bytes[0]} << 24U | uint32_t{bytes[1]} << 16U | uint32_t{bytes[2]} << 8U | bytes[3];
}

uint64_t SizeOf(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) ? static_cast<uint64_t>(status.st_size)
                                                                       : 0;
}

// Whether there is something, and it is no file.
bool IsOdd(const std::string& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    return fs::exists(status) && !fs::is_regular_file(status);
}

// The first bytes of the file `path`; zeros where it is shorter.
Header HeaderOf(const std::string& path) {
    const OwnedFd file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    Header header{};
    if (!file || read(file.Get(), header.data(), header.size()) < 0) {
        throw CaptureError(path + " cannot be read: " + std::strerror(errno) +
                           ". Make it readable, or copy it again.");
    }
    return header;
}

std::string RealPath(const std::string& path) {
    std::error_code error;
    const fs::path real = fs::canonical(path, error);
    if (error) {
        throw CaptureError(path + " cannot be read: " + error.message() + AGAIN);
    }
    return real;
}

void TakeDatabaseHeader(const Header& header, CapturedDatabase& database) {
    constexpr std::string_view MAGIC("SQLite format 3\0", 16);
    if (std::memcmp(header.data(), MAGIC.data(), MAGIC.size()) != 0) {
        throw CaptureError(database.path + " is no SQLite database, it begins with something else" + AGAIN);
    }
    database.isWal = header[18] == 2 || header[19] == 2;
    const uint32_t pageSize = uint32_t{header[16]} << 8U | header[17];
    // Old writers count no pages; they leave two counts of changes different.
    if (std::memcmp(&header[24], &header[92], 4) == 0) {
        database.promisedSize = uint64_t{BigEndian(&header[28])} * (pageSize == 1 ? 65536 : pageSize);
    }
}

// A part of a journal, as the header before its pages tells.
struct JournalPart {
    static constexpr uint32_t NOT_COUNTED = 0xFFFFFFFF;

    explicit JournalPart(const Header& header)
        : isOne(std::memcmp(header.data(), "\xD9\xD5\x05\xF9\x20\xA1\x63\xD7", 8) == 0),
          pages(BigEndian(&header[8])),
          nonce(BigEndian(&header[12])),
          sector(BigEndian(&header[20])),
          pageSize(BigEndian(&header[24])) {}

    bool IsSound() const { return isOne && sector >= 32 && pageSize >= 512 && pageSize <= 65536; }
    uint64_t Record() const { return uint64_t{pageSize} + 8; }  // number, page, checksum
    uint64_t Length() const { return sector + (pages == NOT_COUNTED ? 0 : pages * Record()); }

    bool IsSound(const unsigned char* record) const {
        uint32_t sum = nonce;
        for (uint32_t place = pageSize - 200; place > 0 && place < pageSize; place -= 200) {
            sum += record[4 + place];
        }
        return sum == BigEndian(record + 4 + pageSize);
    }

    bool isOne;
    uint32_t pages, nonce, sector, pageSize;
};

// Whether the pages that are there have their checksums; the file stands before them.
bool HasSoundPages(std::istream& file, const JournalPart& part) {
    std::vector<char> record(part.Record());
    for (uint32_t page = 0; page < part.pages; ++page) {
        if (!file.read(record.data(), static_cast<std::streamsize>(record.size()))) {
            return true;
        }
        if (!part.IsSound(reinterpret_cast<const unsigned char*>(record.data()))) {
            return false;
        }
    }
    return true;
}

// The same of all parts.
bool HasSoundParts(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    Header header{};
    for (uint64_t place = 0; file.seekg(static_cast<std::streamoff>(place)) &&
                             file.read(reinterpret_cast<char*>(header.data()), header.size());) {
        const JournalPart part(header);
        if (!part.IsSound() || part.pages == 0) {  // what an older transaction has left, or nothing
            return true;
        }
        file.seekg(static_cast<std::streamoff>(place + part.sector));
        if (!HasSoundPages(file, part)) {
            return false;
        }
        place += (part.Length() + part.sector - 1) / part.sector * part.sector;
    }
    return true;
}

// Of a journal that is to be rolled back: SQLite ends without a word where it is damaged, and rows of the
// unfinished transaction would stay. The pages that the first header promises have to be there.
void CheckJournal(const std::string& path, uint64_t size) {
    const JournalPart first(HeaderOf(path));
    if (!first.IsSound() || size < first.Length() || !HasSoundParts(path)) {
        throw CaptureError(
            path + " is damaged: it holds what an unfinished transaction has to be rolled back with" + AGAIN);
    }
}

// Does what is to be done with a database, and names the file that the operator knows when it fails.
template <typename Work>
void OrCaptureError(const std::string& shownPath, Work work) {
    try {
        work();
    } catch (const DatabaseError& error) {
        throw CaptureError(shownPath + " cannot be used: " + error.what() + AGAIN);
    }
}

void CheckSpace(const std::string& what, uint64_t needed, const std::string& directory) {
    std::error_code ignored;
    const fs::space_info space = fs::space(directory, ignored);
    if (!ignored && space.available < needed) {
        throw CaptureError("there is no space for a copy of " + what + ": it takes " +
                           std::to_string(needed) + " bytes, and " + directory + " has " +
                           std::to_string(space.available) + ". Name a larger place with TMPDIR.");
    }
}
}  // namespace

void CopyFile(const std::string& from, const std::string& to) {
    CheckSpace(from, SizeOf(from), fs::path(to).parent_path());
    std::error_code error;
    fs::copy_file(from, to, error);
    if (!error) {
        fs::permissions(to, fs::perms::owner_read | fs::perms::owner_write, error);
    }
    if (error) {
        throw CaptureError(from + " cannot be copied to " + to + ": " + error.message() +
                           ". Name another place with TMPDIR.");
    }
}

CapturedDatabase LookAtDatabase(const std::string& path) {
    CapturedDatabase database;
    database.path = RealPath(path);
    if (!fs::is_regular_file(database.path)) {
        throw CaptureError(path + " is not a file" + AGAIN);
    }
    const std::string wal = database.path + "-wal";
    const std::string journal = database.path + "-journal";
    database.size = SizeOf(database.path);
    database.walSize = SizeOf(wal);
    database.journalSize = SizeOf(journal);
    database.hasWal = database.walSize > 0 || IsOdd(wal);
    database.hasOddJournal = IsOdd(journal);
    database.isHot = database.journalSize > 0 && HeaderOf(journal)[0] != 0;
    if (database.isHot) {
        CheckJournal(journal, database.journalSize);
    }
    if (database.size == 0) {
        throw CaptureError(path + " is empty" + AGAIN);
    }
    TakeDatabaseHeader(HeaderOf(database.path), database);
    if (!database.NeedsCopy() && database.size < database.promisedSize) {
        throw CaptureError(path + " is cut short: it has " + std::to_string(database.size) + " of " +
                           std::to_string(database.promisedSize) + " bytes, and rows would be missing" +
                           AGAIN);
    }
    return database;
}

uint64_t CopyDatabase(const CapturedDatabase& database, const std::string& path) {
    const uint64_t bytes = database.size + database.walSize + (database.isHot ? database.journalSize : 0);
    // The rows of the -wal go into the database before it is removed.
    CheckSpace(database.path, bytes + database.walSize, fs::path(path).parent_path());
    CopyFile(database.path, path);
    if (database.walSize > 0) {
        CopyFile(database.path + "-wal", path + "-wal");
    }
    if (database.isHot) {
        CopyFile(database.path + "-journal", path + "-journal");
    }
    return bytes;
}

void SettleCopy(const std::string& path, const std::string& shownPath) {
    OrCaptureError(shownPath, [&] {
        GuardedDatabase(path, SQLITE_OPEN_READWRITE)
            .Run(
                "pragma synchronous = off; select count(*) from sqlite_master; pragma journal_mode = "
                "delete;");
    });
}

void CheckTables(const std::string& path, const std::vector<std::string>& tables,
                 const std::string& shownPath) {
    OrCaptureError(shownPath, [&] {
        GuardedDatabase database(path);
        for (const std::string& table : tables) {
            database.First("1", table);
        }
    });
}

void MakeDatabase(const std::string& path, const std::string& statement) {
    OrCaptureError(path,
                   [&] { GuardedDatabase(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE).Run(statement); });
}
}  // namespace zorv

#include "host/capture/write_ahead_log.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <utility>
#include <vector>

#include "host/capture/captured_database.h"
#include "text/counted.h"
#include "text/printable.h"

namespace zorv {
namespace {
using Bytes = const unsigned char*;
using Pair = std::pair<uint32_t, uint32_t>;

constexpr const char* AGAIN = ". Copy both files from the node again.";
constexpr uint32_t MAGIC =
    0x377F0682;  // and one more where checksums read words the most significant byte first
constexpr uint32_t VERSION = 3007000;
constexpr size_t HEADER = 32;
constexpr size_t FRAME_HEADER = 24;  // page, pages after a commit or 0, two salts, two checksums
constexpr uint32_t MOST_RESTARTS = 1 << 16;

uint32_t Word(Bytes bytes, bool isBigEndian) {
    return isBigEndian
               ? uint32_t{bytes[0]} << 24U | uint32_t{bytes[1]} << 16U | uint32_t{bytes[2]} << 8U | bytes[3]
               : uint32_t{bytes[3]} << 24U | uint32_t{bytes[2]} << 16U | uint32_t{bytes[1]} << 8U | bytes[0];
}

uint32_t Number(Bytes bytes) {
    return Word(bytes, true);
}

Pair NumbersAt(Bytes bytes) {
    return {Number(bytes), Number(bytes + 4)};
}

// Of words by the pair, going on from `sum`.
Pair Checksum(Pair sum, Bytes bytes, size_t length, bool isBigEndian) {
    for (const Bytes end = bytes + length; bytes != end; bytes += 8) {
        sum.first += Word(bytes, isBigEndian) + sum.second;
        sum.second += Word(bytes + 4, isBigEndian) + sum.first;
    }
    return sum;
}

bool IsPageSize(uint32_t size) {
    return size >= 512 && size <= 65536 && (size & (size - 1)) == 0;
}

// Goes through the frames of one log in their order.
class Reader {
public:
    explicit Reader(Bytes header)
        : pageSize(Number(header + 8)),
          isBigEndian((Number(header) & 1U) != 0),
          salts(NumbersAt(header + 16)),
          last(NumbersAt(header + 24)) {
        log.isSound = (Number(header) & ~1U) == MAGIC && Number(header + 4) == VERSION &&
                      IsPageSize(pageSize) && Checksum({}, header, HEADER - 8, isBigEndian) == last;
    }

    WriteAheadLog Read(std::istream& file) {
        std::vector<char> frame(log.isSound ? FRAME_HEADER + pageSize : 0);
        while (log.isSound && file.read(frame.data(), static_cast<std::streamsize>(frame.size()))) {
            Take(reinterpret_cast<Bytes>(frame.data()));
        }
        // A rest of an older log may be cut, too.
        log.isCutShort = log.isSound && file.gcount() > 0 && isOwn;
        return log;
    }

private:
    void Take(Bytes frame) {
        isOwn = NumbersAt(frame + 8) == salts;
        if (isOwn) {
            TakeOwn(!isBroken && Follows(frame), Number(frame + 4) != 0);
        } else {
            isBroken = true;
            log.strange += IsOlder(frame) || Follows(frame) ? 0U : 1U;
        }
        last = NumbersAt(frame + 16);  // so what follows a broken frame is still known
    }

    bool Follows(Bytes frame) const {
        return Number(frame) != 0 && Checksum(Checksum(last, frame, 8, isBigEndian), frame + FRAME_HEADER,
                                              pageSize, isBigEndian) == NumbersAt(frame + 16);
    }

    // A broken commit is one that was not finished, unless another one stands behind it.
    void TakeOwn(bool follows, bool isCommit) {
        ++log.left;
        if (isBroken && isCommit) {
            log.lostTransactions += 1 + std::exchange(brokenCommits, 0);
        } else if (!isBroken && !follows) {
            isBroken = true;
            brokenCommits = isCommit ? 1 : 0;
        } else if (!isBroken && isCommit) {
            log.taken += std::exchange(log.left, 0);
        }
    }

    // Each time that the log begins anew the first salt grows by one.
    bool IsOlder(Bytes frame) const {
        return Number(frame) != 0 && salts.first - Number(frame + 8) - 1 < MOST_RESTARTS;
    }

    const uint32_t pageSize;
    const bool isBigEndian;
    const Pair salts;
    Pair last;              // checksums as the frame before tells them
    bool isOwn = true;      // the last frame was of the newest log
    bool isBroken = false;  // the newest log has come to its end, for SQLite
    uint64_t brokenCommits = 0;
    WriteAheadLog log;
};
}  // namespace

WriteAheadLog ReadWriteAheadLog(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::array<char, HEADER> header{};
    file.read(header.data(), HEADER);
    if (!file.is_open() || file.bad()) {
        throw CaptureError(path + " cannot be read: " + std::strerror(errno) + ".");
    }
    return Reader(reinterpret_cast<Bytes>(header.data())).Read(file);
}

std::string LossesOf(const WriteAheadLog& log, const std::string& shownPath) {
    const std::string where = " behind its first " + Counted(log.taken, "frame") + ": ";
    if (!log.isSound) {
        return shownPath +
               " is damaged: unless the node had closed the database, its newest rows are missing" + AGAIN;
    }
    if (log.lostTransactions > 0) {
        return shownPath + " is damaged" + where + Counted(log.lostTransactions, "committed transaction") +
               " in " + Counted(log.left, "further frame") + " cannot be read, and the rows are missing" +
               AGAIN;
    }
    if (log.strange > 1) {  // one: where two older logs meet
        return shownPath + " is damaged" + where + Counted(log.strange, "further one") +
               " cannot be read, and rows may be missing" + AGAIN;
    }
    if (log.left > 0 || log.isCutShort) {
        return shownPath + " ends with an incomplete transaction" + where + "SQLite does without " +
               Counted(log.left, "further frame") + (log.isCutShort ? " and a part of one" : "") +
               ". That is usual where the node was running; if the file was cut short or damaged, newer rows "
               "are "
               "missing.";
    }
    return "";
}
}  // namespace zorv

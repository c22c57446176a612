#include "host/collecting/backup.h"

#include <sqlite3.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <utility>

#include "host/capture/captured_database.h"
#include "host/process/interrupt.h"

namespace zorv {
namespace {
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr int PAGES_OF_STEP = 1024;  // 4 MiB of usual pages
constexpr int ALL_PAGES = -1;
constexpr uint64_t MOST_RESTARTS = 3;
constexpr int MOST_ATTEMPTS = 3;  // at a file that others replace meanwhile
constexpr int MOST_PASSING_ATTEMPTS = 40;
constexpr milliseconds PAUSE_OF_PASSING{50};
constexpr milliseconds SHORTEST_PAUSE{10};
constexpr milliseconds PAUSE_OF_LOCKED{5};
constexpr milliseconds LONGEST_LOCKED{10'000};  // behind the limit

struct CloseConnection {
    void operator()(sqlite3* connection) const { sqlite3_close(connection); }
};
using Connection = std::unique_ptr<sqlite3, CloseConnection>;

struct FinishBackup {
    void operator()(sqlite3_backup* backup) const { sqlite3_backup_finish(backup); }
};

bool IsHot(int result) {
    return result == SQLITE_READONLY_ROLLBACK || result == SQLITE_READONLY_RECOVERY;
}

// What is so for a moment where a file is made anew: it is away, or its predecessor's journal lies beside it.
class Passing : public CaptureError {
public:
    using CaptureError::CaptureError;
};

[[noreturn]] void Fail(const std::string& from, int result) {
    const int kind = result & 0xFF;
    const std::string why =
        from + " cannot be copied: " +
        (IsHot(result)
             ? "its writer has left a transaction unfinished and is gone. Start the writer again; or copy "
               "the database and the files beside it while nobody writes"
         : kind == SQLITE_FULL || kind == SQLITE_IOERR
             ? std::string(sqlite3_errstr(result)) + ". Is there space where the capture goes?"
         : kind == SQLITE_BUSY || kind == SQLITE_LOCKED ? "its writer has kept it locked all the time"
                                                        : std::string(sqlite3_errstr(result))) +
        ".";
    if (IsHot(result) || kind == SQLITE_CANTOPEN) {
        throw Passing(why);
    }
    throw CaptureError(why);
}

Connection Open(const std::string& path, int flags, const std::string& from) {
    sqlite3* opened = nullptr;
    const int result = sqlite3_open_v2(path.c_str(), &opened, flags, nullptr);
    Connection connection(opened);
    if (result != SQLITE_OK) {
        Fail(from, result);
    }
    sqlite3_extended_result_codes(opened, 1);
    return connection;
}

class Backup {
public:
    Backup(const std::string& fromPath, const std::string& to, milliseconds timeLimit)
        : from(fromPath),
          deadline(Clock::now() + timeLimit),
          source(Open(from, SQLITE_OPEN_READONLY, from)),
          target(Open(to, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, from)),
          backup(sqlite3_backup_init(target.get(), "main", source.get(), "main")) {
        if (backup == nullptr) {
            Fail(from, sqlite3_extended_errcode(target.get()));
        }
    }

    Manifest::Copying Run(const std::function<void(double)>& show) {
        while (!Step()) {
            const int all = std::max(sqlite3_backup_pagecount(backup.get()), 1);
            show(static_cast<double>(done) / all);
        }
        return copying;
    }

    // Of no page SQLite makes one, and each table takes one more.
    bool IsEmpty() const { return sqlite3_backup_pagecount(backup.get()) <= 1; }

    // Whether another file has taken its place meanwhile.
    bool HasMoved() const {
        int moved = 0;
        sqlite3_file_control(source.get(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
        return moved != 0;
    }

private:
    // Whether it was the last one. Pauses for as long as it took, or longer.
    bool Step() {
        const bool isLate = Clock::now() >= deadline;
        const bool takesAll = isLate || copying.restarts >= MOST_RESTARTS;
        const auto begin = Clock::now();
        const int result = sqlite3_backup_step(backup.get(), takesAll ? ALL_PAGES : PAGES_OF_STEP);
        const Clock::duration taken = Clock::now() - begin;
        if (Interrupted()) {
            throw CaptureError(from + " is not copied: interrupted.");
        }
        if (result == SQLITE_BUSY || result == SQLITE_LOCKED) {
            if (Clock::now() >= deadline + LONGEST_LOCKED) {
                Fail(from, result);
            }
            SleepUnlessInterrupted(PAUSE_OF_LOCKED);
            return false;
        }
        if (result != SQLITE_OK && result != SQLITE_DONE) {
            Fail(from, result);
        }
        Count(taken, takesAll);
        if (result == SQLITE_OK) {
            SleepUnlessInterrupted(std::max(std::chrono::duration_cast<milliseconds>(taken), SHORTEST_PAUSE));
        }
        return result == SQLITE_DONE;
    }

    void Count(Clock::duration taken, bool tookAll) {
        const int before = done;
        done = sqlite3_backup_pagecount(backup.get()) - sqlite3_backup_remaining(backup.get());
        copying.restarts += !tookAll && copying.steps > 0 && done <= before ? 1 : 0;
        ++copying.steps;
        copying.wasEndedAtOnce = tookAll;
        copying.longestStep = std::max(copying.longestStep, std::chrono::duration<double>(taken).count());
    }

    const std::string from;
    const Clock::time_point deadline;
    const Connection source;
    const Connection target;
    const std::unique_ptr<sqlite3_backup, FinishBackup> backup;  // gone before the connections
    Manifest::Copying copying;
    int done = 0;  // pages
};
}  // namespace

std::optional<Manifest::Copying> BackUp(const std::string& from, const std::string& to, milliseconds limit,
                                        const std::function<void(double)>& show) {
    for (int replaced = 0, passing = 0; replaced < MOST_ATTEMPTS;) {
        std::filesystem::remove(to);
        try {
            std::optional<Backup> backup(std::in_place, from, to, limit);
            const Manifest::Copying copying = backup->Run(show);
            const bool isWhole = !backup->HasMoved(), isEmpty = backup->IsEmpty();
            backup.reset();
            if (isWhole && isEmpty) {
                std::filesystem::remove(to);
                return std::nullopt;
            }
            if (isWhole) {
                SettleCopy(to, from);
                return copying;
            }
            ++replaced;
        } catch (const Passing&) {
            if (++passing >= MOST_PASSING_ATTEMPTS) {
                throw;
            }
            SleepUnlessInterrupted(PAUSE_OF_PASSING);
        }
    }
    throw CaptureError(from + " cannot be copied: it is replaced by another file again and again.");
}
}  // namespace zorv

// Plays the storage system: races_producer ROOT JOURNAL CYCLES SEED. It is a program because SQLite's locks
// are those of a process. Each row of a state has the state's number and its count of rows.
#include <sqlite3.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <random>
#include <stdexcept>
#include <thread>

#include "agent/agent_storage.h"
#include "races/published.h"

namespace {

class Producer {
public:
    Producer(const std::string& rootFolder, std::string journalMode, unsigned seed)
        : root(rootFolder),
          journal(std::move(journalMode)),
          link(root + "/VRA/data/lumo"),
          folders{link + ".1", link + ".2"},
          published(Published::Map(root + "/published")),
          random(seed) {
        std::filesystem::remove(link);
        Retarget();
        RenameOver(root + ZORV_HEAL_DATABASE_FILE, published.heal);
    }

    void Run(int64_t cycles) {
        Await([this] { return published.go.load(); });
        while (published.cycles < cycles) {
            for (unsigned updates = random() % 8; updates > 4; --updates) {
                Update();
            }
            if (OneOf(8)) {
                RenameOver(root + ZORV_HEAL_DATABASE_FILE, published.heal);
            }
            Recreate();
            if (++published.cycles % 8 == 0) {
                AwaitAnswer(published.statistics);
                AwaitAnswer(published.heal);
            }
        }
    }

private:
    bool OneOf(unsigned number) { return random() % number == 0; }

    void Pause() {
        if (OneOf(2)) {
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 500));
        }
    }

    template <typename Condition>
    static void Await(const Condition& condition) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > end) {
                throw std::runtime_error("nobody answers any more");
            }
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
    }

    static void AwaitAnswer(const PublishedStates& states) {
        Await([&states, before = states.answers.load()] { return states.answers > before; });
    }

    // Runs statements; true when the last row begins with 0.
    bool Exec(const std::string& file, const std::string& sql) const {
        sqlite3* opened = nullptr;
        bool isZero = false;
        const auto look = [](void* zero, int, char** cells, char**) {
            *static_cast<bool*>(zero) = *cells[0] == '0';
            return 0;
        };
        sqlite3_open(file.c_str(), &opened);
        const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> handle(opened, &sqlite3_close);
        sqlite3_busy_timeout(opened, 20000);
        const std::string whole = "PRAGMA synchronous = OFF; PRAGMA journal_mode = " + journal + ";" + sql;
        if (sqlite3_exec(opened, whole.c_str(), look, &isZero, nullptr) != SQLITE_OK) {
            throw std::runtime_error(file + ": " + sqlite3_errmsg(opened) + " " + std::to_string(sqlite3_extended_errcode(opened)) + " errno " + std::to_string(sqlite3_system_errno(opened)) + " in " + sql.substr(0, 30));
        }
        return isZero;
    }

    // The views have the names and columns that the plug-in knows.
    void Create(const std::string& file) {
        const std::string number = std::to_string(state), count = std::to_string(20 + random() % 100);
        Exec(file,
             "BEGIN; CREATE TABLE T (id INTEGER PRIMARY KEY, state, count, filler);"
             "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
                 count +
                 ") "
                 "INSERT INTO T SELECT i, " +
                 number + ", " + count +
                 ", zeroblob(300) FROM n;"
                 "CREATE VIEW table_flag AS SELECT 'lumo_data_' || state AS tablename, id AS reporttime FROM "
                 "T;"
                 "CREATE VIEW fault_heal_event AS SELECT id AS healtime, state AS modulename, "
                 "'IOHANG' AS healcause, count AS infercause, 2 AS nodeid FROM T; COMMIT;");
    }

    static void RemoveBeside(const std::string& file) {
        for (const char* suffix : {"-wal", "-shm", "-journal"}) {
            unlink((file + suffix).c_str());
        }
    }

    static void Rename(const std::string& from, const std::string& to) { std::filesystem::rename(from, to); }

    std::string Statistics() const { return folders[0] + "/" LUMO_DATABASE_NAME; }

    // Whatever changes: the number is published as possible before, and all former ones as impossible once
    // they are gone.
    void Begin(PublishedStates& states) { states.newest = ++state; }
    void End(PublishedStates& states) const { states.oldest = state; }

    void Update() {
        Begin(published.statistics);
        Exec(Statistics(), "UPDATE T SET state = " + std::to_string(state) + ";");
        End(published.statistics);
    }

    void Recreate() {
        if (OneOf(50)) {
            OneOf(2) ? Retarget() : ReplaceFolder();
        } else if (OneOf(2)) {
            DeleteAndCreate();
        } else {
            RenameOver(Statistics(), published.statistics);
        }
        Pause();
    }

    void DeleteAndCreate() {
        Begin(published.statistics);
        unlink(Statistics().c_str());
        End(published.statistics);
        RemoveBeside(Statistics());
        Pause();
        Create(Statistics());
    }

    void RenameOver(const std::string& file, PublishedStates& states) {
        Begin(states);
        Create(root + "/new.db");
        if (std::filesystem::exists(file)) {  // a log that stayed would be taken for the new file's
            Await([&] { return Exec(file, "PRAGMA wal_checkpoint(TRUNCATE);"); });
            RemoveBeside(file);
        }
        Rename(root + "/new.db", file);
        End(states);
    }

    // The link to the folder leads to the other one now; the former file stays where it was.
    void Retarget() {
        Begin(published.statistics);
        std::swap(folders[0], folders[1]);
        std::filesystem::remove_all(folders[0]);
        std::filesystem::create_directory(folders[0]);
        Create(Statistics());
        std::filesystem::create_symlink(folders[0], link + ".new");
        Rename(link + ".new", link);
        End(published.statistics);
    }

    void ReplaceFolder() {
        Begin(published.statistics);
        Rename(folders[0], link + ".gone");
        End(published.statistics);
        Pause();
        std::filesystem::create_directory(folders[0]);
        Create(Statistics());
        std::filesystem::remove_all(link + ".gone");
    }

    const std::string root, journal, link;
    std::string folders[2];  // the link leads to the first
    Published& published;
    std::mt19937 random;
    int64_t state = 0;
};

}  // namespace

int main(int /*argc*/, char** argv) {
    try {
        Producer(argv[1], argv[2], static_cast<unsigned>(std::stoul(argv[4]))).Run(std::stoll(argv[3]));
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "races_producer: %s\n", error.what());
        return 1;
    }
}

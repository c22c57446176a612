// Plays the storage system: races_producer ROOT JOURNAL CYCLES SEED. A program, as SQLite's locks are those
// of a process. Each row of a state has the state's number and its count of rows.
#include <sqlite3.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <random>
#include <stdexcept>
#include <thread>

#include "agent/agent_storage.h"
#include "campaigns/races/published.h"

namespace {

namespace fs = std::filesystem;

class Producer {
public:
    Producer(const std::string& rootFolder, const char* journalMode, unsigned seed)
        : root(rootFolder), journal(journalMode), random(seed) {
        fs::remove(link);
        Retarget();
        Replace(heal, published.heal, false);
    }

    void Run(int64_t cycles) {
        published.cycles = -1;
        Await([this] { return published.cycles == 0; });
        for (int errors = 0; published.cycles < cycles; ++published.cycles) {
            try {
                Change();
            } catch (const std::runtime_error& error) {
                // While databases in WAL mode are re-created, SQLite tells writers of I/O errors now and
                // then, whoever reads. With a rollback journal there are none.
                std::printf("%s\n", error.what());
                journal == "wal" && ++errors < 10 + cycles / 50
                    ? Replace(statistics, published.statistics, true)
                    : throw;
            }
            if (OneOf(3)) {
                AwaitAnswer(published.statistics);
                AwaitAnswer(published.heal);
            }
        }
    }

private:
    bool OneOf(unsigned number) { return random() % number == 0; }

    void Pause() { std::this_thread::sleep_for(std::chrono::microseconds(random() % 1000)); }

    template <typename Condition>
    static void Await(const Condition& condition) {
        for (int tries = 0; !condition(); ++tries) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            tries < 20000 ? void() : throw std::logic_error("nobody answers any more");
        }
    }

    static void AwaitAnswer(const PublishedStates& states) {
        Await([&states, before = states.answers.load()] { return states.answers > before; });
    }

    void Exec(const std::string& file, const std::string& sql) const {
        sqlite3* opened = nullptr;
        sqlite3_open(file.c_str(), &opened);
        const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> handle(opened, &sqlite3_close);
        sqlite3_busy_timeout(opened, 20000);
        const std::string whole = "PRAGMA synchronous = OFF; PRAGMA journal_mode = " + journal + ";" + sql;
        if (sqlite3_exec(opened, whole.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
            throw std::runtime_error(file + ": " + sqlite3_errmsg(opened));
        }
    }

    // The views have the names and columns that the plug-in knows.
    void Create(const std::string& file) {
        const std::string count = std::to_string(20 + random() % 100);
        Exec(file,
             "BEGIN; CREATE TABLE T (id INTEGER PRIMARY KEY, state, count, filler);"
             "CREATE VIEW table_flag AS SELECT 'lumo_data_' || state AS tablename, id AS reporttime FROM T;"
             "CREATE VIEW fault_heal_event AS SELECT id AS healtime, state AS modulename,"
             "'IOHANG' AS healcause, count AS infercause, 2 AS nodeid FROM T;"
             "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
                 count + ") INSERT INTO T SELECT i, " + std::to_string(state) + ", " + count +
                 ", zeroblob(300) FROM n; COMMIT;");
    }

    // A state is published as possible before anything changes, the former ones as impossible once they are
    // gone.
    void Change() {
        // In WAL mode a reader may miss changes of a file that was re-created under it, whoever reads.
        for (auto updates = journal == "wal" ? 0 : random() % 4; updates > 1; --updates) {
            published.statistics.newest = ++state;
            Exec(statistics, "UPDATE T SET state = " + std::to_string(state) + ";");
            published.statistics.oldest = state;
        }
        if (OneOf(8)) {
            Replace(heal, published.heal, false);
        }
        if (OneOf(20)) {
            OneOf(2) ? Retarget() : ReplaceFolder();
        } else {
            Replace(statistics, published.statistics, OneOf(2));
        }
        Pause();
    }

    void Replace(const std::string& file, PublishedStates& states, bool inPlace) {
        states.newest = ++state;
        const std::string created = inPlace ? file : root + "/new.db";
        if (!inPlace) {
            Create(created);
        }
        // What lies beside a file in WAL mode is part of it.
        if (inPlace || journal == "wal" || OneOf(2)) {
            fs::remove(file);
            states.oldest = state;
            fs::remove(file + "-wal");
            fs::remove(file + "-shm");
            Pause();
        }
        inPlace ? Create(file) : fs::rename(created, file);
        states.oldest = state;
    }

    // The folder's link leads to the other one now; the former file stays where it is.
    void Retarget() {
        const std::string other = link + (folder == link + ".1" ? ".2" : ".1");
        published.statistics.newest = ++state;
        fs::remove_all(other);
        fs::create_directory(other);
        Create(other + "/" LUMO_DATABASE_NAME);
        fs::create_symlink(other, link + ".new");
        fs::rename(link + ".new", link);
        published.statistics.oldest = state;
        folder = other;
    }

    void ReplaceFolder() {
        published.statistics.newest = ++state;
        fs::remove_all(link + ".gone");
        fs::rename(folder, link + ".gone");
        published.statistics.oldest = state;
        fs::create_directory(folder);
        Create(statistics);
    }

    const std::string root, journal, link = root + "/VRA/data/lumo";
    const std::string statistics = root + LUMO_DATABASE_FILE, heal = root + ZORV_HEAL_DATABASE_FILE;
    std::string folder = link + ".1";  // the link leads to it
    Published& published = Published::Map(root + "/published");
    std::mt19937 random;
    int64_t state = 0;
};

}  // namespace

int main(int /*argc*/, char** argv) {
    try {
        Producer(argv[1], argv[2], static_cast<unsigned>(std::stoul(argv[4]))).Run(std::stoll(argv[3]));
        return 0;
    } catch (const std::exception& error) {
        std::printf("races_producer: %s\n", error.what());
        return 1;
    }
}

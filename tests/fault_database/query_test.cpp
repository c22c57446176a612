#include <fstream>
#include <numeric>

#include "fault_spectrum_graph/fault_detect_object.h"
#include "support/database_test.h"

namespace {

const std::string LOG = " fault_database.cpp ";
const std::string SQL = "FaultDataBaseExcuteSql";
const std::string FULL_SQL = "FaultDataBaseExcuteFullSql";
const std::string MISSING = "no such table: missing";
const Lines OPENED = {"5" + LOG + "FaultDataBaseInit: g_lumoDataBase is 0x",
                      "5" + LOG + "FaultDataBaseInit: g_zorvHealDataBase is 0x"};
const Lines RELEASED = {"5" + LOG + "FaultDataBaseRelease: g_lumoDataBase is (nil)",
                        "5" + LOG + "FaultDataBaseRelease: g_zorvHealDataBase is (nil)"};

Lines operator+(Lines first, const Lines& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

// The lines of some attempts of `function`; number 0 stands for the line behind the last one.
Lines Failed(const std::string& function, const std::vector<int>& numbers, const std::string& error) {
    Lines lines;
    for (const int number : numbers) {
        const std::string attempt = std::to_string(number) + " time:" + error + ", retry after 2 sec.";
        lines.push_back("3" + LOG + function + ": sqlite3 get table faild for " +
                        (number == 0 ? "35 times, donot retry again." : attempt));
    }
    return lines;
}

void ExpectSleeps(size_t count) {
    EXPECT_EQ(Agent::Record().sleeps, std::vector<uint32_t>(count, 200));
}

class Query : public DatabaseTest {
protected:
    Query() { Open({{"generation0"}}); }

    uint32_t Run(const std::string& sql, bool isFull = false) {
        return isFull ? FaultDataBaseExcuteFullSql(sql, nullptr, series)
                      : FaultDataBaseExcuteSql(sql, FaultGetQueryTableCallBack, numbers, numbers, texts);
    }
    std::vector<int64_t> numbers;
    Lines texts;
    std::map<std::string, FaultSeries> series;
};

TEST_F(Query, HandsTheRowsToTheCallBack) {
    EXPECT_EQ(Run("select 7, 'a' union all select 'b', '';"), 0U);
    EXPECT_EQ(texts, (Lines{"7", "a", "b", ""}));
    EXPECT_EQ(FaultGetQueryTableCallBack(nullptr, 1, 1, numbers, numbers, texts), 1U);
    EXPECT_LOGGED("3" + LOG + "FaultGetQueryTableCallBack: DB pointer pResult is null.");
    const auto keepSize = [](char** result, int32_t rowCount, int32_t columnCount, auto& given) -> uint32_t {
        given[result[columnCount + 1]].resize(10 * static_cast<size_t>(rowCount) +
                                              static_cast<size_t>(columnCount));
        return 1;  // nobody looks at it
    };
    EXPECT_EQ(FaultDataBaseExcuteFullSql("select 1, 'x' union all select 2, 'y';", keepSize, series), 0U);
    EXPECT_EQ(series["x"].size(), 22U);
    FaultDataBaseRelease();
    EXPECT_EQ(Run("select 1;"), 1U);
    EXPECT_EQ(Agent::TakeLines(), RELEASED + Lines{"4" + LOG + SQL + ": g_lumoDataBase is nullptr."});
}

// The clock moves 500 jiffies per sleep: the 31st attempt is 15000 after the first and opens a new window.
TEST_F(Query, GivesUpAfterThirtyFiveAttempts) {
    for (const std::string& name : {SQL, FULL_SQL}) {
        const Lines lines = Failed(name, {1, 2, 3, 31, 32, 33, 0}, MISSING);
        Agent::Reset();
        Agent()->jiffies = 100000;  // too early for a report of what was suppressed
        EXPECT_EQ(Run("select * from missing;", name == FULL_SQL), 1U);
        ExpectSleeps(35);
        EXPECT_EQ(Agent::TakeLines(), lines);
        Agent()->jiffies = 1000000;  // 27 + 2 lines were suppressed
        EXPECT_EQ(Run("select * from missing;", name == FULL_SQL), 1U);
        ExpectSleeps(70);
        const std::string line = std::to_string(Agent()->logs.at(1).line);
        const std::string report = "print: 29 messages suppressed." + name + ",line=" + line + ".";
        EXPECT_EQ(Agent::TakeLines(), Lines{"3" + LOG + name + ": " + report} + lines);
        Agent()->onSleep = [](size_t) { Agent()->jiffies = 2000000; };  // the clock stands
        for (int query = 0; query < 5; ++query) {
            Run("select * from missing;", name == FULL_SQL);
        }
        EXPECT_EQ(Agent()->Count("donot retry again"), 3U);
    }
}

TEST_F(Query, RecoversAndCountsALostHandleAsAFailedAttempt) {
    Agent()->onSleep = [&](size_t number) {
        if (number == 1) {
            FaultDataBaseRelease();
        } else if (number == 5) {
            world.Exec(LUMO_DATABASE_FILE, "CREATE TABLE missing (x); INSERT INTO missing VALUES (42);");
            FaultDataBaseInit();
        }
    };
    EXPECT_EQ(Run("select x from missing;"), 0U);
    ExpectSleeps(5);
    EXPECT_EQ(texts, Lines{"42"});
    EXPECT_EQ(Agent::TakeLines(), Failed(SQL, {1}, MISSING) + RELEASED + Failed(SQL, {2, 3}, "") + OPENED);
}

// An answer from a file that is no longer the one at its path, behind whatever links, does not count.
TEST_F(Query, AnswersFromTheFileAtThePathOnly) {
    int number = 0;
    const auto next = [&] { return std::vector<StatisticsTable>{{"generation" + std::to_string(++number)}}; };
    const auto expectAnswer = [&](size_t sleeps) {
        EXPECT_EQ(Run("select tablename from table_flag;"), 0U);
        EXPECT_EQ(texts.back(), "generation" + std::to_string(number));
        ExpectSleeps(sleeps);
    };
    world.StatisticsByRename(next());
    expectAnswer(1);
    world.Statistics(next());
    expectAnswer(2);
    for (const char* target : {"/3", "/4"}) {
        world.Statistics(next());
        world.Rename(LUMO_DATABASE_FILE, target);
        std::filesystem::create_symlink(world.Path(target), world.Path(LUMO_DATABASE_FILE));
        expectAnswer(static_cast<size_t>(number));
    }
    world.Remove(LUMO_DATABASE_FILE);
    Agent()->onSleep = [&](size_t sleeps) {
        if (sleeps == 7) {
            Open(next());
        }
    };
    expectAnswer(7);
    world.Write(LUMO_DATABASE_FILE, std::string(4096, 'x'));
    EXPECT_EQ(Run("select tablename from table_flag;"), 1U);
}

// Eight megabytes are more than SQLite would keep in memory by itself.
TEST_F(Query, ReadsEachPageOnce) {
    world.Exec(
        LUMO_DATABASE_FILE,
        "CREATE TABLE T AS WITH RECURSIVE r(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM r WHERE i < 8000)"
        " SELECT hex(zeroblob(500)) AS x FROM r;");
    Run("select 1;");
    FaultDataBaseInit();  // the former connection's memory went with it
    std::array<int64_t, 3> bytesRead{};
    for (int64_t& bytes : bytesRead) {
        std::string name;
        std::ifstream("/proc/self/io") >> name >> bytes;
        Run("select x from T where x = '';");
    }
    EXPECT_GT(bytesRead[1] - bytesRead[0], 8'000'000);
    EXPECT_LT(bytesRead[2] - bytesRead[1], 100'000);
}

// Whatever the statement says and the schema holds, reading is all that happens, and it ends.
TEST_F(Query, ReadsTablesAlone) {
    const std::string join = " FROM table_flag a, t b, t c, t d, t e, t f, t g, t h, t i, t j, t k;";
    std::string views = "CREATE VIEW v0 AS SELECT 1;";
    for (int i = 1; i <= 20; ++i) {
        views += "CREATE VIEW v" + std::to_string(i) + " AS SELECT * FROM v" + std::to_string(i - 1) + ";";
    }
    const std::string denied = "not authorized", second = "more than one statement";
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"", "vacuum into '" + world.Path("/beside") + "';", "authorization denied"},
        {"", "attach '" + world.Path("/beside") + "' as other;", denied},
        {"", "delete from table_flag;", denied},
        {"", "pragma journal_mode = off;", denied},
        {"", "select load_extension('x');", denied + " to use function: load_extension"},
        {"", "select tablename from table_flag; vacuum into 'beside'; --';", second},
        {"", "select 1; select 2;", second},
        {"", "select x from (with r as (select 1 as x) select x from r);", denied},
        {"CREATE VIEW v AS WITH RECURSIVE r(x) AS (SELECT 1 UNION ALL SELECT x FROM r) SELECT * FROM r;",
         "select x from v;", "schema refused"},
        {views, "select 1;", "schema refused"},
        {"CREATE TABLE v (x, y AS (printf('%.*c', x, x)));", "select y from v;", "schema refused"},
        {"CREATE TABLE t AS VALUES (1), (2), (3), (4); CREATE VIEW v AS SELECT 1" + join, "select * from v;",
         "too large a result"},
        {"CREATE VIRTUAL TABLE v USING fts5(x);", "select x from v;", "no such module: fts5"},
        {"CREATE VIEW v AS SELECT tablename FROM table_flag;", "select * from v; -- the end", ""},
        {"", "select 'with', tablename from table_flag;", ""}};
    Agent()->onSleep = [](size_t) { FaultDataBaseRelease(); };
    for (const auto& [schema, sql, error] : cases) {
        Open({{"generation0"}});
        world.Exec(LUMO_DATABASE_FILE, schema);
        texts.clear();
        EXPECT_EQ(Run(sql), error.empty() ? 0U : 1U) << sql;
        EXPECT_EQ(Agent()->Count(" 1 time:" + error + ", "), error.empty() ? 0U : 1U) << sql;
        EXPECT_EQ(texts.empty() ? "" : texts.back(), error.empty() ? "generation0" : "") << sql;
        Agent()->jiffies += 20000;
    }
    EXPECT_FALSE(std::filesystem::exists(world.Path("/beside")));
}

using Catalogue = DatabaseTest;

TEST_F(Catalogue, TheEarliestTimeIsTheNameOfTheFirstReportedTable) {
    const std::string function = "FaultGetDataTimeRange";
    const std::string log = LOG + function + ": ";
    const std::string name = "The tableName:lumo_data_";
    std::string earliest = "unchanged";
    std::vector<int> all(36);
    std::iota(all.begin(), all.end() - 1, 1);
    EXPECT_EQ(FaultGetDataTimeRange(earliest), 1U);
    EXPECT_EQ(Agent::TakeLines(), Failed(function, all, ""));
    ExpectSleeps(35);
    world.Statistics({});
    EXPECT_EQ(FaultDataBaseInit(), 1U);  // one of two
    EXPECT_LOGGED(OPENED[0], RELEASED[0], RELEASED[1],
                  "3" + LOG + "FaultDataBaseInit: sqlite3_open faild:14");
    Open({});
    EXPECT_EQ(FaultGetDataTimeRange(earliest), 1U);
    EXPECT_LOGGED("3" + log + "Query from database failed, data(not NULL), dataCol(0).");
    Open({{"lumo_data_"}});
    EXPECT_EQ(FaultGetDataTimeRange(earliest), 1U);
    EXPECT_LOGGED("7" + log + name, "4" + log + name);
    EXPECT_EQ(earliest, "unchanged");
    Open({{"lumo_data_1"}, {"lumo_data_0"}});
    EXPECT_EQ(FaultGetDataTimeRange(earliest), 0U);
    EXPECT_EQ(earliest, "1");
    EXPECT_LOGGED("7" + log + name + "1");
}

TEST_F(Catalogue, StatementsNameColumnsTablePointAndBounds) {
    const std::string rest =
        " from T where locateid = (select locateid from version_nmaps where locatename = 'P')"
        " and curtime >= 10 and curtime <= 20;";
    std::string sql = "replaced";
    FaultConstructSql({"a", "b", "T", "P", "10", "20"}, sql);
    EXPECT_EQ(sql, "select a, b" + rest);
    FaultConstructFullSql({"a", "b", "T", "P", "10", "20"}, sql);
    EXPECT_EQ(sql,
              "select curtime, acceptnum, successnum, failednum, retrynum, avgdelay, maxdelay, mindelay, "
              " errCode0, errCode1, errCode2, errCode3, errCode4 " +
                  rest);
}

TEST_F(Catalogue, CoverIsTheSameForBothCallers) {
    const Lines names = {"lumo_data_100", "lumo_data_200", "lumo_data_300"};
    Open({{names[0]}, {names[1]}, {names[2]}});
    const auto expect = [](int64_t begin, int64_t end, const Lines& tables, const Lines& logged) {
        Lines found;
        EXPECT_EQ(FaultGetQueryTable(std::to_string(begin), std::to_string(end), found), 0U);
        EXPECT_EQ(found, tables) << begin << ".." << end;
        FaultDetectObject detector;
        EXPECT_EQ(detector.SelectTable(std::to_string(begin), std::to_string(end)), 0U);
        EXPECT_EQ(detector.tables, tables) << begin << ".." << end;
        EXPECT_EQ(Agent::TakeLines(), logged) << begin << ".." << end;
    };
    const std::tuple<int64_t, int64_t, int, int> covered[] = {
        {150, 250, 0, 2}, {50, 250, 0, 2},  {350, 400, 2, 3}, {100, 300, 0, 3},
        {50, 100, 0, 1},  {200, 250, 1, 2}, {250, 210, 1, 2}, {INT64_MIN, INT64_MAX, 0, 3}};
    for (const auto& [begin, end, first, last] : covered) {
        expect(begin, end, Lines(names.begin() + first, names.begin() + last), {});
    }
    const std::tuple<int64_t, int64_t, std::string> uncovered[] = {
        {99, 99, "-1, right:-1."}, {250, 199, "1, right:0."}, {400, 50, "2, right:-1."}};
    for (const auto& [begin, end, indexes] : uncovered) {
        const std::string line = ".cpp GetCoveredTime: GetCoveredTime index left:" + indexes;
        expect(begin, end, {}, {"4 fault_database" + line, "4 fault_detect_object" + line});
    }
    // The catalogue's order counts, and of equal times the last one.
    Open({{"lumo_data_100"}, {"aaaa_data_200"}, {"bbbb_data_200"}, {"lumo_data_150"}});
    Lines found = {"kept"};
    FaultGetQueryTable("200", "200", found);
    EXPECT_EQ(found, (Lines{"kept", "lumo_data_150"}));
}

TEST_F(Catalogue, RefusesWhatIsNoTime) {
    Lines tables;
    EXPECT_THROW(FaultGetQueryTable("x", "1", tables), std::invalid_argument);
    EXPECT_THROW(FaultGetQueryTable("1", "9223372036854775808", tables), std::out_of_range);
    EXPECT_LOGGED();  // no query was made
    Open({});
    EXPECT_EQ(FaultGetQueryTable("1", "2", tables), 1U);
    EXPECT_LOGGED("5 fault_database.cpp FaultGetQueryTable: invalid lumodata table.");
    Open({{"lumo_data"}});
    EXPECT_THROW(FaultGetQueryTable("1", "2", tables), std::out_of_range);
    for (const std::string name : {"'lumo_data_x1'", "NULL"}) {
        world.Exec(LUMO_DATABASE_FILE, "UPDATE table_flag SET tablename = " + name);
        EXPECT_THROW(FaultGetQueryTable("1", "2", tables), std::invalid_argument);
    }
}

}  // namespace

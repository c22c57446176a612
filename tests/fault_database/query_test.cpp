#include <gmock/gmock.h>

#include <filesystem>
#include <numeric>
#include <stdexcept>

#include "support/database_test.h"

namespace {

using testing::ElementsAre;

const std::string LOG = " fault_database.cpp ";
const Lines OPENED = {"5" + LOG + "FaultDataBaseInit: g_lumoDataBase is 0x",
                      "5" + LOG + "FaultDataBaseInit: g_zorvHealDataBase is 0x"};
const Lines RELEASED = {"5" + LOG + "FaultDataBaseRelease: g_lumoDataBase is (nil)",
                        "5" + LOG + "FaultDataBaseRelease: g_zorvHealDataBase is (nil)"};
const Lines CANNOT_OPEN = {"3" + LOG + "FaultDataBaseInit: sqlite3_open faild:14"};

Lines operator+(Lines first, const Lines& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

Lines Attempts(const std::string& function, const std::vector<int>& numbers, const std::string& error) {
    Lines lines;
    for (const int number : numbers) {
        lines.push_back("3" + LOG + function + ": sqlite3 get table faild for " + std::to_string(number) +
                        " time:" + error + ", retry after 2 sec.");
    }
    return lines;
}

Lines End(const std::string& function) {
    return {"3" + LOG + function + ": sqlite3 get table faild for 35 times, donot retry again."};
}

// The cells that the callbacks below were given behind the column names; "none" for a call without any.
Lines g_cells;

uint32_t KeepRows(char** result, int32_t rowCount, int32_t columnCount, std::vector<int64_t>& first,
                  std::vector<int64_t>& second, Lines& texts) {
    for (int32_t i = columnCount; i < (rowCount + 1) * columnCount; ++i) {
        g_cells.push_back(result[i] == nullptr ? "null" : result[i]);
    }
    if (rowCount == 0) {
        g_cells.push_back("none");
    }
    first.push_back(1);
    second.push_back(2);
    texts.push_back("3");
    return 1;  // nobody looks at it
}
uint32_t KeepFullRows(char** result, int32_t rowCount, int32_t columnCount,
                      std::map<std::string, FaultSeries>& series) {
    series["P"].push_back({1, 2});
    std::vector<int64_t> unused;
    Lines texts;
    return KeepRows(result, rowCount, columnCount, unused, unused, texts);
}

// Every case holds for both executors.
class Query : public DatabaseTest, public testing::WithParamInterface<const char*> {
protected:
    Query() { Open({{"lumo_data_1"}}); }

    uint32_t Run(const std::string& sql) {
        return GetParam() == std::string("FaultDataBaseExcuteSql")
                   ? FaultDataBaseExcuteSql(sql, KeepRows, first, second, texts)
                   : FaultDataBaseExcuteFullSql(sql, KeepFullRows, series);
    }
    static Lines Failed(const std::vector<int>& numbers,
                        const std::string& error = "no such table: missing") {
        return Attempts(GetParam(), numbers, error);
    }
    static void ExpectSleeps(size_t count) {
        EXPECT_EQ(Agent::Record().sleeps, std::vector<uint32_t>(count, 200));
    }

    std::vector<int64_t> first, second;
    Lines texts;
    std::map<std::string, FaultSeries> series;
};

INSTANTIATE_TEST_SUITE_P(Executors, Query,
                         testing::Values("FaultDataBaseExcuteSql", "FaultDataBaseExcuteFullSql"),
                         [](const auto& name) { return std::string(name.param); });

TEST_P(Query, HandsTheRowsToTheCallBackAlsoWhenThereAreNone) {
    EXPECT_EQ(Run("select 7, null union all select 'a', '' ;"), 0U);
    EXPECT_TRUE((first.size() == 1 && second.size() == 1 && texts.size() == 1) != (series["P"].size() == 1));
    EXPECT_EQ(Run("select * from lumo_data_1;"), 0U);
    EXPECT_THAT(g_cells, ElementsAre("7", "null", "a", "", "none"));
    EXPECT_EQ(FaultDataBaseExcuteSql("select 1;", nullptr, first, second, texts), 0U);
    EXPECT_EQ(FaultDataBaseExcuteFullSql("select 1;", nullptr, series), 0U);
    EXPECT_EQ(Agent::TakeLines(), Lines());
    FaultDataBaseRelease();
    Agent::TakeLines();
    EXPECT_EQ(Run("select 1;"), 1U);
    EXPECT_EQ(Agent::TakeLines(), Lines{"4" + LOG + GetParam() + ": g_lumoDataBase is nullptr."});
    EXPECT_EQ(g_cells.size(), 5U);
    ExpectSleeps(0);
}

// The clock moves 500 jiffies per sleep: the 31st attempt is 15000 after the first and opens a new window.
TEST_P(Query, GivesUpAfterThirtyFiveAttempts) {
    const std::string name = GetParam();
    const Lines lines = Failed({1, 2, 3, 31, 32, 33}) + End(name);
    Agent::SetJiffies(100000);  // too early for a report of what was suppressed
    EXPECT_EQ(Run("select * from missing;"), 1U);
    ExpectSleeps(35);
    EXPECT_EQ(Agent::TakeLines(), lines);

    Agent::SetJiffies(1000000);  // 27 + 2 lines were suppressed
    EXPECT_EQ(Run("select * from missing;"), 1U);
    ExpectSleeps(70);
    const std::string attemptLine = std::to_string(Agent::Record().logs.at(1).line);
    EXPECT_EQ(Agent::TakeLines(), Lines{"3" + LOG + name + ": print: 29 messages suppressed." + name +
                                        ",line=" + attemptLine + "."} +
                                      lines);
    EXPECT_EQ(g_cells, Lines());
}

TEST_P(Query, RecoversAndCountsALostHandleAsAFailedAttempt) {
    Agent::OnSleep([&](size_t number) {
        if (number == 1) {
            FaultDataBaseRelease();
        } else if (number == 5) {
            world.Exec(LUMO_DATABASE_FILE, "CREATE TABLE missing (x); INSERT INTO missing VALUES (42);");
            FaultDataBaseInit();
        }
    });
    EXPECT_EQ(Run("select x from missing;"), 0U);
    ExpectSleeps(5);
    EXPECT_EQ(g_cells, Lines{"42"});
    EXPECT_EQ(Agent::TakeLines(), (Failed({1}) + RELEASED + Failed({2, 3}, "") + OPENED));
}

// An answer from a file that is no longer the one at its path does not count.
TEST_P(Query, AnswersFromTheFileAtThePathOnly) {
    const std::string sql = "select avgdelay from lumo_data_1;";
    const auto rows = [](int value) {
        return std::vector<StatisticsTable>{{"lumo_data_1", {{"P", 1, value}}}};
    };
    Open(rows(11));
    EXPECT_EQ(Run(sql), 0U);
    world.StatisticsByRename(rows(22));
    EXPECT_EQ(Run(sql), 0U);
    EXPECT_EQ(Agent::TakeLines(), OPENED + Failed({1}, ""));
    world.Statistics(rows(33));
    EXPECT_EQ(Run(sql), 0U);
    EXPECT_EQ(Agent::TakeLines(), OPENED + Failed({1}, ""));
    ExpectSleeps(2);
    world.Remove(LUMO_DATABASE_FILE);
    Agent::OnSleep([&](size_t number) {
        if (number == 5) {
            Open(rows(44));
        }
    });
    EXPECT_EQ(Run(sql), 0U);
    ExpectSleeps(5);
    EXPECT_THAT(g_cells, ElementsAre("11", "22", "33", "44"));

    world.Write(LUMO_DATABASE_FILE, std::string(4096, 'x'));
    Agent::OnSleep(nullptr);
    EXPECT_EQ(Run(sql), 1U);
}

TEST_P(Query, AnswersFromTheFileBehindTheLinkAsItIsNow) {
    const std::string path = world.Path(LUMO_DATABASE_FILE);
    for (const std::string target : {"first", "second"}) {
        world.Exec("/VRA/" + target, "CREATE TABLE t (x); INSERT INTO t VALUES ('" + target + "');");
        std::filesystem::remove(path);
        std::filesystem::create_symlink(world.Path("/VRA/" + target), path);
        EXPECT_EQ(Run("select x from t;"), 0U);
    }
    EXPECT_THAT(g_cells, ElementsAre("first", "second"));
    ExpectSleeps(2);
}

class DataTimeRange : public DatabaseTest {
protected:
    static std::string Earliest() {
        std::string earliest = "unchanged";
        const uint32_t result = FaultGetDataTimeRange(earliest);
        EXPECT_EQ(result, earliest == "unchanged" ? 1U : 0U);
        return earliest;
    }
    const std::string log = LOG + "FaultGetDataTimeRange: ";
};

TEST_F(DataTimeRange, IsTheNameOfTheFirstReportedTable) {
    for (const std::string name : {"lumo_data_20230105143000", "lumo_data_1", "lumo_data_", "l"}) {
        Open({{"lumo_data_00000000000000"}, {name}});
        world.Exec(LUMO_DATABASE_FILE,
                   "UPDATE table_flag SET reporttime = -1 WHERE tablename = '" + name + "'");
        const std::string text = "The tableName:" + name;
        if (name.size() > 10) {
            EXPECT_EQ(Earliest(), name.substr(10));
            EXPECT_EQ(Agent::TakeLines(), Lines{"7" + log + text});
        } else {
            EXPECT_EQ(Earliest(), "unchanged");
            EXPECT_EQ(Agent::TakeLines(), (Lines{"7" + log + text, "4" + log + text}));
        }
    }
    Open({});
    EXPECT_EQ(Earliest(), "unchanged");
    EXPECT_EQ(Agent::TakeLines(),
              Lines{"3" + log + "Query from database failed, data(not NULL), dataCol(0)."});
    world.Exec(LUMO_DATABASE_FILE, "INSERT INTO table_flag VALUES (NULL, 1)");
    EXPECT_THROW(Earliest(), std::invalid_argument);
    EXPECT_EQ(Agent::Record().sleeps.size(), 0U);
}

TEST_F(DataTimeRange, LogsEveryAttempt) {
    std::vector<int> all(35);
    std::iota(all.begin(), all.end(), 1);
    for (const std::string error : {"", "no such table: table_flag"}) {
        EXPECT_EQ(Earliest(), "unchanged");  // first without a database
        EXPECT_EQ(Agent::TakeLines(),
                  Attempts("FaultGetDataTimeRange", all, error) + End("FaultGetDataTimeRange"));
        Open({});
        world.Exec(LUMO_DATABASE_FILE, "DROP TABLE table_flag");
    }
    EXPECT_EQ(Agent::Record().sleeps, std::vector<uint32_t>(70, 200));
}

using Opening = DatabaseTest;

TEST_F(Opening, NeedsBothFilesAndReleasesBothWhenOneFails) {
    const auto expect = [](uint32_t result, const Lines& lines) {
        EXPECT_EQ(FaultDataBaseInit(), result);
        EXPECT_EQ(Agent::TakeLines(), lines);
    };
    EXPECT_EQ(FaultDataBaseRelease(), 0U);
    expect(1, CANNOT_OPEN);
    world.Statistics({});
    expect(1, Lines{OPENED[0], RELEASED[0]} + CANNOT_OPEN);
    world.Heal();
    expect(0, OPENED);
    expect(0, OPENED);
    world.Remove(LUMO_DATABASE_FILE);
    expect(1, RELEASED + CANNOT_OPEN);
    EXPECT_EQ(FaultDataBaseRelease(), 0U);
    EXPECT_EQ(Agent::TakeLines(), Lines());
}

TEST_F(Opening, AThousandReopeningsLeakNothing) {
    const auto openDescriptors = [] {
        const std::filesystem::directory_iterator descriptors("/proc/self/fd");
        return std::distance(begin(descriptors), end(descriptors));
    };
    Open({{"lumo_data_1"}});
    const auto before = openDescriptors();
    std::string earliest;
    for (int i = 0; i < 500; ++i) {
        ASSERT_EQ(FaultDataBaseInit(), 0U);
        world.StatisticsByRename({{"lumo_data_1"}});
        ASSERT_EQ(FaultGetDataTimeRange(earliest), 0U);
    }
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(Agent::Record().sleeps.size(), 500U);
}

}  // namespace

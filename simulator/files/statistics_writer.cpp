#include "simulator/files/statistics_writer.h"

#include <algorithm>
#include <string>
#include <vector>

#include "simulator/files/sqlite_file.h"
#include "text/local_time.h"

namespace lumosim {
namespace {

// Readers find a table's start time behind exactly ten characters.
constexpr std::string_view TABLE_PREFIX = "lumo_data_";
static_assert(TABLE_PREFIX.size() == 10);

// Ids as a system in the field has them: neither from 0 nor an index of anything.
constexpr int64_t FIRST_LOCATE_ID = 1001;

constexpr char CATALOGUE[] =
    "create table table_flag(tablename text, reporttime integer);"
    "create table version_nmaps(locateid integer primary key, locatename text);";
constexpr char COLUMNS[] =
    "(locateid integer, curtime integer, acceptnum integer, successnum integer, failednum integer,"
    " retrynum integer, avgdelay integer, maxdelay integer, mindelay integer,"
    " errCode0 integer, errCode1 integer, errCode2 integer, errCode3 integer, errCode4 integer);";

void WriteRow(SqliteStatement& row, size_t point, int64_t time, const Sample& sample) {
    row.Bind(FIRST_LOCATE_ID + static_cast<int64_t>(point)).Bind(time);
    row.Bind(sample.accepted).Bind(sample.succeeded).Bind(sample.failed).Bind(sample.retried);
    row.Bind(sample.averageDelay).Bind(sample.maximumDelay).Bind(sample.minimumDelay);
    for (const int64_t count : sample.errorCodes) {
        row.Bind(count);
    }
    row.Run();
}

}  // namespace

StatisticsWriter::StatisticsWriter(SqliteFile& file, const WorldModel& worldModel, int64_t firstTime)
    : database(file), model(worldModel), first(firstTime) {}

void StatisticsWriter::WriteHistory(int64_t end, const RowObserver& observe, const Progress& progress) {
    database.Execute("begin immediate;");
    WriteCatalogue();
    for (int64_t from = first, to = first; from < end; from = to) {
        while (to < end && TableStart(to) == TableStart(from)) {
            to += model.options.step;
        }
        WriteTable(from, to, observe);
        progress(static_cast<double>(to - first) / static_cast<double>(end - first));
    }
    database.Execute("commit;");
}

std::string StatisticsWriter::WriteInstant(int64_t time, int64_t keptFrom) {
    const int64_t start = TableStart(time);
    const bool isNewTable = TableStart(time - model.options.step) != start;
    database.Execute("begin immediate;");
    if (isNewTable) {
        CreateTable(start);
        CreateIndex(start);
        DropTables(keptFrom);
    }
    {
        SqliteStatement row = RowOf(start);
        WriteRows(row, time, [](size_t, int64_t, const Sample&) {});
    }
    database.Execute("commit;");
    return isNewTable ? TableName(start) : "";
}

int64_t StatisticsWriter::TableStart(int64_t time) const {
    return std::max(time / model.options.period * model.options.period, first);
}

std::string StatisticsWriter::TableName(int64_t start) const {
    return std::string(TABLE_PREFIX) + CompactTime(start, model.options.zoneOffset);
}

void StatisticsWriter::WriteCatalogue() {
    database.Execute(CATALOGUE);
    SqliteStatement name(database, "insert into version_nmaps values(?, ?);");
    const std::vector<Point>& points = model.topology.Points();
    for (size_t point = 0; point < points.size(); ++point) {
        if (!points[point].IsGroup()) {
            name.Bind(FIRST_LOCATE_ID + static_cast<int64_t>(point)).Bind(points[point].name).Run();
        }
    }
}

// Writes the table of the samples from time `from` to before `to`.
void StatisticsWriter::WriteTable(int64_t from, int64_t to, const RowObserver& observe) {
    const int64_t start = TableStart(from);
    CreateTable(start);
    {
        SqliteStatement row = RowOf(start);
        for (int64_t time = from; time < to; time += model.options.step) {
            WriteRows(row, time, observe);
        }
    }
    CreateIndex(start);  // faster than one that grows with the rows
}

void StatisticsWriter::CreateTable(int64_t start) {
    const std::string name = TableName(start);
    database.Execute("create table " + name + COLUMNS);
    SqliteStatement(database, "insert into table_flag values(?, ?);").Bind(name).Bind(start).Run();
}

void StatisticsWriter::CreateIndex(int64_t start) {
    const std::string name = TableName(start);
    database.Execute("create index " + name + "_point_time on " + name + "(locateid, curtime);");
}

void StatisticsWriter::DropTables(int64_t keptFrom) {
    for (int64_t start = first; start < TableStart(keptFrom); start = first) {
        const std::string name = TableName(start);
        database.Execute("drop table " + name);
        SqliteStatement(database, "delete from table_flag where tablename = ?;").Bind(name).Run();
        first = (start / model.options.period + 1) * model.options.period;
    }
}

SqliteStatement StatisticsWriter::RowOf(int64_t tableStart) {
    return {database,
            "insert into " + TableName(tableStart) + " values(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?);"};
}

void StatisticsWriter::WriteRows(SqliteStatement& row, int64_t time, const RowObserver& observe) {
    model.source.Fill(time, samples);
    for (size_t point = 0; point < samples.size(); ++point) {
        if (!model.topology.Points()[point].IsGroup() && !model.plan.IsMissing(point, time)) {
            WriteRow(row, point, time, samples[point]);
            observe(point, time, samples[point]);
        }
    }
}

void WriteStatistics(const std::filesystem::path& path, const WorldModel& model, int64_t first, int64_t end,
                     const RowObserver& observe, const Progress& progress) {
    SqliteFile database(path);
    StatisticsWriter(database, model, first).WriteHistory(end, observe, progress);
    if (model.options.hasWal) {
        // Now, since a writer that is killed while it switches leaves a file that readers alone cannot mend.
        database.Execute("pragma journal_mode = wal;");
    }
    database.Close();
}

}  // namespace lumosim

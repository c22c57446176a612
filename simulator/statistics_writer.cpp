#include "simulator/statistics_writer.h"

#include <algorithm>
#include <string>
#include <vector>

#include "simulator/local_time.h"
#include "simulator/sqlite_file.h"

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

class Writer {
public:
    Writer(const std::filesystem::path& path, const WorldOptions& worldOptions, const Topology& worldTopology,
           const Plan& worldPlan, const SampleSource& sampleSource, const RowObserver& rowObserver)
        : database(path),
          options(worldOptions),
          topology(worldTopology),
          plan(worldPlan),
          source(sampleSource),
          observe(rowObserver) {}

    void WriteCatalogue() {
        database.Execute(std::string("begin;") + CATALOGUE);
        SqliteStatement name(database, "insert into version_nmaps values(?, ?);");
        for (size_t point = 0; point < topology.Points().size(); ++point) {
            if (!topology.Points()[point].IsGroup()) {
                name.Bind(FIRST_LOCATE_ID + static_cast<int64_t>(point))
                    .Bind(topology.Points()[point].name)
                    .Run();
            }
        }
        database.Execute("commit;");
    }

    // Writes the table of the samples from number `first` to before number `end`.
    void WriteTable(int64_t first, int64_t end) {
        const int64_t start = options.TimeOf(first) / SECONDS_PER_HOUR * SECONDS_PER_HOUR;
        const int64_t named = std::max(start, options.Start());
        const std::string name = std::string(TABLE_PREFIX) + CompactTime(named, options.zoneOffset);
        database.Execute("begin; create table " + name + COLUMNS);
        SqliteStatement(database, "insert into table_flag values(?, ?);").Bind(name).Bind(named).Run();
        SqliteStatement row(database,
                            "insert into " + name + " values(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?);");
        for (int64_t sample = first; sample < end; ++sample) {
            WriteSamples(row, options.TimeOf(sample));
        }
        database.Execute("create index " + name + "_point_time on " + name + "(locateid, curtime); commit;");
    }

    void Close() { database.Close(); }

private:
    void WriteSamples(SqliteStatement& row, int64_t time) {
        source.Fill(time, samples);
        for (size_t point = 0; point < samples.size(); ++point) {
            if (!topology.Points()[point].IsGroup() && !plan.IsMissing(point, time)) {
                WriteRow(row, point, time, samples[point]);
                observe(point, time, samples[point]);
            }
        }
    }

    static void WriteRow(SqliteStatement& row, size_t point, int64_t time, const Sample& sample) {
        row.Bind(FIRST_LOCATE_ID + static_cast<int64_t>(point)).Bind(time);
        row.Bind(sample.accepted).Bind(sample.succeeded).Bind(sample.failed).Bind(sample.retried);
        row.Bind(sample.averageDelay).Bind(sample.maximumDelay).Bind(sample.minimumDelay);
        for (const int64_t count : sample.errorCodes) {
            row.Bind(count);
        }
        row.Run();
    }

    SqliteFile database;
    const WorldOptions& options;
    const Topology& topology;
    const Plan& plan;
    const SampleSource& source;
    const RowObserver& observe;
    std::vector<Sample> samples;
};

}  // namespace

void WriteStatistics(const std::filesystem::path& path, const WorldOptions& options, const Topology& topology,
                     const Plan& plan, const SampleSource& source, const RowObserver& observe,
                     const Progress& progress) {
    Writer writer(path, options, topology, plan, source, observe);
    writer.WriteCatalogue();
    const int64_t samples = options.SampleCount();
    const auto hourOf = [&](int64_t sample) { return options.TimeOf(sample) / SECONDS_PER_HOUR; };
    for (int64_t first = 0, end = 0; first < samples; first = end) {
        while (end < samples && hourOf(end) == hourOf(first)) {
            ++end;
        }
        writer.WriteTable(first, end);
        progress(static_cast<double>(end) / static_cast<double>(samples));
    }
    writer.Close();
}

}  // namespace lumosim

#include "explain/finding/sample_store.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "explain/finding/rows.h"
#include "fault_common/fault_common.h"
#include "fault_database/fault_database.h"
#include "fault_database/fault_database_table.h"

namespace explain {
namespace {

// The columns of the statement. Of all that the statistics have of an interval an explanation needs just
// these.
constexpr const char* TIME_AND_DELAY = "curtime, avgdelay";
constexpr const char* REQUESTS = "acceptnum";
constexpr size_t COLUMNS = 3;

// Of a range, and of a point in it: days of tables made every minute, and of a row a second.
constexpr size_t MOST_TABLES = 10'000;
constexpr size_t MOST_ROWS = 1'000'000;

[[noreturn]] void ThrowTooMany(const char* what, const std::string& subject) {
    throw NoData({ReasonKind::BAD_VALUE, 0, 0, subject + ": too many " + what + " for the range"});
}

std::vector<std::string> TablesOf(const Window& stretch) {
    std::vector<std::string> tables;
    const std::string start = CompactTime(stretch.start);
    const std::string end = CompactTime(stretch.end);
    try {
        if (FaultGetQueryTable(start, end, tables) != 0) {
            throw NoData({ReasonKind::UNREADABLE_DATABASE});
        }
    } catch (const std::logic_error&) {  // of a conversion, which says less
        throw NoData({ReasonKind::BAD_VALUE, 0, 0, "a table's name in table_flag has no time"});
    }
    if (tables.size() > MOST_TABLES) {
        ThrowTooMany("tables", "table_flag");
    }
    return tables;
}

Samples SamplesOf(const std::vector<int64_t>& numbers) {
    Samples samples;
    samples.reserve(numbers.size() / COLUMNS);
    for (size_t i = 0; i + COLUMNS <= numbers.size(); i += COLUMNS) {
        samples.push_back(
            {numbers[i], static_cast<double>(numbers[i + 1]), static_cast<double>(numbers[i + 2])});
    }
    return samples;
}

void KeepWithin(const Window& stretch, Samples& samples) {
    const auto [first, end] = PositionsIn(samples, stretch);
    samples.erase(samples.begin() + static_cast<std::ptrdiff_t>(end), samples.end());
    samples.erase(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(first));
}

void Append(const Samples& rows, Samples& samples) {
    samples.insert(samples.end(), rows.begin(), rows.end());
}

// The rows of the last time that is known stand in its place: a second one of it may be new.
void Continue(const Samples& rows, Samples& samples) {
    const int64_t last = samples.back().time;
    if (std::any_of(rows.begin(), rows.end(), [=](const Sample& row) { return row.time == last; })) {
        KeepWithin({samples.front().time, last - 1}, samples);
    }
    Append(rows, samples);
}

FaultSeries SeriesOf(const Samples& samples, double Sample::*column) {
    constexpr double MOST = 9223372036854774784.0;  // the largest below 2^63
    FaultSeries series;
    series.reserve(samples.size());
    for (const Sample& sample : samples) {
        series.push_back({sample.time, static_cast<int64_t>(std::clamp(sample.*column, -MOST, MOST))});
    }
    return series;
}

}  // namespace

std::string CompactTime(int64_t time) {
    std::string text;
    if (TransUtcTimeToLocalTime(std::to_string(time), text) != 0) {
        throw std::runtime_error("this machine's zone is not known: the command date cannot be run");
    }
    return text;
}

SampleStore::SampleStore(const std::vector<Window>& stretches) {
    for (const Window& stretch : stretches) {
        parts.push_back({stretch, TablesOf(stretch)});
    }
}

void SampleStore::MoveTo(const Window& stretch) {
    points.merge(former);
    former = std::exchange(points, {});
    for (auto point = former.begin(); point != former.end();) {
        KeepWithin(stretch, point->second.samples);
        point = point->second.samples.empty() ? former.erase(point) : std::next(point);
    }
    partsSince.clear();
    parts = {{stretch, TablesOf(stretch)}};
}

const PointData& SampleStore::Of(const std::string& point) {
    const auto known = points.find(point);
    try {
        return known != points.end() ? known->second : points.emplace(point, Load(point)).first->second;
    } catch (const std::logic_error& error) {
        throw std::invalid_argument(point + ": " + error.what());
    }
}

const SampleStore::Part& SampleStore::PartSince(int64_t time) {
    const auto known = partsSince.find(time);
    const Window stretch{time, parts.back().stretch.end};
    return known != partsSince.end()
               ? known->second
               : partsSince.emplace(time, Part{stretch, TablesOf(stretch)}).first->second;
}

Samples SampleStore::Rows(const std::string& point, const Part& part) const {
    std::vector<int64_t> numbers;
    FaultSqlInputParam query{TIME_AND_DELAY, REQUESTS, {}, SqlText(point), {}, {}};
    query.beginTime = std::to_string(part.stretch.start);
    query.endTime = std::to_string(part.stretch.end);
    for (const std::string& table : part.tables) {
        query.tableName = table;
        std::string sql;
        FaultConstructSql(query, sql);
        AppendNumbers(sql, {ReasonKind::UNREADABLE_POINT, 0, 0, point}, numbers);
        if (numbers.size() > MOST_ROWS * COLUMNS) {
            ThrowTooMany("rows", point);
        }
    }
    return SamplesOf(numbers);
}

PointData SampleStore::Load(const std::string& point) {
    const auto kept = former.find(point);
    PointData data;
    if (kept != former.end()) {
        const Samples rows = Rows(point, PartSince(kept->second.samples.back().time));
        data = std::move(kept->second);
        former.erase(kept);
        Continue(rows, data.samples);
    } else {
        for (const Part& part : parts) {
            Append(Rows(point, part), data.samples);
        }
    }
    const auto before = [](const Sample& a, const Sample& b) { return a.time < b.time; };
    data.hasGoneBack = data.hasGoneBack || !std::is_sorted(data.samples.begin(), data.samples.end(), before);
    std::stable_sort(data.samples.begin(), data.samples.end(), before);
    return data;
}

FaultSeries DelaySeries(const Samples& samples) {
    return SeriesOf(samples, &Sample::delay);
}

FaultSeries RequestSeries(const Samples& samples) {
    return SeriesOf(samples, &Sample::requests);
}

}  // namespace explain

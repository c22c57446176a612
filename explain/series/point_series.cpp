#include "explain/point_series.h"

#include <json/writer.h>

#include <algorithm>
#include <map>
#include <sstream>

#include "cli/program.h"
#include "explain/finding/rows.h"
#include "explain/wording.h"
#include "fault_database/fault_database.h"
#include "fault_database/fault_database_table.h"
#include "text/nearest_name.h"
#include "text/utf8.h"

namespace explain {
namespace {

// What operators ask for most comes first.
const std::vector<std::string> COLUMNS = {"avgdelay",   "maxdelay",  "mindelay", "acceptnum",
                                          "successnum", "failednum", "retrynum", "errCode0",
                                          "errCode1",   "errCode2",  "errCode3", "errCode4"};
constexpr const char* NOT_THERE = ": the statistics have none of this name";
constexpr size_t MOST_ROWS = 1'000'000;

// With the one that was probably meant or, where none is near, what else helps.
[[noreturn]] void ThrowUnknown(const std::string& thing, const std::string& name,
                               const std::vector<std::string>& names, const std::string& otherwise) {
    const std::string meant = DidYouMean(name, names);
    throw cli::UsageError("unknown " + thing + " '" + name + "'" + (meant.empty() ? otherwise : meant));
}

std::vector<std::string> ColumnsOf(const std::string& list) {
    std::vector<std::string> columns;
    std::istringstream words(list);
    for (std::string name; std::getline(words, name, ',');) {
        if (std::find(COLUMNS.begin(), COLUMNS.end(), name) == COLUMNS.end()) {
            ThrowUnknown("column", name, COLUMNS, "; --help lists them");
        }
        columns.push_back(name);
    }
    return columns.empty() ? COLUMNS : columns;
}

// Only what was chosen has to be there: the tables of old statistics have no errors.
void LeaveOutMissing(const std::string& table, PointSeries& series) {
    const std::string definition = DefinitionOf(table);
    const auto isMissing = [&](const std::string& column) {
        return definition.find(column) == std::string::npos;
    };
    std::vector<std::string>& columns = series.columns;
    const auto missing = std::find_if(columns.begin(), columns.end(), isMissing);
    if (series.isChosen && missing != columns.end()) {
        ThrowUnknown("column", *missing, {}, NOT_THERE);
    }
    columns.erase(std::remove_if(missing, columns.end(), isMissing), columns.end());
}

std::vector<int64_t> NumbersOf(PointSeries& series) {
    const Window& range = series.report.question.range;
    const SampleStore store({range});
    const std::vector<std::string>& tables = store.Parts().front().tables;
    for (const std::string& table : tables) {
        LeaveOutMissing(table, series);
    }
    FaultSqlInputParam query{
        "curtime", {}, {}, SqlText(series.point), std::to_string(range.start), std::to_string(range.end)};
    for (const std::string& column : series.columns) {
        query.selectColumn += ", " + column;
    }
    std::vector<int64_t> numbers;
    for (const std::string& table : tables) {
        std::string sql;
        query.tableName = table;
        FaultConstructSql(query, sql);
        AppendNumbers(sql, {ReasonKind::UNREADABLE_POINT, 0, 0, series.point}, numbers);
        if (numbers.size() > MOST_ROWS * (series.columns.size() + 1)) {
            throw NoData({ReasonKind::BAD_VALUE, 0, 0, series.point + ": too many rows for the range"});
        }
    }
    return numbers;
}

Coverage CoverageOf(const PointSeries& series) {
    PointData data;
    for (const SeriesRow& row : series.rows) {
        data.samples.push_back({row.time, 0.0, 0.0});
    }
    return explain::CoverageOf({{series.point, data}}, series.report.question.range);
}

}  // namespace

PointSeries LoadSeries(const std::string& point, const std::string& columns, Report report) {
    PointSeries series{point, ColumnsOf(columns), {}, std::move(report), !columns.empty()};
    const std::vector<std::string> known = TextsOf("select locatename from version_nmaps;");
    if (known.empty()) {
        throw NoData({ReasonKind::NO_ROWS_AT_ALL});
    }
    if (std::find(known.begin(), known.end(), point) == known.end()) {
        ThrowUnknown("point", point, known, NOT_THERE);
    }
    const std::vector<int64_t> numbers = NumbersOf(series);
    const auto width = static_cast<std::ptrdiff_t>(series.columns.size()) + 1;
    for (auto cell = numbers.begin(); cell < numbers.end(); cell += width) {
        series.rows.push_back({*cell, {cell + 1, cell + width}});
    }
    if (series.rows.empty()) {
        throw NoData({ReasonKind::NO_ROWS_OF_POINT, 0, 0, point});
    }
    std::stable_sort(series.rows.begin(), series.rows.end(),
                     [](const SeriesRow& a, const SeriesRow& b) { return a.time < b.time; });
    series.report.coverage = CoverageOf(series);
    return series;
}

std::string SeriesCsv(const PointSeries& series) {
    std::string text = "time";
    for (const std::string& column : series.columns) {
        text += "," + column;
    }
    text += "\n";
    for (const SeriesRow& row : series.rows) {
        text += LocalTime(row.time, series.report.zoneOffset);
        for (const int64_t value : row.values) {
            text += "," + std::to_string(value);
        }
        text += "\n";
    }
    return text;
}

std::string SeriesJson(const PointSeries& series) {
    const Window& range = series.report.question.range;
    Json::Value document;
    document["version"] = 1;
    document["point"] = ValidUtf8(series.point);
    document["zone"] = ZoneText(series.report.zoneOffset);
    document["start"] = static_cast<Json::Int64>(range.start);
    document["end"] = static_cast<Json::Int64>(range.end);
    document["columns"] = Json::Value(Json::arrayValue);
    document["columns"].append("time");
    for (const std::string& column : series.columns) {
        document["columns"].append(column);
    }
    document["rows"] = Json::Value(Json::arrayValue);
    for (const SeriesRow& row : series.rows) {
        Json::Value& values = document["rows"].append(Json::Value(Json::arrayValue));
        values.append(static_cast<Json::Int64>(row.time));
        for (const int64_t value : row.values) {
            values.append(static_cast<Json::Int64>(value));
        }
    }
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, document) + "\n";
}

}  // namespace explain

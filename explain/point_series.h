// All that the statistics hold of one point, row by row, and its forms.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "explain/report.h"
#include "text/screen_style.h"

namespace explain {

struct SeriesRow {
    int64_t time = 0;             // UTC seconds
    std::vector<int64_t> values;  // of the columns
};

struct PointSeries {
    std::string point;
    std::vector<std::string> columns;
    std::vector<SeriesRow> rows;  // of ascending times
    Report report;                // the range, the coverage and the zone; no answers
    bool isChosen = false;        // the columns were named: else they are all there are
};

// Loads the rows of a point in the report's range. `columns` are names of columns, comma-separated; empty for
// all that the statistics have. The database must be open; blocks on it. Throws cli::UsageError for a point
// or a column that is not known, with the one that was probably meant, and NoData where there are no rows or
// they cannot be read.
PointSeries LoadSeries(const std::string& point, const std::string& columns, Report report);

// For a terminal: a sparkline for each column, then the rows. Of columns that were not chosen, those that are
// zero throughout are left out, and those that do not fit a line are named below.
std::string SeriesText(const PointSeries& series, const ScreenStyle& style);

// A line of names and one for each row, the local time first.
std::string SeriesCsv(const PointSeries& series);

// A document that follows docs/series.schema.json, in a line.
std::string SeriesJson(const PointSeries& series);

}  // namespace explain

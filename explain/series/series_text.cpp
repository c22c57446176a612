#include <algorithm>

#include "explain/point_series.h"
#include "explain/wording.h"
#include "text/colours.h"
#include "text/layout.h"
#include "text/printable.h"
#include "text/sparkline.h"

namespace explain {
namespace {

constexpr int64_t DAY = 86400;  // seconds
constexpr size_t YEAR_LETTERS = 5;
constexpr const char* GAP = "  ";
constexpr double LATE = 1.5;  // steps

struct Column {
    size_t position = 0;
    int64_t least = 0;
    int64_t most = 0;
    size_t cells = 0;
};

class Sheet {
public:
    Sheet(const PointSeries& toShow, const ScreenStyle& toKeep)
        : series(toShow), report(toShow.report), style(toKeep) {
        ChooseColumns();
    }

    std::string Text() const { return Head() + Bars() + Table() + LeftOut(); }

private:
    Column ColumnAt(size_t position) const {
        Column column{position, series.rows.front().values[position], series.rows.front().values[position],
                      0};
        for (const SeriesRow& row : series.rows) {
            column.least = std::min(column.least, row.values[position]);
            column.most = std::max(column.most, row.values[position]);
        }
        column.cells = std::max({series.columns[position].size(), std::to_string(column.least).size(),
                                 std::to_string(column.most).size()});
        return column;
    }

    void ChooseColumns() {
        size_t used = TimeText(series.rows.front().time).size();
        for (size_t i = 0; i < series.columns.size(); ++i) {
            const Column column = ColumnAt(i);
            const bool isTold = series.isChosen || column.least != 0 || column.most != 0;
            const bool fits = used + GapCells() + column.cells <= style.width;
            if (isTold && (fits || series.isChosen)) {
                used += GapCells() + column.cells;
                columns.push_back(column);
            } else if (isTold) {
                leftOut += (leftOut.empty() ? "" : ",") + series.columns[i];
            }
        }
    }

    static size_t GapCells() { return std::string_view(GAP).size(); }

    std::string TimeText(int64_t time) const {
        const Window& range = report.question.range;
        return range.end - range.start > DAY ? LocalTime(time, report.zoneOffset).substr(YEAR_LETTERS)
                                             : TimeOfDay(time, report.zoneOffset);
    }

    std::string Painted(const std::string& text, const char* colour) const {
        return style.hasColours ? colour + text + COLOUR_END : text;
    }

    std::string Head() const {
        const std::string missing = MissingOf(report);
        return Painted(Printable(series.point), COLOUR_BOLD) + "\n" +
               Paragraph("", RangeOf(report) + ", " + NewestOf(report), style.width) +
               (missing.empty() ? "" : Paragraph("", missing, style.width)) + "\n";
    }

    // Each column from nothing to its largest value.
    std::string Bars() const {
        size_t names = 0;
        size_t limits = 0;
        for (const Column& column : columns) {
            names = std::max(names, series.columns[column.position].size());
            limits = std::max(limits, Limits(column).size());
        }
        const size_t others = names + limits + 3 * GapCells();
        const size_t cells = style.width - std::min(style.width, others);
        std::string text;
        for (const Column& column : columns) {
            text += GAP + PadRight(series.columns[column.position], names) + GAP + Bar(column, cells) + GAP +
                    Limits(column) + "\n";
        }
        return text + "\n";
    }

    static std::string Limits(const Column& column) {
        return column.least == column.most
                   ? std::to_string(column.least)
                   : std::to_string(column.least) + " to " + std::to_string(column.most);
    }

    std::string Bar(const Column& column, size_t cells) const {
        std::vector<TimedValue> values;
        for (const SeriesRow& row : series.rows) {
            values.push_back({row.time, static_cast<double>(row.values[column.position])});
        }
        const Window& range = report.question.range;
        return Sparkline(LargestPerCell(values, range.start, range.end, report.coverage.step, cells), 0.0,
                         static_cast<double>(column.most), style.isUnicode);
    }

    std::string Table() const {
        std::string text = PadRight("time", TimeText(series.rows.front().time).size());
        for (const Column& column : columns) {
            text += GAP + PadLeft(series.columns[column.position], column.cells);
        }
        text = Painted(text, COLOUR_BOLD) + "\n";
        for (size_t i = 0; i < series.rows.size(); ++i) {
            text += Missing(i) + TimeText(series.rows[i].time);
            for (const Column& column : columns) {
                text += GAP + PadLeft(std::to_string(series.rows[i].values[column.position]), column.cells);
            }
            text += "\n";
        }
        return text;
    }

    // That there are no rows before this one.
    std::string Missing(size_t position) const {
        const int64_t step = report.coverage.step;
        const int64_t since = position == 0 ? 0 : series.rows[position].time - series.rows[position - 1].time;
        return static_cast<double>(since) <= LATE * static_cast<double>(step)
                   ? ""
                   : "(no rows for " + Duration(since - step) + ")\n";
    }

    std::string LeftOut() const {
        return leftOut.empty() ? ""
                               : Paragraph("", "The line has no room for: --columns " + leftOut, style.width);
    }

    const PointSeries& series;
    const Report& report;
    const ScreenStyle& style;
    std::vector<Column> columns;
    std::string leftOut;
};

}  // namespace

std::string SeriesText(const PointSeries& series, const ScreenStyle& style) {
    return Sheet(series, style).Text();
}

}  // namespace explain

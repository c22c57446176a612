#include <algorithm>
#include <array>
#include <numeric>

#include "fleet/reports/report.h"
#include "fleet/reports/wording.h"
#include "page/markup.h"
#include "text/counted.h"
#include "text/layout.h"
#include "text/printable.h"

namespace fleet {
namespace {

constexpr size_t COLUMNS = 8;
constexpr size_t MOST_LINES = 200;   // of nodes; of more, those of which there is nothing to tell are counted
constexpr size_t FEWEST_CELLS = 10;  // of a name that is cut
constexpr size_t NODE = 0, POINT = 4, FIRST_NUMBER = 5;

using Cells = std::array<std::string, COLUMNS>;

Cells CellsOfRow(const Row& row) {
    return {Printable(row.node),  row.verdict, row.since, row.state,
            Printable(row.point), row.share,   row.host,  row.peers};
}

// As wide as their cells; where that is more than a line, names are cut.
std::array<size_t, COLUMNS> WidthsOf(const std::vector<Cells>& rows) {
    std::array<size_t, COLUMNS> widths{};
    for (const Cells& row : rows) {
        for (size_t i = 0; i < COLUMNS; ++i) {
            widths[i] = std::max(widths[i], CellsOf(row[i]));
        }
    }
    for (const size_t column : {NODE, POINT}) {
        const size_t all = std::accumulate(widths.begin(), widths.end(), COLUMNS - 1);
        const size_t over = all - std::min(all, LINE_CELLS);
        widths[column] =
            std::max(widths[column] - std::min(widths[column], over), std::min(widths[column], FEWEST_CELLS));
    }
    return widths;
}

std::string LineOf(const Cells& row, const std::array<size_t, COLUMNS>& widths) {
    std::string line;
    for (size_t i = 0; i < COLUMNS; ++i) {
        const bool isCut = CellsOf(row[i]) > widths[i];
        const std::string cell = isCut ? page::Shortened(row[i], widths[i]) : row[i];
        line +=
            (i > 0 ? " " : "") + (i >= FIRST_NUMBER ? PadLeft(cell, widths[i]) : PadRight(cell, widths[i]));
    }
    return line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
}

bool SaysNothing(const Outcome& outcome, size_t node) {
    return MainRoleOf(outcome, node) == nullptr && outcome.nodes[node].status == NOTHING_FOUND;
}

std::string NodesText(const Outcome& outcome) {
    std::vector<Cells> rows = {{}};
    std::copy(std::begin(ROW_TITLES), std::end(ROW_TITLES), rows.front().begin());
    const bool isOneDay = IsOneDay(outcome);
    size_t left = 0;
    for (size_t node = 0; node < outcome.nodes.size(); ++node) {
        if (outcome.nodes.size() > MOST_LINES && SaysNothing(outcome, node)) {
            ++left;
        } else {
            rows.push_back(CellsOfRow(RowOf(outcome, node, isOneDay)));
        }
    }
    const std::array<size_t, COLUMNS> widths = WidthsOf(rows);
    std::string text;
    for (const Cells& row : rows) {
        text += LineOf(row, widths);
    }
    return text + (left > 0 ? "and " + Counted(left, "node") + " with nothing anomalous\n" : "");
}

std::string IncidentText(const Outcome& outcome, size_t position) {
    const Incident& incident = outcome.fold.incidents[position];
    constexpr size_t NAME_CELLS = 7;
    std::string text =
        "\n" + Paragraph("Incident " + std::to_string(position + 1) + ": ", TitleOf(incident, outcome));
    for (const Line& line : LinesOf(incident, outcome)) {
        text += Paragraph("  " + PadRight(line.name, NAME_CELLS), Printable(line.sentence));
    }
    return text;
}

}  // namespace

std::string TextReport(const Outcome& outcome) {
    std::string text =
        Paragraph("", BasisOf(outcome)) + Paragraph("", ROW_LEGEND) + "\n" + NodesText(outcome);
    for (size_t i = 0; i < outcome.fold.incidents.size(); ++i) {
        text += IncidentText(outcome, i);
    }
    text += "\n";
    for (const std::string& sentence : ConclusionOf(outcome)) {
        text += Paragraph("", Printable(sentence));
    }
    return text;
}

}  // namespace fleet

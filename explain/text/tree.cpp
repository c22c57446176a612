#include "explain/text/sections.h"

#include <cmath>
#include <vector>

#include "explain/wording.h"
#include "text/layout.h"
#include "text/printable.h"

namespace explain {
namespace {

constexpr size_t MOST_NODES = 30;   // of a graph that is shown whole
constexpr size_t TREE_COLUMN = 36;  // where the names begin
constexpr double MOST_SHOWN = 9999.0;

struct Place {
    std::vector<size_t> below;  // the nodes that are first reached through it
    size_t size = 1;            // of it and all below it
    bool isLively = false;      // one of these takes part
};

// Where each node stands. A parent stands before its children in the list.
std::vector<Place> PlacesOf(const std::vector<NodeFinding>& findings) {
    std::vector<Place> places(findings.size());
    for (size_t i = 1; i < findings.size(); ++i) {
        places[findings[i].parent].below.push_back(i);
    }
    for (size_t i = places.size(); i-- > 0;) {
        places[i].isLively = findings[i].evidence.takesPart;
        for (const size_t child : places[i].below) {
            places[i].isLively = places[i].isLively || places[child].isLively;
            places[i].size += places[child].size;
        }
    }
    return places;
}

struct Line {
    size_t depth = 0;
    size_t node = 0;
    size_t counted = 0;  // instead of the node: how many nodes are not shown
};

// The lines from the top down: what stands below a node follows it.
std::vector<Line> LinesOf(const std::vector<Place>& places) {
    std::vector<Line> lines;
    std::vector<Line> open = {{0, 0, 0}};
    while (!open.empty()) {
        lines.push_back(open.back());
        open.pop_back();
        const Line line = lines.back();
        const std::vector<size_t>& below = places[line.node].below;
        if (line.counted > 0 || below.empty()) {
            continue;
        }
        const size_t next = open.size();
        open.push_back({line.depth + 1, 0, 0});
        for (size_t i = below.size(); i-- > 0;) {
            if (places.size() <= MOST_NODES || places[below[i]].isLively) {
                open.push_back({line.depth + 1, below[i], 0});
            } else {
                open[next].counted += places[below[i]].size;
            }
        }
        if (open[next].counted == 0) {
            open.erase(open.begin() + static_cast<std::ptrdiff_t>(next));
        }
    }
    return lines;
}

// `text` as far to the right as its depth says; where the line has no room for that, after the depth in
// figures.
std::string Indented(const std::string& text, size_t depth, size_t room) {
    return depth * 2 + CellsOf(text) <= room ? std::string(depth * 2, ' ') + text
                                             : "[" + std::to_string(depth) + "] " + text;
}

// A number with its sign, of at most seven characters; "-" for none.
std::string SignedText(const std::optional<double>& value, int decimals) {
    if (!value) {
        return "-";
    }
    if (std::fabs(*value) > MOST_SHOWN) {
        return *value > 0.0 ? ">+9999" : "<-9999";
    }
    return (*value < 0.0 ? "" : "+") + Fixed(*value, decimals);
}

std::string Columns(const NodeFinding& finding) {
    const Evidence& evidence = finding.evidence;
    return PadLeft(evidence.takesPart ? Percent(finding.share) : "-", 8) + "  " +
           PadLeft(SignedText(evidence.deviations, 1), 7) + "  " +
           PadLeft(SignedText(finding.correlation, 2), 5) + "  " +
           PadRight(evidence.nature == Nature::UNKNOWN ? "-" : WordOf(evidence.nature), 6);
}

std::string NodeLine(const std::vector<NodeFinding>& findings, const Line& line) {
    const NodeFinding& finding = findings[line.node];
    const GraphNode& node = finding.node;
    const std::string& graphAbove = findings[finding.parent].node.graph;
    const std::string columns = Columns(finding) + (finding.evidence.takesPart ? "  * " : "    ");
    const std::string name =
        Printable(node.point) + (node.graph == graphAbove ? "" : " (" + Printable(node.graph) + ")");
    return Beside(columns, Indented(name, line.depth, LINE_CELLS - CellsOf(columns)));
}

}  // namespace

std::string TreeText(const Analysis& analysis) {
    std::string text = "\nWhere the extra delay goes\n" + Paragraph("  ", COLUMNS_LEGEND) +
                       "   share        z      r  nature    point (* takes part)\n";
    for (const Line& line : LinesOf(PlacesOf(analysis.findings))) {
        if (line.counted > 0) {
            const std::string counted = "(" + Counted(line.counted, "point") + " without a part)";
            const std::string blanks(TREE_COLUMN, ' ');
            text += blanks + Indented(counted, line.depth, LINE_CELLS - blanks.size()) + "\n";
        } else {
            text += NodeLine(analysis.findings, line);
        }
    }
    return text;
}

}  // namespace explain

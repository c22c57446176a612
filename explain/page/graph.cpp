#include "explain/page/drawings.h"

#include <algorithm>

#include "explain/page/figures.h"
#include "explain/page/flow_picture.h"
#include "explain/wording.h"
#include "page/svg.h"

namespace explain {
using namespace page;
namespace {

// In the units of the drawing, which is shown in about its own size on a wide screen.
constexpr double NODE_WIDTH = 200.0;
constexpr double NODE_HEIGHT = 52.0;
constexpr double BETWEEN_COLUMNS = 28.0;  // where lines pass rows
constexpr double BETWEEN_ROWS = 44.0;     // where they change columns
constexpr double MARGIN = 8.0;
constexpr double LANE = 7.0;
constexpr double TURN = 36.0;  // above and below all rows, for lines that lead back up
constexpr double BAR_HEIGHT = 5.0;
constexpr double LINE_HEIGHT = 15.0;
constexpr double PADDING = 9.0;
constexpr double WIDEST_FLOW = 12.0;
constexpr double LEAST_TOLD = 0.0005;  // that does not read as 0.0 %
constexpr size_t NAME_CELLS = 28;      // that fit a node
constexpr size_t MOST_LISTED = 60;
constexpr size_t DEEPEST_LISTED = 12;  // deeper ones stand no farther to the right

double LeftOf(const PlacedNode& node) {
    return MARGIN + BETWEEN_COLUMNS + static_cast<double>(node.column) * (NODE_WIDTH + BETWEEN_COLUMNS);
}

double TopOf(const PlacedNode& node) {
    return MARGIN + static_cast<double>(node.row) * (NODE_HEIGHT + BETWEEN_ROWS);
}

// An end of a line: the middle of a box's lower or upper side.
struct End {
    double x = 0.0;
    double y = 0.0;
};

std::string Curve(double x, double y, double nextX, double nextY, const End& end) {
    return " C" + PlaceFigure(x, y) + " " + PlaceFigure(nextX, nextY) + " " + PlaceFigure(end.x, end.y);
}

// Straight down to the next row. To any other one, beside the columns of the boxes between: what lies in
// one place would be hidden, so such lines take three lanes in turns.
std::string OutlineOf(const PlacedNode& from, const PlacedNode& to, size_t lane) {
    const End begin{LeftOf(from) + NODE_WIDTH / 2, TopOf(from) + NODE_HEIGHT};
    const End end{LeftOf(to) + NODE_WIDTH / 2, TopOf(to)};
    const double bend = BETWEEN_ROWS * 0.8;
    const std::string start = "M" + PlaceFigure(begin.x, begin.y);
    if (from.row + 1 == to.row) {
        return start + Curve(begin.x, begin.y + bend, end.x, end.y - bend, end);
    }
    const double side = (NODE_WIDTH + BETWEEN_COLUMNS) / 2;
    const double x =
        end.x + (from.column < to.column ? -side : side) + (static_cast<double>(lane % 3) - 1.0) * LANE;
    const bool isUp = from.row >= to.row;
    const double room = isUp ? 0.0 : BETWEEN_ROWS;
    return start +
           Curve(begin.x, begin.y + bend, x, begin.y + room - (isUp ? -bend : bend), {x, begin.y + room}) +
           " V" + Figure(end.y - room, 1) +
           Curve(x, end.y - room + (isUp ? -bend : bend), end.x, end.y - bend, end);
}

Markup DrawEdge(const Analysis& analysis, const FlowPicture& picture, size_t lane) {
    const PlacedEdge& edge = picture.edges[lane];
    const PlacedNode& from = picture.nodes[edge.from];
    const PlacedNode& to = picture.nodes[edge.to];
    const std::string outline = OutlineOf(from, to, lane);
    if (edge.flow <= 0.0) {
        return Element("path", {{"class", "edge"}, {"d", outline}});
    }
    const Markup title = Element("title", Text(PercentFigure(edge.flow) + " flows from ") +
                                              Text(analysis.findings[from.node].node.point) + Text(" to ") +
                                              Text(analysis.findings[to.node].node.point));
    return Element("path",
                   {{"class", edge.skips ? "flow skips" : "flow"},
                    {"d", outline},
                    {"stroke-width", Figure(1.0 + edge.flow * (WIDEST_FLOW - 1.0), 1)}},
                   title);
}

Markup Line(const PlacedNode& place, size_t line, const char* style, const std::string& text) {
    return Element("text",
                   {{"class", style},
                    {"x", Figure(LeftOf(place) + PADDING, 1)},
                    {"y", Figure(TopOf(place) + LINE_HEIGHT * static_cast<double>(line), 1)}},
                   Text(text));
}

Markup Box(const PlacedNode& place, const char* style, double top, double width, double height) {
    return Element("rect", {{"class", style},
                            {"x", Figure(LeftOf(place), 1)},
                            {"y", Figure(TopOf(place) + top, 1)},
                            {"width", Figure(width, 1)},
                            {"height", Figure(height, 1)},
                            {"rx", "3"}});
}

// What a node says of its part.
std::string PartOf(const NodeFinding& finding, double flow) {
    if (!finding.evidence.takesPart) {
        return flow > 0.0 ? "looked through" : "no part";
    }
    return "own " + PercentFigure(finding.share) + " of " + PercentFigure(flow);
}

// Whether the answer names the node, or nearly does.
bool IsNamed(const Analysis& analysis, size_t node) {
    const std::vector<Candidate>& candidates = analysis.candidates;
    return analysis.verdict == Verdict::POINT &&
           (node == candidates.front().node || (IsTie(candidates) && node == candidates[1].node));
}

Markup DrawNode(const Analysis& analysis, const PlacedNode& place) {
    const NodeFinding& finding = analysis.findings[place.node];
    const bool takesPart = finding.evidence.takesPart;
    const bool isFirst = IsNamed(analysis, place.node);
    const std::string part = PartOf(finding, place.flow);
    Markup node = Element("title", Text(finding.node.point) + Text(", ") + Text(part) + Text(", graph ") +
                                       Text(finding.node.graph));
    node += Box(place, "box", 0.0, NODE_WIDTH, NODE_HEIGHT);
    if (takesPart) {
        node += Box(place, "share", NODE_HEIGHT - BAR_HEIGHT, NODE_WIDTH * finding.share, BAR_HEIGHT);
    }
    node += Line(place, 1, "name", Shortened(finding.node.point, NAME_CELLS));
    node += Line(place, 2, "part", part);
    if (finding.node.graph != analysis.graph) {
        node += Line(place, 3, "where", Shortened("in " + finding.node.graph, NAME_CELLS));
    }
    return Element("g", {{"class", isFirst ? "node first" : takesPart ? "node part-taker" : "node"}}, node);
}

std::string Description(const Analysis& analysis, const FlowPicture& picture) {
    std::string text = "At the top " + analysis.point + ", below it the points it waits for.";
    for (const Candidate& candidate : analysis.candidates) {
        if (&candidate - analysis.candidates.data() < 3) {
            text += " " + candidate.point + " holds " + PercentFigure(candidate.share) + ".";
        }
    }
    return text + " " + Counted(picture.nodes.size(), "point") + " drawn.";
}

Markup LeftOutNote(const FlowPicture& picture, double height) {
    if (picture.leftOut == 0) {
        return {};
    }
    const std::string share = picture.leftOutShare >= LEAST_TOLD
                                  ? " with " + PercentFigure(picture.leftOutShare) + " together"
                                  : " without a share of their own";
    return Element("text", {{"class", "rest"}, {"x", Figure(MARGIN, 1)}, {"y", Figure(height - MARGIN, 1)}},
                   Text("and " + Counted(picture.leftOut, "more point") + share));
}

bool LeadsBack(const FlowPicture& picture) {
    return std::any_of(picture.edges.begin(), picture.edges.end(), [&](const PlacedEdge& edge) {
        return picture.nodes[edge.from].row >= picture.nodes[edge.to].row;
    });
}

Markup ListedNode(const NodeFinding& finding, size_t depth) {
    const std::string indent = Figure(static_cast<double>(std::min(depth, DEEPEST_LISTED)) * 10.0, 0);
    return Element("p", {{"style", "margin-left:" + indent + "px"}},
                   Element("strong", finding.node.point) + Element("br", Attributes{}) +
                       Text("own " + PercentFigure(finding.share) + ", " + WordOf(finding.evidence.nature)));
}

}  // namespace

Markup GraphDrawing(const Analysis& analysis, size_t number) {
    const FlowPicture picture = PictureOf(analysis);
    const double turn = LeadsBack(picture) ? TURN : 0.0;
    const double width =
        (NODE_WIDTH + BETWEEN_COLUMNS) * static_cast<double>(PICTURE_COLUMNS) + BETWEEN_COLUMNS + MARGIN * 2;
    const double height = (NODE_HEIGHT + BETWEEN_ROWS) * static_cast<double>(picture.rows) - BETWEEN_ROWS +
                          MARGIN * 2 + turn + (picture.leftOut > 0 ? LINE_HEIGHT * 2 : 0.0);
    Markup drawing;
    for (const bool flows : {false, true}) {  // what flows lies above what does not
        for (size_t i = 0; i < picture.edges.size(); ++i) {
            drawing += flows == (picture.edges[i].flow > 0.0) ? DrawEdge(analysis, picture, i) : Markup();
        }
    }
    for (const PlacedNode& node : picture.nodes) {
        drawing += DrawNode(analysis, node);
    }
    drawing += LeftOutNote(picture, height);
    return Drawing("graph", "graph" + std::to_string(number),
                   "0 " + Figure(-turn, 0) + " " + Figure(width, 0) + " " + Figure(height + turn, 0),
                   Text("Where the extra delay of ") + Text(analysis.point) + Text(" goes"),
                   Description(analysis, picture), drawing);
}

Markup FlowList(const Analysis& analysis) {
    std::vector<std::vector<size_t>> below(analysis.findings.size());
    for (size_t i = 1; i < below.size(); ++i) {
        below[analysis.findings[i].parent].push_back(i);
    }
    Markup list;
    size_t listed = 0;
    std::vector<std::pair<size_t, size_t>> open{{0, 0}};  // nodes with their depths
    while (!open.empty() && listed < MOST_LISTED) {
        const auto [node, depth] = open.back();
        open.pop_back();
        const bool takesPart = analysis.findings[node].evidence.takesPart;
        if (takesPart) {
            list += ListedNode(analysis.findings[node], depth);
            ++listed;
        }
        for (size_t i = below[node].size(); i-- > 0;) {
            open.emplace_back(below[node][i], depth + (takesPart ? 1 : 0));
        }
    }
    return Element("div", {{"class", "flows narrow"}}, list);
}

}  // namespace explain

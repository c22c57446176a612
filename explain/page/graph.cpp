#include "explain/page/drawings.h"

#include <algorithm>

#include "explain/page/figures.h"
#include "explain/page/flow_picture.h"
#include "explain/wording.h"

namespace explain {
namespace {

// In the units of the drawing, which is shown in about its own size on a wide screen.
constexpr double NODE_WIDTH = 204.0;
constexpr double NODE_HEIGHT = 52.0;
constexpr double HALF_COLUMN = 111.0;
constexpr double ROW = 96.0;
constexpr double MARGIN = 8.0;
constexpr double BAR_HEIGHT = 5.0;
constexpr double LINE_HEIGHT = 15.0;
constexpr double PADDING = 9.0;
constexpr double WIDEST_FLOW = 12.0;
constexpr double LEAST_TOLD = 0.0005;  // that does not read as 0.0 %
constexpr size_t NAME_CELLS = 28;      // that fit a node

double LeftOf(const PlacedNode& node) {
    return MARGIN + static_cast<double>(node.halfColumn) * HALF_COLUMN;
}

double TopOf(const PlacedNode& node) {
    return MARGIN + static_cast<double>(node.row) * ROW;
}

// Down, from the middle of the lower side to that of the upper one. Any other way leads round the right side.
std::string OutlineOf(const PlacedNode& from, const PlacedNode& to) {
    const double middle = NODE_WIDTH / 2;
    if (from.row < to.row) {
        const double bend = (ROW - NODE_HEIGHT) * 0.8;
        const double x = LeftOf(from) + middle;
        const double y = TopOf(from) + NODE_HEIGHT;
        const double endX = LeftOf(to) + middle;
        return "M" + PlaceFigure(x, y) + " C" + PlaceFigure(x, y + bend) + " " +
               PlaceFigure(endX, TopOf(to) - bend) + " " + PlaceFigure(endX, TopOf(to));
    }
    const double x = LeftOf(from) + NODE_WIDTH;
    const double y = TopOf(from) + NODE_HEIGHT / 2;
    const double endX = LeftOf(to) + NODE_WIDTH;
    const double endY = TopOf(to) + NODE_HEIGHT / 2;
    const double aside = std::max(x, endX) + MARGIN * 2;
    return "M" + PlaceFigure(x, y) + " C" + PlaceFigure(aside, y) + " " + PlaceFigure(aside, endY) + " " +
           PlaceFigure(endX, endY);
}

Markup DrawEdge(const Analysis& analysis, const FlowPicture& picture, const PlacedEdge& edge) {
    const PlacedNode& from = picture.nodes[edge.from];
    const PlacedNode& to = picture.nodes[edge.to];
    const std::string outline = OutlineOf(from, to);
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

Markup DrawNode(const Analysis& analysis, const PlacedNode& place) {
    const NodeFinding& finding = analysis.findings[place.node];
    const bool takesPart = finding.evidence.takesPart;
    const bool isFirst = analysis.verdict == Verdict::POINT && place.node == analysis.candidates.front().node;
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

}  // namespace

Markup GraphDrawing(const Analysis& analysis, size_t number) {
    const FlowPicture picture = PictureOf(analysis);
    const double width = HALF_COLUMN * static_cast<double>(PICTURE_COLUMNS * 2 - 2) + NODE_WIDTH + MARGIN * 4;
    const double height = ROW * static_cast<double>(picture.rows) - (ROW - NODE_HEIGHT) + MARGIN * 2 +
                          (picture.leftOut > 0 ? LINE_HEIGHT * 2 : 0.0);
    const std::string id = "graph" + std::to_string(number);
    Markup drawing = Element("title", {{"id", id + "-title"}},
                             Text("Where the extra delay of ") + Text(analysis.point) + Text(" goes")) +
                     Element("desc", {{"id", id + "-desc"}}, Text(Description(analysis, picture)));
    for (const PlacedEdge& edge : picture.edges) {
        drawing += DrawEdge(analysis, picture, edge);
    }
    for (const PlacedNode& node : picture.nodes) {
        drawing += DrawNode(analysis, node);
    }
    drawing += LeftOutNote(picture, height);
    return Element("svg",
                   {{"xmlns", "http://www.w3.org/2000/svg"},
                    {"class", "graph"},
                    {"role", "img"},
                    {"aria-labelledby", id + "-title " + id + "-desc"},
                    {"viewBox", "0 0 " + Figure(width, 0) + " " + Figure(height, 0)}},
                   drawing);
}

}  // namespace explain

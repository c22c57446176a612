#include <algorithm>

#include "explain/report.h"
#include "explain/text/sections.h"
#include "explain/wording_errors.h"
#include "text/layout.h"
#include "text/printable.h"

namespace explain {
namespace {

constexpr size_t MOST_POINTS = 10;
constexpr size_t MOST_ADVICE = 2000;  // bytes

std::string PointLine(const ErrorShare& share, size_t rank, size_t width, int64_t zoneOffset) {
    const std::string columns = PadLeft(std::to_string(rank + 1), 4) + PadLeft(Percent(share.share), 9) +
                                "  " + TimeOfDay(share.since, zoneOffset) + "  " +
                                PadLeft(Fixed(share.extra, 0), 6) + "  ";
    const std::string point = Printable(share.point);
    const std::string both = PadRight(point, width) + "  " + Printable(share.graph);
    return CellsOf(columns) + CellsOf(both) <= LINE_CELLS
               ? columns + both + "\n"
               : Beside(columns, point) +
                     Beside(std::string(CellsOf(columns), ' ') + "in ", Printable(share.graph));
}

}  // namespace

std::string ErrorHeadline(const ErrorAnalysis& analysis, const Report& report, const Figures& figures) {
    const std::string subject = Printable(SubjectOf(analysis));
    std::string text = Paragraph("", subject) + std::string(std::min(CellsOf(subject), LINE_CELLS), '=') +
                       "\n" + Paragraph("", Printable(AnswerOf(analysis, figures))) +
                       Paragraph("", SinceOf(analysis, report));
    const std::string advice = AdviceOf(analysis);
    return text + (advice.empty() ? "" : Paragraph(ADVICE_LEAD, Printable(advice, MOST_ADVICE)));
}

std::string ErrorDetails(const ErrorAnalysis& analysis, const Report& report) {
    std::string text = FactsText("Event", EventFactsOf(analysis, report));
    if (analysis.points.size() == 1) {
        return text;
    }
    const size_t shown = std::min(analysis.points.size(), MOST_POINTS);
    size_t width = 5;
    for (size_t i = 0; i < shown; ++i) {
        width = std::max(width, std::min<size_t>(CellsOf(Printable(analysis.points[i].point)), 32));
    }
    text += "\nRanking\nrank    share  since       extra  " + PadRight("point", width) + "  graph\n";
    for (size_t i = 0; i < shown; ++i) {
        text += PointLine(analysis.points[i], i, width, report.zoneOffset);
    }
    const size_t left = analysis.points.size() - shown;
    return text + (left > 0 ? "  and " + Counted(left, "point") + " with less\n" : "");
}

std::string HealingsText(const Report& report) {
    std::string text;
    if (const std::string earlier = EarlierHealings(report); !earlier.empty()) {
        text += "  " + earlier + "\n";
    }
    for (const Healing& healing : HealingsToTell(report)) {
        text += Paragraph("  " + LocalTime(healing.time, report.zoneOffset) + "  ",
                          Printable(SentenceOf(healing, report)));
    }
    return text.empty() ? "" : "\nHealed\n" + text;
}

}  // namespace explain

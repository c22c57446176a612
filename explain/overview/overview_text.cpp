#include <algorithm>

#include "explain/overview.h"
#include "explain/overview/picture.h"
#include "explain/report.h"
#include "text/colours.h"
#include "text/layout.h"
#include "text/printable.h"

namespace explain {
namespace {

constexpr size_t MOST_EVENTS_SHOWN = 4;
constexpr size_t MOST_NAME = 30;  // cells
constexpr size_t LEAST_BARS = 8;
constexpr const char* GAP = "  ";
constexpr const char* COMMAND_INDENT = "    ";
constexpr const char* GO_ON = " \\";

std::string WholePercent(double share) {
    return Fixed(share * 100.0, 0) + " %";
}

constexpr Figures FIGURES = {WholePercent, Microseconds};

// Lays out one report. Text is padded before it is coloured: an escape sequence takes no cell.
class Sheet {
public:
    Sheet(const Report& toShow, const ScreenStyle& toKeep)
        : report(toShow), style(toKeep), picture(PictureOf(toShow, FIGURES)) {}

    std::string Text() const {
        const size_t names = NameCells();
        const size_t bars = BarCells(names);
        return Head() + Title(DELAYS_TITLE) + Rows(picture.points, names, bars) + Axis(names, bars) +
               (picture.errors.empty() ? "" : Title(ERRORS_TITLE) + Rows(picture.errors, names, bars)) +
               Healings() + Events();
    }

private:
    std::string Painted(const std::string& text, const char* colour) const {
        return style.hasColours && *colour != '\0' && !text.empty() ? colour + text + COLOUR_END : text;
    }

    static const char* ColourOf(Mood mood) {
        return mood == Mood::NOW ? COLOUR_RED : mood == Mood::OVER ? COLOUR_YELLOW : "";
    }

    std::string Title(const std::string& title) const { return "\n" + Painted(title, COLOUR_BOLD) + "\n"; }

    // What happened and why: where the line has no room for both, the cause has its own.
    std::string Told(const std::string& lead, const std::string& what, const std::string& cause) const {
        const std::string first = Printable(what) + (cause.empty() ? "" : ":");
        const std::string whole = first + " " + Printable(cause);
        if (cause.empty() || CellsOf(lead) + CellsOf(whole) <= style.width) {
            return Paragraph(lead, cause.empty() ? first : whole, style.width);
        }
        return Paragraph(lead, first, style.width) +
               Paragraph(std::string(CellsOf(lead), ' ') + GAP, Printable(cause), style.width);
    }

    // Each of the lines in the colour.
    std::string Lines(std::string lines, const char* colour) const {
        std::string painted;
        while (!lines.empty()) {
            const size_t end = lines.find('\n');
            painted += Painted(lines.substr(0, end), colour) + "\n";
            lines.erase(0, end + 1);
        }
        return painted;
    }

    // ---- what was looked at, and what is going on

    std::string Head() const {
        const std::string covered = NewestOf(report);
        const std::string range = Printable(RangeOf(report));
        const size_t used = CellsOf(covered) + CellsOf(range) + 2;
        std::string text = used <= style.width
                               ? covered + std::string(style.width - used + 2, ' ') + range + "\n"
                               : Paragraph("", covered, style.width) + Paragraph("", range, style.width);
        for (const std::string& lack : LacksOf(report)) {
            text += Lines(Paragraph("", Printable(lack), style.width), COLOUR_YELLOW);
        }
        for (const Headline& headline : picture.headlines) {
            text += Lines(Told("", headline.what.text, headline.cause), ColourOf(headline.what.mood));
        }
        return text;
    }

    // ---- rows

    size_t NameCells() const {
        size_t cells = 0;
        for (const std::vector<PictureRow>* rows : {&picture.points, &picture.errors}) {
            for (const PictureRow& row : *rows) {
                cells = std::max(cells, CellsOf(Printable(row.name)));
            }
        }
        return std::min(cells, MOST_NAME);
    }

    size_t AmountCells() const {
        return Widest([](const PictureRow& row) { return row.amount; });
    }
    size_t StateCells() const {
        return Widest([](const PictureRow& row) { return row.state.text; });
    }

    template <typename Written>
    size_t Widest(const Written& written) const {
        size_t cells = 0;
        for (const std::vector<PictureRow>* rows : {&picture.points, &picture.errors}) {
            for (const PictureRow& row : *rows) {
                cells = std::max(cells, CellsOf(written(row)));
            }
        }
        return cells;
    }

    size_t BarCells(size_t names) const {
        const size_t others = names + AmountCells() + StateCells() + 4 * std::string_view(GAP).size();
        return std::max(LEAST_BARS, style.width - std::min(style.width, others));
    }

    std::string Rows(const std::vector<PictureRow>& rows, size_t names, size_t bars) const {
        std::string text;
        for (const PictureRow& row : rows) {
            const std::string name = Printable(row.name);
            const bool isLong = CellsOf(name) > names;
            const char* const colour = ColourOf(row.state.mood);
            text += GAP + (isLong ? name + "\n" + GAP : "") + PadRight(isLong ? "" : name, names) + GAP +
                    Painted(Bars(row, bars), colour) + GAP + PadLeft(row.amount, AmountCells()) + GAP +
                    Painted(row.state.text, colour) + "\n";
        }
        return text;
    }

    std::string Bars(const PictureRow& row, size_t bars) const {
        const Window& range = report.question.range;
        return Sparkline(LargestPerCell(row.values, range.start, range.end, report.coverage.step, bars), 0.0,
                         row.top, style.isUnicode);
    }

    // When the bars begin and end.
    std::string Axis(size_t names, size_t bars) const {
        const Window& range = report.question.range;
        const std::string start = ShortTime(range.start, report);
        const std::string end = ShortTime(range.end, report);
        const size_t indent = names + 2 * std::string_view(GAP).size();
        return std::string(indent, ' ') + PadRight(start, bars - std::min(bars, CellsOf(end))) + end + "\n";
    }

    // ---- healings and events

    std::string Healings() const {
        const std::string all = Printable(BriefHealingsOf(report));
        return all.empty() ? "" : Title(HEALED_TITLE) + Paragraph(GAP, all, style.width);
    }

    std::string Events() const {
        const std::vector<PictureEvent>& events = picture.events;
        const size_t shown = std::min(events.size(), MOST_EVENTS_SHOWN);
        size_t cells = 0;
        for (size_t i = 0; i < shown; ++i) {
            cells = std::max(cells, CellsOf(events[i].when.text));
        }
        std::string text = shown == 0 ? "" : Title(EVENTS_TITLE);
        for (size_t i = 0; i < shown; ++i) {
            const PictureEvent& event = events[i];
            const std::string when = PadRight(event.when.text, cells);
            std::string lines = Told(GAP + when + GAP, event.subject, event.cause);
            lines.replace(std::string_view(GAP).size(), when.size(),
                          Painted(when, ColourOf(event.when.mood)));
            text += lines + Command(event.command);
        }
        return text + (shown == events.size()
                           ? ""
                           : Paragraph(GAP, EarlierEvents(events.size() - shown), style.width));
    }

    // A shell takes it over several lines, the console on one. An option stays with what it takes.
    std::string Command(const std::vector<std::string>& words) const {
        std::string text;
        std::string line = COMMAND_INDENT + Printable(words.front());
        for (size_t i = 1; i < words.size(); ++i) {
            std::string piece = " " + Printable(words[i]);
            const bool isOption = words[i][0] == '-' && i + 1 < words.size() && words[i + 1][0] != '-';
            piece += isOption ? " " + Printable(words[++i]) : "";
            if (!report.isInConsole && CellsOf(line + piece + GO_ON) > style.width) {
                text += Painted(line + GO_ON, COLOUR_DIM) + "\n";
                line = COMMAND_INDENT + std::string(GAP).erase(0, 1);
            }
            line += piece;
        }
        return text + Painted(line, COLOUR_DIM) + "\n";
    }

    const Report& report;
    const ScreenStyle& style;
    const Picture picture;
};

}  // namespace

std::string OverviewText(const Report& report, const ScreenStyle& style) {
    return Sheet(report, style).Text();
}

}  // namespace explain

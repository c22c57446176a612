#include "explain/page/drawings.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "explain/page/figures.h"
#include "explain/page/svg.h"
#include "explain/wording.h"

namespace explain {
namespace {

// In the units of the drawing, which is shown in about its own size on a wide screen.
constexpr double WIDE = 1100.0;
constexpr double NARROW = 350.0;
constexpr double HEIGHT = 168.0;
constexpr double LEFT = 76.0;
constexpr double MARGIN = 12.0;
constexpr double TOP = 20.0;
constexpr double BOTTOM = HEIGHT - 26.0;
constexpr double TICK = 5.0;
constexpr double TICK_TEXT = 17.0;  // below the axis
constexpr double HALF_LETTER = 4.0;
constexpr double NARROWEST_EVENT = 3.0;   // still seen
constexpr double DIAMOND = 12.0;          // height of the mark of a healing
constexpr double NAMED_BASELINE = 120.0;  // narrower ones have no room for the name

constexpr size_t BUCKETS = 300;  // each draws its lowest and its highest sample
constexpr int64_t TIME_TICKS_MOST = 9;
constexpr int64_t TIME_TICKS_NARROW = 3;
constexpr double DELAY_TICKS = 4.0;
constexpr double GAP = 2.5;  // distances of two drawn samples, before the line breaks

// The smallest step of 1, 2 or 5 times a power of ten that is at least `least`.
double RoundStep(double least) {
    const double power = std::pow(10.0, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= least) {
            return factor * power;
        }
    }
    return 10.0 * power;
}

// For at most so many ticks.
int64_t TimeStep(int64_t span, int64_t most) {
    static constexpr std::array<int64_t, 14> STEPS = {1,   5,    10,   30,   60,    300,   600,
                                                      900, 1800, 3600, 7200, 10800, 21600, 43200};
    const auto* step =
        std::find_if(STEPS.begin(), STEPS.end(), [=](int64_t one) { return span / one <= most; });
    return step != STEPS.end() ? *step : std::max<int64_t>(86400, span / most);
}

// Every peak stays: of each bucket of equal length, its lowest and its highest sample.
Samples Thinned(const Samples& samples) {
    if (samples.size() <= BUCKETS * 2) {
        return samples;
    }
    Samples kept;
    for (size_t bucket = 0; bucket < BUCKETS; ++bucket) {
        const auto first = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() * bucket / BUCKETS);
        const auto last =
            samples.begin() + static_cast<std::ptrdiff_t>(samples.size() * (bucket + 1) / BUCKETS);
        auto [low, high] = std::minmax_element(
            first, last, [](const Sample& a, const Sample& b) { return a.delay < b.delay; });
        kept.push_back(*std::min(low, high));
        if (low != high) {
            kept.push_back(*std::max(low, high));
        }
    }
    return kept;
}

// Draws one picture.
class Chart {
public:
    Chart(const Samples& all, const std::optional<double>& usualDelay, const SeriesFrame& common, bool narrow)
        : samples(Thinned(all)),
          usual(usualDelay),
          frame(common),
          isNarrow(narrow),
          right((narrow ? NARROW : WIDE) - MARGIN) {
        for (const Sample& sample : samples) {
            most = std::max(most, sample.delay);
        }
        delayStep = RoundStep(std::max(most, DELAY_TICKS) / DELAY_TICKS);
        most = std::max(1.0, std::ceil(most / delayStep)) * delayStep;
    }

    Markup Draw() const {
        return Shades() + DelayAxis() + TimeAxis() + UsualLine() + Healings() +
               Element("path", {{"class", frame.isCounts ? "series counts" : "series"},
                                {"d", frame.isCounts ? Sticks() : Outline()}});
    }

private:
    double X(int64_t time) const {
        const double span = std::max(1.0, static_cast<double>(frame.end) - static_cast<double>(frame.start));
        const double part = (static_cast<double>(time) - static_cast<double>(frame.start)) / span;
        return LEFT + std::clamp(part, 0.0, 1.0) * (right - LEFT);
    }

    double Y(double delay) const { return BOTTOM - std::clamp(delay / most, 0.0, 1.0) * (BOTTOM - TOP); }

    Markup Shade(const char* style, double from, double to) const {
        return Element("rect", {{"class", style},
                                {"x", Figure(from, 1)},
                                {"y", Figure(TOP, 1)},
                                {"width", Figure(std::max(to - from, NARROWEST_EVENT), 1)},
                                {"height", Figure(BOTTOM - TOP, 1)}});
    }

    static Markup ShadeName(const char* style, double x, const char* anchor, const char* name) {
        return Element(
            "text",
            {{"class", style}, {"x", Figure(x, 1)}, {"y", Figure(TOP - 6, 1)}, {"text-anchor", anchor}},
            Text(name));
    }

    // Of a window that reaches into the picture.
    Markup Shade(const char* style, const Window& window) const {
        return window.end < frame.start || window.start > frame.end
                   ? Markup()
                   : Shade(style, X(window.start), X(window.end));
    }

    Markup Shades() const {
        Markup shades;
        if (frame.rangeStart > frame.start) {
            shades += Shade("before", {frame.start, frame.rangeStart});
        }
        if (frame.baseline) {
            shades += Shade("baseline", *frame.baseline);
            const double from = X(frame.baseline->start);
            if (X(frame.baseline->end) - from > NAMED_BASELINE) {
                shades += ShadeName("label", from, "start", "baseline");
            }
        }
        for (const Event& other : frame.others) {
            shades += Shade("other", other);
        }
        if (!frame.event) {
            return shades;
        }
        const double event = X(frame.event->start);
        const bool isLate = event > (LEFT + right) / 2;
        return shades + Shade("event", *frame.event) +
               ShadeName("label hot", event, isLate ? "end" : "start", "event");
    }

    Markup DelayAxis() const {
        Markup axis;
        const long steps = std::lround(most / delayStep);
        for (long i = 0; i <= steps; ++i) {
            const double delay = static_cast<double>(i) * delayStep;
            const double y = Y(delay);
            axis += Element("path", {{"class", i > 0 ? "grid" : "axis"},
                                     {"d", "M" + PlaceFigure(LEFT, y) + " H" + Figure(right, 1)}});
            axis += Element("text",
                            {{"class", "label"},
                             {"x", Figure(LEFT - TICK, 1)},
                             {"y", Figure(y + HALF_LETTER, 1)},
                             {"text-anchor", "end"}},
                            Text(ValueFigure(delay)));
        }
        return axis;
    }

    std::string ValueFigure(double value) const {
        return frame.isCounts ? Figure(value, 0) : DelayFigure(value, most);
    }

    // Hours and minutes; the day as well where it begins, and at the first one.
    std::string TickText(int64_t time, int64_t step, bool isFirst) const {
        const std::string whole = LocalTime(time, frame.zoneOffset);
        const std::string clock = TimeOfDay(time, frame.zoneOffset);
        const size_t dayAt = whole.find('-') + 1;
        const std::string shown = step < 60 ? clock : clock.substr(0, clock.rfind(':'));
        const bool showsDay = isFirst || clock == "00:00:00";
        return showsDay ? whole.substr(dayAt, whole.find(' ') - dayAt) + " " + shown : shown;
    }

    Markup TimeAxis() const {
        const int64_t step =
            TimeStep(frame.end - frame.start, isNarrow ? TIME_TICKS_NARROW : TIME_TICKS_MOST);
        const int64_t local = frame.start + frame.zoneOffset;
        const int64_t first = frame.start + (step - local % step) % step;
        Markup axis;
        for (int64_t time = first; time <= frame.end; time += step) {
            const double x = X(time);
            axis += Element(
                "path", {{"class", "axis"}, {"d", "M" + PlaceFigure(x, BOTTOM) + " v" + Figure(TICK, 1)}});
            axis += Element("text",
                            {{"class", "label"},
                             {"x", Figure(x, 1)},
                             {"y", Figure(BOTTOM + TICK_TEXT, 1)},
                             {"text-anchor", x + LEFT / 2 > right ? "end" : "middle"}},
                            Text(TickText(time, step, time == first)));
        }
        return axis;
    }

    Markup UsualLine() const {
        return usual ? Element("path", {{"class", "usual"},
                                        {"d", "M" + PlaceFigure(LEFT, Y(*usual)) + " H" + Figure(right, 1)}})
                     : Markup();
    }

    // A line over all of the picture, with a diamond above it.
    Markup Healings() const {
        Markup marks;
        for (const int64_t time : frame.healings) {
            if (time >= frame.start && time <= frame.end) {
                const std::string place = PlaceFigure(X(time), TOP - DIAMOND);
                marks += Element("path", {{"class", "healing"},
                                          {"d", "M" + place + " l4,6 l-4,6 l-4,-6 z M" +
                                                    PlaceFigure(X(time), TOP) + " V" + Figure(BOTTOM, 1)}});
            }
        }
        return marks;
    }

    // A line up to each count: what is not there is none.
    std::string Sticks() const {
        std::string sticks;
        for (const Sample& sample : samples) {
            sticks += "M" + PlaceFigure(X(sample.time), BOTTOM) + "V" + Figure(Y(sample.delay), 1);
        }
        return sticks;
    }

    // A line through the samples that breaks where some are missing; a lone sample is a dot.
    std::string Outline() const {
        const int64_t farthest = FarthestNeighbour();
        std::string outline;
        for (size_t i = 0; i < samples.size(); ++i) {
            const bool begins = i == 0 || samples[i].time - samples[i - 1].time > farthest;
            const bool ends = i + 1 == samples.size() || samples[i + 1].time - samples[i].time > farthest;
            outline += (begins ? "M" : "L") + PlaceFigure(X(samples[i].time), Y(samples[i].delay));
            outline += begins && ends ? "h0" : "";
        }
        return outline;
    }

    int64_t FarthestNeighbour() const {
        std::vector<int64_t> distances;
        for (size_t i = 1; i < samples.size(); ++i) {
            distances.push_back(samples[i].time - samples[i - 1].time);
        }
        if (distances.empty()) {
            return 0;
        }
        // The kept samples of a bucket may lie close together: the wider distances tell the usual one.
        const auto wide = distances.begin() + static_cast<std::ptrdiff_t>(distances.size() * 3 / 4);
        std::nth_element(distances.begin(), wide, distances.end());
        return static_cast<int64_t>(GAP * static_cast<double>(*wide));
    }

    const Samples samples;
    const std::optional<double> usual;
    const SeriesFrame& frame;
    const bool isNarrow;
    const double right;
    double most = 0.0;  // the upper end of the axis, microseconds
    double delayStep = 1.0;
};

std::string Description(const Samples& samples, const SeriesFrame& frame) {
    if (samples.empty()) {
        return frame.isCounts ? "There are none." : "There are no samples.";
    }
    const auto highest = std::max_element(samples.begin(), samples.end(),
                                          [](const Sample& a, const Sample& b) { return a.delay < b.delay; });
    return Counted(samples.size(), frame.isCounts ? "interval" : "sample") + ", the highest " +
           (frame.isCounts ? Figure(highest->delay, 0) : DelayFigure(highest->delay)) + " at " +
           LocalTime(highest->time, frame.zoneOffset) + ".";
}

}  // namespace

Markup SeriesDrawing(const std::string& name, const Samples& samples, const std::optional<double>& usual,
                     const SeriesFrame& frame, const std::string& id, bool isNarrow) {
    const Samples shown = SamplesIn(samples, {{frame.start, frame.end}});
    return Drawing("chart", id, "0 0 " + Figure(isNarrow ? NARROW : WIDE, 0) + " " + Figure(HEIGHT, 0),
                   Text(frame.isCounts ? "Errors of " : "Delay of ") + Text(name) + Text(" over local time"),
                   Description(shown, frame), Chart(shown, usual, frame, isNarrow).Draw());
}

Markup SeriesFigure(const std::string& point, const Samples& samples, const std::optional<double>& usual,
                    const SeriesFrame& frame, const std::string& id) {
    Markup figure = Element("figcaption", Element("strong", point));
    for (const bool isNarrow : {false, true}) {
        figure += Element("div", {{"class", isNarrow ? "narrow" : "wide"}},
                          SeriesDrawing(point, samples, usual, frame, id + (isNarrow ? "n" : ""), isNarrow));
    }
    return Element("figure", figure);
}

}  // namespace explain

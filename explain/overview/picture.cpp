#include "explain/overview/picture.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "explain/report.h"
#include "explain/wording_errors.h"

namespace explain {
namespace {

// Up to where a bar is drawn at least: a point that is as usual has a flat line.
constexpr double LEAST_TOP = 2.0;  // times that the usual is doubled
constexpr double LEAST_ERRORS = 8.0;
constexpr double CALM = 3.0;  // so much more room above bars that are not to alarm

template <typename AnyEvent>
Span SpanOf(const AnyEvent& event) {
    return {event, event.isOngoing, event.first == 0};
}

Mood MoodOf(bool isOngoing) {
    return isOngoing ? Mood::NOW : Mood::OVER;
}

// How often the usual delay is doubled, so that one spike does not flatten all else; the delay as it is, in
// low bars, where nothing is known of the usual.
void AddDelays(const Look& look, PictureRow& row) {
    const double usual = look.finding.usual.median;
    const bool isKnown = !look.finding.deviations.empty() && usual > 0.0;
    row.top = isKnown ? LEAST_TOP : 1.0;
    for (const Sample& sample : look.rows) {
        const double height = isKnown ? std::log2(std::max(sample.delay / usual, 1.0)) : sample.delay;
        row.values.push_back({sample.time, height});
        row.top = std::max(row.top, height);
    }
    row.top *= isKnown ? 1.0 : CALM;
}

double MeanOf(const Samples& samples, size_t first, size_t end) {
    double sum = 0.0;
    for (size_t i = first; i < end; ++i) {
        sum += samples[i].delay;
    }
    return sum / static_cast<double>(std::max<size_t>(end - first, 1));
}

// How many times as slow as usual the point was in the event or, without one, in the range.
std::string AmountOf(const Look& look, const Event* event, const std::vector<const Analysis*>& analyses) {
    for (const Analysis* analysis : analyses) {
        if (!analysis->findings.empty()) {
            const Evidence& top = analysis->findings.front().evidence;
            if (top.eventDelay && top.baselineDelay && *top.baselineDelay > 0.0) {
                return TimesOf(*top.eventDelay / *top.baselineDelay);
            }
        }
    }
    const double usual = look.finding.usual.median;
    if (look.rows.empty() || look.finding.deviations.empty() || usual <= 0.0) {
        return {};
    }
    const auto position = [&](size_t at) {
        return std::min(at - std::min(at, look.firstRow), look.rows.size());
    };
    const double mean = event == nullptr
                            ? MeanOf(look.rows, 0, look.rows.size())
                            : MeanOf(look.rows, position(event->first), position(event->last + 1));
    return TimesOf(mean / usual);
}

class Painter {
public:
    Painter(const Report& toShow, const Figures& writtenWith) : report(toShow), figures(writtenWith) {}

    Picture Paint() {
        for (const Look& look : report.looks) {
            AddLook(look);
        }
        for (const ErrorLook& look : report.errorLooks) {
            AddErrors(look);
        }
        std::stable_sort(picture.headlines.begin(), picture.headlines.end(),
                         [](const Headline& a, const Headline& b) {
                             return a.what.mood == Mood::NOW && b.what.mood != Mood::NOW;
                         });
        if (!hasSlowPoint) {  // which is an all clear only where nothing is lacking
            const Mood mood = LacksOf(report).empty() ? Mood::CALM : Mood::OVER;
            picture.headlines.insert(picture.headlines.begin(), Headline{{NoneSlow(report) + ".", mood}, {}});
        }
        std::stable_sort(picture.events.begin(), picture.events.end(),
                         [](const PictureEvent& a, const PictureEvent& b) {
                             const bool isNow = a.when.mood == Mood::NOW;
                             return isNow != (b.when.mood == Mood::NOW) ? isNow : a.start > b.start;
                         });
        return std::move(picture);
    }

private:
    std::vector<const Analysis*> AnalysesOf(const std::string& point, const Event& event) const {
        std::vector<const Analysis*> analyses;
        for (const Analysis& analysis : report.analyses) {
            if (analysis.point == point && analysis.event && analysis.event->start == event.start &&
                analysis.event->end == event.end) {
                analyses.push_back(&analysis);
            }
        }
        return analyses;
    }

    bool IsHealed(const std::vector<const Analysis*>& analyses) const {
        return !analyses.empty() && explain::IsHealed(*analyses.front(), report);
    }

    // Of the analysis that tells most of the event.
    std::string AnchorOf(const std::vector<const Analysis*>& analyses) const {
        for (const bool isCause : {true, false}) {
            for (const Analysis* analysis : analyses) {
                if (NamesACause(*analysis) || !isCause) {
                    return "analysis" + std::to_string(analysis - report.analyses.data() + 1);
                }
            }
        }
        return {};
    }

    // Those that were found; and what was asked for beside them, if it is unusual.
    std::vector<Event> EventsOf(const Look& look) const {
        std::vector<Event> events = look.events;
        for (const Analysis& analysis : report.analyses) {
            const auto isSame = [&](const Event& event) {
                return event.start == analysis.event->start && event.end == analysis.event->end;
            };
            if (analysis.point == look.point && analysis.event && !analysis.isWeak &&
                std::none_of(events.begin(), events.end(), isSame)) {
                events.push_back(*analysis.event);
            }
        }
        return ByUrgency(std::move(events));
    }

    void AddLook(const Look& look) {
        const std::vector<Event> events = EventsOf(look);
        const Event* const last = events.empty() ? nullptr : &events.front();
        const auto analyses =
            last == nullptr ? std::vector<const Analysis*>() : AnalysesOf(look.point, *last);
        PictureRow& row = picture.points.emplace_back();
        row.name = look.point;
        row.amount = AmountOf(look, last, analyses);
        AddDelays(look, row);
        if (last == nullptr) {
            row.state = {QuietStateOf(look, report), Mood::CALM};
            return;
        }
        hasSlowPoint = true;
        row.state = {WhetherOver(SpanOf(*last), report), MoodOf(last->isOngoing)};
        AddHeadline(look.point, {"slow", events.size(), SpanOf(*last), row.amount, IsHealed(analyses)},
                    CausesOf(analyses, figures));
        for (const Event& event : events) {
            AddEvent(look, event);
        }
    }

    void AddEvent(const Look& look, const Event& event) {
        const auto analyses = AnalysesOf(look.point, event);
        const std::string amount = AmountOf(look, &event, analyses);
        PictureEvent& shown = picture.events.emplace_back();
        shown.start = event.start;
        shown.when = {ShortSpan(SpanOf(event), report), MoodOf(event.isOngoing)};
        shown.subject =
            look.point + (amount.empty() ? "" : " " + amount) + (IsHealed(analyses) ? ", then healed" : "");
        shown.cause = CausesOf(analyses, figures);
        shown.command = CommandOf(look, event);
        shown.anchor = AnchorOf(analyses);
    }

    void AddHeadline(const std::string& subject, const Course& course, const std::string& cause) {
        picture.headlines.push_back(
            {{subject + " " + CourseOf(course, report), MoodOf(course.last.isOngoing)}, cause});
    }

    // Intervals without errors count none, where there are rows at all.
    std::vector<TimedValue> CountsOf(const ErrorLook& look) const {
        std::map<int64_t, double> counts;
        for (const Look& point : report.looks) {
            for (const Sample& sample : point.rows) {
                counts[sample.time] = 0.0;
            }
        }
        for (const ErrorCount& count : look.counts) {
            counts[count.time] = static_cast<double>(count.count);
        }
        std::vector<TimedValue> values;
        values.reserve(counts.size());
        for (const auto& [time, count] : counts) {
            values.push_back({time, count});
        }
        return values;
    }

    void AddErrors(const ErrorLook& look) {
        PictureRow& row = picture.errors.emplace_back();
        row.name = WordOf(look.type);
        row.values = CountsOf(look);
        row.top = LEAST_ERRORS;
        for (const TimedValue& value : row.values) {
            row.top = std::max(row.top, value.value);
        }
        row.state = {AS_USUAL, Mood::CALM};
        std::vector<const ErrorAnalysis*> analyses;
        for (const ErrorAnalysis& errors : report.errors) {
            if (errors.type.index == look.type.index) {
                analyses.push_back(&errors);
                AddEvent(errors);
            }
        }
        if (analyses.empty()) {
            row.amount = std::to_string(look.points.empty() ? look.count : look.points.front().count);
            row.top *= CALM;
        } else {
            const ErrorEvent& last = analyses.front()->event;
            row.amount = std::to_string(last.count);
            row.state = {WhetherOver(SpanOf(last), report), MoodOf(last.isOngoing)};
            AddHeadline(row.name, {"frequent", analyses.size(), SpanOf(last), ErrorsOf(last), false},
                        BriefOf(*analyses.front(), figures));
        }
    }

    void AddEvent(const ErrorAnalysis& errors) {
        const ErrorEvent& event = errors.event;
        PictureEvent& shown = picture.events.emplace_back();
        shown.start = event.start;
        shown.when = {ShortSpan(SpanOf(event), report), MoodOf(event.isOngoing)};
        shown.subject = WordOf(errors.type) + ", " + ErrorsOf(event);
        shown.cause = BriefOf(errors, figures);
        shown.anchor = "errors" + std::to_string(&errors - report.errors.data() + 1);
        shown.command = CommandOf(report.again);
    }

    std::string Compact(int64_t time) const { return ::CompactTime(time, report.zoneOffset); }

    // No longer than it takes to explain this event alone.
    std::vector<std::string> CommandOf(const Look& look, const Event& event) const {
        const bool isOnly = std::all_of(report.looks.begin(), report.looks.end(), [&](const Look& other) {
            return &other == &look || other.events.empty();
        });
        std::vector<std::string> words = report.again;
        if (report.arePointsNamed || !isOnly || look.events.size() > 1) {
            words.insert(words.end(), {"--point", look.point});
        }
        if (look.events.size() != 1) {
            words.insert(words.end(), {"--at", Compact(event.peakTime)});
        }
        return CommandOf(std::move(words));
    }

    std::vector<std::string> CommandOf(std::vector<std::string> words) const {
        const Window& range = report.question.range;
        words.insert(words.end(), {Compact(range.start), Compact(range.end)});
        for (std::string& word : words) {
            word = ShellLine({word});
        }
        return words;
    }

    const Report& report;
    const Figures& figures;
    bool hasSlowPoint = false;
    Picture picture;
};

}  // namespace

Picture PictureOf(const Report& report, const Figures& figures) {
    return Painter(report, figures).Paint();
}

}  // namespace explain

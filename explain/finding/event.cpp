#include "explain/finding/event.h"

#include <algorithm>
#include <functional>
#include <iterator>

#include "explain/finding/level.h"
#include "explain/finding/run.h"

namespace explain {
namespace {

constexpr double FLATTER = 0.5;   // what a slow curve leaves of the spread when it is most of it
constexpr double NEW_TAIL = 0.5;  // of what the whole series leads to expect
constexpr size_t MOST_ROUNDS = 5;
constexpr size_t MOST_SEARCHES = 1000;  // which no series needs that was not made to
constexpr size_t LEAST_USUAL = 10;      // one of so many samples at least stays in no event
constexpr size_t MOST_OF_MARKED = 2;    // one run holds so great a part, one half, where a long event hides

using Marks = std::vector<bool>;  // by position

size_t CountOf(const Marks& marks) {
    return static_cast<size_t>(std::count(marks.begin(), marks.end(), true));
}

void Mark(size_t first, size_t last, Marks& marks) {
    std::fill(marks.begin() + static_cast<std::ptrdiff_t>(first),
              marks.begin() + static_cast<std::ptrdiff_t>(last) + 1, true);
}

struct High {
    Marks inside;  // whether a value belongs to a run of high ones
    Usual usual;   // of the others
    std::vector<double> deviations;
};

std::vector<double> DeviationsFrom(const Usual& usual, const std::vector<double>& values) {
    std::vector<double> deviations;
    deviations.reserve(values.size());
    std::transform(values.begin(), values.end(), std::back_inserter(deviations),
                   [&](double value) { return usual.Deviations(value); });
    return deviations;
}

// Where `telling` values, as far as they are not marked, say what is usual.
Usual UsualOf(const std::vector<double>& values, const Marks& telling, const Marks& inside) {
    std::vector<double> chosen;
    for (size_t i = 0; i < values.size(); ++i) {
        if (telling[i] && !inside[i]) {
            chosen.push_back(values[i]);
        }
    }
    return explain::UsualOf(std::move(chosen));
}

bool LeavesEnough(const Marks& telling, const Marks& inside) {
    size_t left = 0;
    for (size_t i = 0; i < telling.size(); ++i) {
        left += telling[i] && !inside[i] ? size_t{1} : 0;
    }
    return left >= FEWEST_BASELINE && left * LEAST_USUAL >= CountOf(telling);
}

// Whether one run holds most of what is marked: what comes again and again is usual.
bool IsOneRun(const Marks& marks) {
    size_t longest = 0;
    for (const Run& run : RunsAbove(std::vector<double>(marks.begin(), marks.end()), 0.0, 0)) {
        longest = std::max(longest, run.last - run.first + 1);
    }
    return longest * MOST_OF_MARKED >= CountOf(marks);
}

// A long event spreads what all values tell so far that nothing lies high. So everything above MILD is left
// out first, and what the rest does not call high is taken back, until only such is left.
Marks FindHidden(const std::vector<double>& values, const Marks& telling) {
    Marks none(values.size(), false);
    Marks inside = none;
    for (size_t search = 0; search < MOST_SEARCHES; ++search) {
        const Usual usual = UsualOf(values, telling, inside);
        Marks now = none;
        for (const Run& run : RunsAbove(DeviationsFrom(usual, values), search == 0 ? MILD : HIGH)) {
            Mark(run.first, run.last, now);
        }
        if (now == inside || !LeavesEnough(telling, now)) {
            return now == inside && IsOneRun(now) ? now : none;
        }
        inside = std::move(now);
    }
    return none;
}

// The runs of high values, beside those in `known`. What is found is left out of what is usual, until nothing
// more is found. `telling` must mark FEWEST_BASELINE values outside of `known`.
High FindHigh(const std::vector<double>& values, const Marks& telling, Marks known) {
    High high{std::move(known), {}, {}};
    for (size_t search = 1;; ++search) {
        high.usual = UsualOf(values, telling, high.inside);
        high.deviations = DeviationsFrom(high.usual, values);
        Marks now = high.inside;
        for (const Run& run : RunsAbove(high.deviations, HIGH)) {
            Mark(run.first, run.last, now);
        }
        if (now == high.inside || !LeavesEnough(telling, now) || search == MOST_SEARCHES) {
            return high;
        }
        high.inside = std::move(now);
    }
}

// The run from its first marked position to its last one; none without one.
std::optional<Run> MarkedPartOf(const Run& run, const Marks& marks) {
    std::optional<Run> part;
    for (size_t i = run.first; i <= run.last; ++i) {
        if (marks[i]) {
            part = Run{part ? part->first : i, i};
        }
    }
    return part;
}

// Means of values in a row.
struct Means {
    std::vector<double> values;
    Marks telling;  // whether all that a mean is of tell what is usual
};

// Of `window` values, of those at the positions `left`.
Means MeansOf(const std::vector<double>& values, const Marks& telling, const std::vector<size_t>& left,
              size_t window) {
    Means means;
    for (size_t i = 0; i + window <= left.size(); ++i) {
        double sum = 0.0;
        bool tells = true;
        for (size_t k = i; k < i + window; ++k) {
            sum += values[left[k]];
            tells = tells && telling[left[k]];
        }
        means.values.push_back(sum / static_cast<double>(window));
        means.telling.push_back(tells);
    }
    return means;
}

// The means that are high. Where too few of them share no value, it takes means of few values, of which each
// stands out by itself.
High FindLasting(const Means& means, size_t window) {
    const size_t count = CountOf(means.telling);
    const bool isKnown = count >= FEWEST_FOR_EVENTS * window;
    if (count < FEWEST_FOR_EVENTS || (window > WINDOW && !isKnown)) {
        return {Marks(means.values.size(), false), {}, std::vector<double>(means.values.size(), 0.0)};
    }
    return FindHigh(means.values, means.telling,
                    isKnown ? FindHidden(means.values, means.telling) : Marks(means.values.size(), false));
}

// Marks what is mild but lasts: where means of `window` values in a row, which are in no run yet, are high,
// all from the first value that lies above what is usual to the last one. Means above WEAK that adjoin each
// other join high ones; single values between may well be usual.
void AddLasting(const std::vector<double>& values, const Marks& telling, size_t window, High& high) {
    std::vector<size_t> left;
    for (size_t i = 0; i < values.size(); ++i) {
        if (!high.inside[i]) {
            left.push_back(i);
        }
    }
    const High lasting = FindLasting(MeansOf(values, telling, left, window), window);
    Marks now = high.inside;
    for (const Run& weak : RunsAbove(lasting.deviations, WEAK, window - 1)) {
        const std::optional<Run> run = MarkedPartOf(weak, lasting.inside);
        if (!run) {
            continue;
        }
        const auto isAbove = [&](size_t position) { return high.deviations[position] > MILD; };
        const auto from = left.begin() + static_cast<std::ptrdiff_t>(run->first);
        const auto until = left.begin() + static_cast<std::ptrdiff_t>(run->last + window);
        const auto first = std::find_if(from, until, isAbove);
        const auto last =
            std::find_if(std::make_reverse_iterator(until), std::make_reverse_iterator(first), isAbove);
        if (first != until) {
            Mark(*first, *last, now);
        }
    }
    if (LeavesEnough(telling, now)) {
        high.inside = std::move(now);
    }
}

// Looks once more with the slow curve taken out, where most of the spread of what is marked in no event comes
// from it: a long event makes no curve. Returns whether there is one.
bool AddAlongCurve(const Samples& samples, const Marks& telling, High& high) {
    const double spread = UsualOf(DelaysOf(samples), telling, high.inside).scale;
    for (size_t round = 0; round < MOST_ROUNDS; ++round) {
        High found = FindHigh(Levelled(samples, high.inside, high.usual.median), telling,
                              Marks(samples.size(), false));
        if (found.usual.scale > FLATTER * spread) {
            return round > 0;
        }
        const Marks before = high.inside;
        std::transform(before.begin(), before.end(), found.inside.begin(), high.inside.begin(),
                       std::logical_or<>());
        high.deviations = std::move(found.deviations);
        if (high.inside == before) {
            break;
        }
    }
    return true;
}

Marks TellingOf(const Samples& samples, const std::optional<Window>& baseline) {
    Marks telling;
    telling.reserve(samples.size());
    for (const Sample& sample : samples) {
        telling.push_back(!baseline || baseline->Holds(sample.time));
    }
    return telling;
}

// How high the highest of the values that are in no run of several comes to lie by chance. Where the first
// half of the series leads to expect less than half of that, such values have only begun to come: then that
// half tells.
double ChanceLimit(const std::vector<Run>& runs, const std::vector<double>& deviations) {
    Marks several(deviations.size(), false);
    for (const Run& run : runs) {
        if (run.first < run.last) {
            Mark(run.first, run.last, several);
        }
    }
    std::vector<double> all;
    std::vector<double> early;
    for (size_t i = 0; i < deviations.size(); ++i) {
        if (!several[i]) {
            all.push_back(deviations[i]);
        }
        if (i + 1 == deviations.size() / 2) {
            early = all;
        }
    }
    const double limit = HighestByChance(std::move(all));
    const double before = HighestByChance(std::move(early));
    return before < NEW_TAIL * limit ? before : limit;
}

// Without lone values as they come by chance.
std::vector<Run> Unlikely(std::vector<Run> runs, const std::vector<double>& deviations) {
    const double limit = ChanceLimit(runs, deviations);
    const auto isChance = [&](const Run& run) {
        return run.first == run.last && deviations[run.first] <= limit;
    };
    runs.erase(std::remove_if(runs.begin(), runs.end(), isChance), runs.end());
    return runs;
}

size_t Distance(int64_t a, int64_t b) {
    return a > b ? static_cast<uint64_t>(a) - static_cast<uint64_t>(b)
                 : static_cast<uint64_t>(b) - static_cast<uint64_t>(a);
}

size_t Nearest(const Samples& samples, int64_t time) {
    const auto nearest = std::min_element(
        samples.begin(), samples.end(),
        [time](const Sample& a, const Sample& b) { return Distance(a.time, time) < Distance(b.time, time); });
    return static_cast<size_t>(nearest - samples.begin());
}

bool IsNear(const Event& event, size_t position, size_t samples) {
    return position + samples >= event.first && position <= event.last + samples;
}

// Where the highest sample at most GAP + 1 away lies.
size_t HighestNear(const std::vector<double>& deviations, size_t position) {
    const size_t first = position - std::min(position, GAP + 1);
    const size_t end = std::min(deviations.size(), position + GAP + 2);
    const auto begin = deviations.begin();
    return static_cast<size_t>(std::max_element(begin + static_cast<std::ptrdiff_t>(first),
                                                begin + static_cast<std::ptrdiff_t>(end)) -
                               begin);
}

}  // namespace

Finding FindEvents(const Samples& samples, const std::optional<Window>& baseline) {
    const Marks telling = TellingOf(samples, baseline);
    if (CountOf(telling) < FEWEST_FOR_EVENTS) {
        return {};
    }
    const std::vector<double> delays = DelaysOf(samples);
    High high = FindHigh(delays, telling, Marks(delays.size(), false));
    AddLasting(delays, telling, WINDOW, high);
    AddLasting(delays, telling, WIDE_WINDOW, high);
    const bool isCurved = !baseline && AddAlongCurve(samples, telling, high);
    Finding finding{{}, high.usual, std::move(high.deviations), isCurved};
    const std::vector<double> inside(high.inside.begin(), high.inside.end());
    for (const Run& run : Widened(Unlikely(RunsAbove(inside, 0.0), finding.deviations), finding.deviations)) {
        finding.events.push_back(EventOf(samples, finding, run.first, run.last));
    }
    return finding;
}

Event EventOf(const Samples& samples, const Finding& finding, size_t first, size_t last) {
    Event event;
    event.first = first;
    event.last = last;
    event.start = samples[first].time;
    event.end = samples[last].time;
    for (size_t i = first; i <= last; ++i) {
        const double deviation = finding.deviations.empty() ? 0.0 : finding.deviations[i];
        event.count += deviation > MILD ? size_t{1} : 0;
        if (i == first || samples[i].delay > event.peakDelay) {
            event.peakTime = samples[i].time;
            event.peakDelay = samples[i].delay;
            event.peakDeviations = deviation;
        }
    }
    return event;
}

Event EventAt(const Samples& samples, const Finding& finding, const std::vector<Event>& events,
              int64_t time) {
    const size_t nearest = Nearest(samples, time);
    for (size_t far = 0; far <= GAP + 1; ++far) {
        const auto found = std::find_if(events.rbegin(), events.rend(),
                                        [&](const Event& event) { return IsNear(event, nearest, far); });
        if (found != events.rend()) {
            return *found;
        }
    }
    if (finding.deviations.empty()) {
        return EventOf(samples, finding, nearest, nearest);
    }
    const size_t highest = HighestNear(finding.deviations, nearest);
    for (const Run& run : RunsAbove(finding.deviations, WEAK)) {
        if (highest >= run.first && highest <= run.last) {
            return EventOf(samples, finding, run.first, run.last);
        }
    }
    return EventOf(samples, finding, highest, highest);
}

bool IsOngoing(const Event& event, size_t end) {
    return end - 1 - std::min(event.last, end - 1) <= GAP;
}

}  // namespace explain

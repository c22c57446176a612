#include "explain/watch/changes.h"

#include <algorithm>
#include <iterator>

#include "explain/finding/run.h"
#include "explain/wording.h"

namespace explain {
namespace {

constexpr size_t FEWEST_TOLD = 2;            // samples of an event
constexpr size_t ENOUGH_MILD = WIDE_WINDOW;  // samples of which few are high; means drag events over fewer
constexpr int64_t SILENT_STEPS = 3;
constexpr int64_t LEAST_SILENCE = 10;      // seconds
constexpr int64_t ACCEPTED_AFTER = 14400;  // seconds: as long as what tells what is usual

constexpr const char* LOAD_LABEL = " ";  // that no point has

bool IsOfRows(ReasonKind kind) {
    return kind == ReasonKind::NO_ROWS_AT_ALL || kind == ReasonKind::NO_ROWS_OF_DETECTOR ||
           kind == ReasonKind::NO_ROWS_OF_POINT || kind == ReasonKind::OUTSIDE_STATISTICS;
}

// One step behind the time of a sample.
int64_t Next(int64_t time, const Report& report) {
    return time + report.coverage.step;
}

// ---- causes

// The analysis of an event that says most of it: one that names a point below, the surest first. Null without
// one.
const Analysis* AnalysisOf(const Report& report, const std::string& point, const Event& event) {
    const auto rank = [&](const Analysis& one) {
        const bool isBelow = one.verdict == Verdict::LOAD || one.candidates.front().point != point;
        return (isBelow ? 0 : 3) + static_cast<int>(one.certainty);
    };
    const Analysis* best = nullptr;
    for (const Analysis& one : report.analyses) {
        const bool isOfEvent = one.point == point && one.event && one.event->start == event.start;
        if (isOfEvent && one.HasAnswer() && !one.isWeak && (best == nullptr || rank(one) < rank(*best))) {
            best = &one;
        }
    }
    return best;
}

std::optional<Cause> CauseOf(const Analysis& analysis) {
    if (analysis.verdict == Verdict::LOAD) {
        return Cause{{}, 1.0, analysis.certainty};
    }
    const Candidate& first = analysis.candidates.front();
    return first.point == analysis.point
               ? std::nullopt
               : std::optional<Cause>(Cause{first.point, first.share, analysis.certainty});
}

// By which two causes are told apart; empty for one that is not sure enough to be told by itself.
std::string LabelOf(const std::optional<Cause>& cause) {
    if (!cause || cause->certainty == Certainty::UNSURE) {
        return {};
    }
    return cause->point.empty() ? LOAD_LABEL : cause->point;
}

// ---- events

Change ChangeOf(ChangeKind kind, const Report& report, const Look& look, const Event& event) {
    Change change{kind, event.start, look.point};
    change.delay = event.peakDelay;
    double usual = look.finding.usual.median;
    if (const Analysis* analysis = AnalysisOf(report, look.point, event)) {
        const Evidence& top = analysis->findings.front().evidence;
        change.delay = top.eventDelay;
        usual = *top.baselineDelay;
        change.cause = CauseOf(*analysis);
    }
    if (usual > 0.0) {
        change.times = *change.delay / usual;
    }
    return change;
}

// The last samples: as many usual ones end an event.
Samples LastOf(const Look& look) {
    return {look.rows.end() - std::min<std::ptrdiff_t>(2, std::distance(look.rows.begin(), look.rows.end())),
            look.rows.end()};
}

// Of an event that goes on beyond what was told of it: whether enough samples are behind that.
bool GoesFarOn(const Look& look, const Event& event, int64_t told) {
    size_t high = 0;
    size_t all = 0;
    for (size_t i = event.last + 1; i-- > std::max(event.first, look.firstRow);) {
        if (look.rows[i - look.firstRow].time <= told) {
            break;
        }
        all += look.finding.deviations[i] > MILD ? size_t{1} : 0;
        high += look.finding.deviations[i] > HIGH ? size_t{1} : 0;
    }
    return high >= FEWEST_TOLD || all >= ENOUGH_MILD;
}

// Whether an event that is high as a whole, between its first and its last high sample, has ended with the
// last samples: they are neither high nor nearer to it than to the usual. The finder's means of several
// samples drag it over such ones; as many of them again are a mild rest, with which it goes on.
bool HasFallen(const Look& look, const Event& event) {
    const auto begin = look.finding.deviations.begin();
    const auto isHigh = [](double deviation) { return deviation > HIGH; };
    const auto from = begin + static_cast<std::ptrdiff_t>(event.first);
    const auto end = begin + static_cast<std::ptrdiff_t>(look.firstRow + look.rows.size());
    const auto first = std::find_if(from, end, isHigh);
    const auto last =
        std::find_if(std::make_reverse_iterator(end), std::make_reverse_iterator(first), isHigh);
    if (first == end) {
        return false;  // it is mild
    }
    std::vector<double> heights(first, last.base());
    const double height = MedianOf(heights);
    const double least = std::min(HIGH, height / 2);
    const auto low = std::find_if(std::make_reverse_iterator(end), last,
                                  [=](double deviation) { return deviation > least; }) -
                     std::make_reverse_iterator(end);
    return height > HIGH && low > static_cast<std::ptrdiff_t>(GAP) &&
           low < static_cast<std::ptrdiff_t>(WIDE_WINDOW);
}

// Whether the last sample says what makes the point slow now: it stands as high as what belongs to the event,
// and is not about to fall, as behind what is over already.
bool StandsHigh(const Look& look, const Event& event) {
    const size_t last = look.firstRow + look.rows.size() - 1;
    const double height = look.finding.deviations[last];
    const double before = last > 0 ? look.finding.deviations[last - 1] : height;
    return height > std::min(HIGH, event.peakDeviations / 2) && before - height <= HIGH;
}

// Whether the last samples are back at what was usual before the event. Along a slow curve that says nothing.
bool IsBack(const Samples& last, const Look& look, const Usual& usual) {
    return look.finding.isCurved || std::all_of(last.begin(), last.end(), [&](const Sample& sample) {
               return usual.Deviations(sample.delay) <= HIGH;
           });
}

}  // namespace

bool Sight::IsUnread() const {
    constexpr ReasonKind OF_READING[] = {ReasonKind::UNREADABLE_POINT, ReasonKind::UNREADABLE_DATABASE,
                                         ReasonKind::BAD_VALUE, ReasonKind::ANOTHER_ZONE};
    return failure &&
           std::find(std::begin(OF_READING), std::end(OF_READING), failure->kind) != std::end(OF_READING);
}

ChangeList Changes::After(const Sight& sight) {
    ChangeList changes;
    TellOfDatabase(sight, changes);
    TellOfRows(sight, changes);
    for (const Look& look : sight.report.looks) {
        TellOfPoint(sight.report, look, changes);
    }
    errors.After(sight.report, changes);
    std::stable_sort(changes.begin(), changes.end(),
                     [](const Change& a, const Change& b) { return a.time < b.time; });
    return changes;
}

bool Changes::IsSlow(const std::string& point) const {
    const auto found = points.find(point);
    return found != points.end() && found->second.isSlow;
}

double Changes::UsualOf(const Look& look) const {
    return IsSlow(look.point) ? points.at(look.point).usual.median : look.finding.usual.median;
}

void Changes::TellOfDatabase(const Sight& sight, ChangeList& changes) {
    const int64_t now = sight.report.madeAt;
    const bool isUnreadable = sight.IsUnread();
    if (isUnreadable == unreadable.isTold) {
        return;
    }
    changes.push_back({isUnreadable ? ChangeKind::UNREADABLE : ChangeKind::READABLE, now});
    if (isUnreadable) {
        changes.back().reason = TroubleOf(*sight.failure, sight.failed);
    } else {
        changes.back().seconds = now - unreadable.since;
    }
    unreadable = {isUnreadable, now};
}

void Changes::TellOfRows(const Sight& sight, ChangeList& changes) {
    const Report& report = sight.report;
    const bool isWithout = sight.failure && IsOfRows(sight.failure->kind);
    if (!isWithout && !report.coverage.newest) {
        return;  // nobody knows
    }
    newest = std::max(newest, report.coverage.newest);
    const int64_t longest = std::max(LEAST_SILENCE, SILENT_STEPS * report.coverage.step);
    const bool isSilent = isWithout || report.madeAt - *newest > longest;
    if (isSilent == silent.isTold) {
        return;
    }
    changes.push_back({isSilent ? ChangeKind::SILENT : ChangeKind::ROWS, report.madeAt});
    if (isSilent) {
        changes.back().newest = newest;
        silent.since = newest.value_or(report.madeAt);
    } else {
        changes.back().seconds = *newest - silent.since;
    }
    silent.isTold = isSilent;
}

void Changes::TellOfPoint(const Report& report, const Look& look, ChangeList& changes) {
    if (look.rows.empty() || look.finding.deviations.empty()) {
        return;
    }
    State& state = points[look.point];
    if (!state.isSlow) {
        TellOfEvents(report, look, state, changes);
    } else if (!look.events.empty() && look.events.back().isOngoing && !HasFallen(look, look.events.back())) {
        state.end = look.events.back().end;
        state.found = look.rows.back().time;
        TellOfCause(report, look, state, changes);
    } else {
        TellOfEnd(report, look, state, changes);
    }
    state.open = LastOf(look).front().time;
}

void Changes::TellOfEvents(const Report& report, const Look& look, State& state, ChangeList& changes) {
    for (const Event& event : look.events) {
        const bool isNew = event.start > state.end;
        const bool isSlow =
            event.isOngoing && (isNew ? event.count >= FEWEST_TOLD : GoesFarOn(look, event, state.end));
        if (!isSlow && (event.isOngoing || !isNew || event.end < state.open)) {
            continue;
        }
        changes.push_back(ChangeOf(isSlow ? ChangeKind::SLOW : ChangeKind::WAS_SLOW, report, look, event));
        Change& change = changes.back();
        change.time = isNew ? event.start : Next(state.end, report);
        change.seconds = isSlow ? 0 : Next(event.end, report) - event.start;
        state.isSlow = isSlow;
        state.begin = change.time;
        state.end = event.end;
        state.found = look.rows.back().time;
        state.usual = look.finding.usual;
        state.cause = LabelOf(change.cause);
        state.rival.clear();
    }
}

void Changes::TellOfEnd(const Report& report, const Look& look, State& state, ChangeList& changes) {
    const Sample& last = look.rows.back();
    if (!look.events.empty() && look.events.back().start <= state.end) {
        const int64_t before = LastOf(look).front().time - report.coverage.step;
        state.end = std::max(state.end, std::min(look.events.back().end, before));
    }
    const bool isBack = IsBack(LastOf(look), look, state.usual);
    if (!isBack && last.time - state.found < ACCEPTED_AFTER) {
        // What lasts for hours becomes what the finder takes for usual.
        state.end = state.usual.Deviations(last.delay) > HIGH ? last.time : state.end;
        return;
    }
    changes.push_back(
        {isBack ? ChangeKind::USUAL : ChangeKind::ACCEPTED, Next(state.end, report), look.point});
    changes.back().seconds = changes.back().time - state.begin;
    state.isSlow = false;
}

void Changes::TellOfCause(const Report& report, const Look& look, State& state, ChangeList& changes) {
    const Event& event = look.events.back();
    if (!StandsHigh(look, event)) {
        return;
    }
    const Analysis* analysis = AnalysisOf(report, look.point, event);
    const std::optional<Cause> cause = analysis != nullptr ? CauseOf(*analysis) : std::nullopt;
    const std::string label = LabelOf(cause);
    const int64_t now = look.rows.back().time;
    if (label.empty() || label == state.cause) {
        state.rival.clear();
    } else if (label != state.rival) {
        state.rival = label;
        state.rivalTime = now;
    } else if (now > state.rivalTime) {
        changes.push_back({ChangeKind::CAUSE, now, look.point});
        changes.back().cause = cause;
        state.cause = label;
        state.rival.clear();
    }
}

}  // namespace explain

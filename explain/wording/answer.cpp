#include <algorithm>
#include <cmath>

#include "explain/report.h"
#include "explain/wording_errors.h"

namespace explain {
namespace {

constexpr double MAJORITY = 0.5;
constexpr double LEAST_TOLD = 0.0005;  // that does not read as 0.0 %
constexpr double ADVISED = 0.1;        // of the extra delay: worth a look
constexpr double CLOSE = 0.05;         // shares that differ by less are nearly equal

// A reason behind what it is a reason for. What others say in it may end as it likes.
std::string AnswerFor(const std::string& what, const Reason& reason) {
    const std::string sentence = SentenceOf(reason);
    return what + ": " + sentence + (sentence.back() == '.' || sentence.back() == '?' ? "" : ".");
}

bool IsSingle(const Event& event) {
    return event.first == event.last;
}

// What holds the delay, without a word on how sure that is.
std::string HolderOf(const Analysis& analysis, const Figures& figures) {
    const Candidate& first = analysis.candidates.front();
    const std::string share = figures.share(first.share) + " of the extra delay";
    const std::string rival = !IsTie(analysis.candidates)
                                  ? ""
                                  : " " + analysis.candidates[1].point + " holds nearly as much: " +
                                        figures.share(analysis.candidates[1].share) + ".";
    if (!analysis.NamesItself()) {
        return first.point + " (" + first.graph + ") holds " + share + "." + rival;
    }
    const std::string below = first.share >= MAJORITY ? "nothing below it in this graph explains the delay."
                                                      : "no single point below it explains more.";
    return first.point + " itself holds " + share + ": " + below + rival;
}

// What is told of an event that is within the usual, before it is divided all the same.
std::string WeakAnswer(const Analysis& analysis, const Figures& figures) {
    const Evidence& top = analysis.findings.front().evidence;
    const double usual = *top.baselineDelay;
    const std::string times =
        usual > 0.0 ? Fixed(*top.eventDelay / usual, 1) + " times as slow as usual, " : "";
    const std::string weak =
        analysis.point + " is " + times + Fixed(*top.deviations, 1) + " deviations: within what is usual. ";
    return weak + (*top.excess > 0.0 ? "Divided all the same: " + HolderOf(analysis, figures)
                                     : "There is no extra delay to divide.");
}

// Whether what is divided is a stretch of time that was asked for, and no event that begins and ends.
bool IsWindow(const Analysis& analysis, const Report& report) {
    return analysis.isWeak || report.question.during;
}

}  // namespace

std::string StateOf(const Window& window, bool isOngoing, int64_t zoneOffset) {
    const std::string last = LocalTime(window.end, zoneOffset);
    const bool isSameDay =
        last.compare(0, last.find(' '), LocalTime(window.start, zoneOffset), 0, last.find(' ')) == 0;
    const std::string when = isSameDay ? TimeOfDay(window.end, zoneOffset) : last;
    return isOngoing ? "still going on at " + when : "over since " + when;
}

bool IsTie(const std::vector<Candidate>& candidates) {
    return candidates.size() > 1 && candidates[0].share - candidates[1].share <= CLOSE;
}

std::string AnswerOf(const Analysis& analysis, const Report& report, const Figures& figures) {
    if (analysis.isWeak) {
        return WeakAnswer(analysis, figures);
    }
    switch (analysis.verdict) {
        case Verdict::POINT:
            return HolderOf(analysis, figures) +
                   (analysis.NamesItself() ? "" : " That is " + CertaintyOf(analysis) + ".");
        case Verdict::LOAD:
            return "Load: the requests rose and the delay with them. No point is to blame.";
        case Verdict::NOTHING:
            return AnswerFor(
                report.coverage.IsPart()
                    ? "Nothing anomalous in what was looked at, which is only a part of the range"
                    : "Nothing anomalous",
                *analysis.reason);
        case Verdict::CANNOT_TELL:
            break;
    }
    return AnswerFor("Cannot tell", *analysis.reason);
}

std::string SinceOf(const Analysis& analysis, const Report& report) {
    if (!analysis.event) {
        return {};
    }
    const Event& event = *analysis.event;
    if (IsWindow(analysis, report)) {
        return "The time that was looked at: " + LocalTimes(event.start, event.end, report.zoneOffset) + ".";
    }
    const std::string start = LocalTime(event.start, report.zoneOffset);
    if (IsSingle(event)) {
        return "Slow at " + start + ", in a single sample" +
               (event.isOngoing ? " at the end of what was looked at." : ".");
    }
    return "Slow since " + start + (event.first == 0 ? " or before, where the rows begin, " : ", ") +
           (IsHealed(analysis, report)
                ? "healed: slow until " + TimeOfDay(event.end, report.zoneOffset) + ", usual since"
                : StateOf(event, event.isOngoing, report.zoneOffset)) +
           ".";
}

std::vector<std::string> AdvicesOf(const Analysis& analysis) {
    std::vector<std::string> advices;
    if (analysis.verdict != Verdict::POINT || analysis.isWeak) {
        return advices;
    }
    const std::vector<Candidate>& all = analysis.candidates;
    const bool isOne = all.size() == 1 || all[1].share <= ADVISED;
    for (const Candidate& candidate : all) {
        const bool isFirst = &candidate == &all.front();
        if (!candidate.advice.empty() && (isFirst || candidate.share > ADVISED)) {
            advices.push_back((isOne ? "" : candidate.point + ": ") + candidate.advice);
        }
    }
    return advices;
}

std::string BriefOf(const Analysis& analysis, const Figures& figures) {
    if (analysis.isWeak) {
        return "within the usual";
    }
    if (analysis.verdict != Verdict::POINT) {
        return WordOf(analysis.verdict);
    }
    const Candidate& first = analysis.candidates.front();
    if (analysis.NamesItself()) {
        return first.share >= MAJORITY ? "nothing below it explains it"
                                       : "no single point below it explains it";
    }
    return first.point + " " + figures.share(first.share) + ", " + WordOf(analysis.certainty);
}

std::string BriefTimeOf(const Analysis& analysis, const Report& report) {
    if (!analysis.event) {
        return "no event";
    }
    const Event& event = *analysis.event;
    return event.isOngoing && !IsWindow(analysis, report)
               ? LocalTime(event.start, report.zoneOffset) + ", going on"
               : LocalTimes(event.start, event.end, report.zoneOffset);
}

std::string ModulesOf(const Analysis& analysis, const Figures& figures) {
    std::string text;
    for (const ModuleShare& one : analysis.modules) {
        if (analysis.verdict != Verdict::POINT || one.share < LEAST_TOLD) {
            break;
        }
        text += (text.empty() ? "" : ", ") +
                (one.module.empty() ? std::string(BETWEEN_NODES) : "module " + one.module) + " " +
                figures.share(one.share);
    }
    return text;
}

std::string CertaintyOf(const Analysis& analysis) {
    std::string word = WordOf(analysis.certainty);
    if (analysis.certainty != Certainty::UNSURE) {
        return word;
    }
    return word + (IsSingle(*analysis.event)   ? ": a single sample may be one slow request"
                   : analysis.MayBeElsewhere() ? ": another graph of the point could not be read"
                   : analysis.MayBeBelow()     ? ": a point right below it lacks most rows of the event"
                   : analysis.candidates.front().share < MAJORITY ? ": no point holds half of it"
                                                                  : ": the second is close behind");
}

std::string MarginOf(const std::vector<Candidate>& candidates, const Figures& figures) {
    const double second = candidates.size() > 1 ? candidates[1].share : 0.0;
    return "margin to the second: " + figures.share(candidates.front().share - second);
}

std::string AgreementOf(const Analysis& analysis) {
    return "same point in " + std::to_string(analysis.Agreements()) + " of " +
           std::to_string(analysis.trials.size()) + " baselines";
}

std::string FirstOf(const Trial& trial) {
    return trial.first.value_or("cannot tell");
}

std::string WalkOf(const Analysis& analysis, int64_t zoneOffset) {
    const Walk& walk = *analysis.walk;
    const std::string from = "from " + LocalTimes(walk.window.start, walk.window.end, zoneOffset) + " ";
    if (!walk.point) {
        return from + "has no result";
    }
    std::string names = from + "names " + *walk.point;
    if (analysis.verdict != Verdict::POINT || analysis.isWeak) {
        return names;
    }
    const bool isSecond = IsTie(analysis.candidates) && *walk.point == analysis.candidates[1].point;
    return names + (*walk.point == analysis.candidates.front().point ? ": the two agree"
                    : isSecond                                       ? ": the one that holds nearly as much"
                                                                     : ": the two do not agree");
}

}  // namespace explain

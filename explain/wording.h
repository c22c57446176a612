// Every sentence of the reports, once: text, page and JSON take theirs from here, so that they say the same.
// Names in a sentence are as the configuration has them: whoever shows it makes it harmless.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "explain/finding/series.h"
#include "text/counted.h"     // Counted(), Duration(): whoever writes sentences writes these
#include "text/local_time.h"  // and LocalTime(), ZoneText()

namespace explain {

enum class BaselinePart;
enum class Certainty;
enum class ChangeKind;
enum class Nature;
enum class Verdict;
struct Analysis;
struct Candidate;
struct Change;
struct ErrorEvent;
struct Event;
struct Look;
struct Reason;
struct Report;
struct Trial;
struct Window;

// How a form of the report writes what it measures.
struct Figures {
    std::string (*share)(double);  // of 0 to 1
    std::string (*delay)(double);  // in microseconds
};

// A line of a section: what it is about, in a word, and what there is to say.
struct Fact {
    const char* name;
    std::string sentence;
};
using Facts = std::vector<Fact>;

// ---- words and figures

// The time of day of a local time, as "14:03:00". `zoneOffset` is in seconds east of UTC.
std::string TimeOfDay(int64_t time, int64_t zoneOffset);

// "2023-01-05 12:59:00 to 13:00:00", with the second day where it is another, without the second time where
// it is the same.
std::string LocalTimes(int64_t start, int64_t end, int64_t zoneOffset);

// "over since 13:00:00" or "still going on at 13:00:00", with the day where it is not that of the begin.
std::string StateOf(const Window& window, bool isOngoing, int64_t zoneOffset);

// With so many digits after the point.
std::string Fixed(double value, int decimals);

// A share of 0 to 1 as "84.3 %", and a delay as "1039 us": what a terminal shows.
std::string Percent(double share);
std::string Microseconds(double delay);

// "point", "load", "nothing", "cannot tell"; "device", "load", "usual", "unknown"; "first half".
const char* WordOf(Verdict verdict);
const char* WordOf(Nature nature);
const char* WordOf(BaselinePart part);
const char* WordOf(Certainty certainty);  // "sure", "likely", "unsure"

// What stands for the module of points that wait for other nodes.
constexpr const char* BETWEEN_NODES = "between nodes";

// What the columns of the table of points mean.
constexpr const char* COLUMNS_LEGEND =
    "z: how far the event's samples lie from the usual in the mean, in deviations; r: correlation with the "
    "point above, over the range";

// "14.2 deviations above the usual".
std::string DeviationsOf(double deviations);

// "only 10 samples: three-sigma needs 11 to fire"; with `most`, "only 4 to 10 samples ...", of several
// reasons that differ in their counts.
std::string SentenceOf(const Reason& reason);
std::string SentenceOf(const Reason& reason, size_t most);

// The same of what ended everything; `failed` is what SQLite says of it, empty when it says nothing.
std::string FailureOf(const Reason& reason, const std::string& failed);

// ---- the answer

// Whether the second candidate is hardly behind the first: then none of the two is to blame alone.
bool IsTie(const std::vector<Candidate>& candidates);

// What holds the delay and how sure that is; or why there is no answer.
std::string AnswerOf(const Analysis& analysis, const Report& report, const Figures& figures);

// Since when, and whether it still goes on: "Slow since 2023-01-05 12:58:00, over since 13:00:00." Empty
// without an event.
std::string SinceOf(const Analysis& analysis, const Report& report);

// What the graph advises for each point that holds more than a tenth of the extra delay, the largest first,
// behind the words that lead to it; with the point's name where that is not the one that the answer names
// alone.
constexpr const char* ADVICE_LEAD = "What to do: ";
std::vector<std::string> AdvicesOf(const Analysis& analysis);

// The answer as the line of a list, "BDM_DISK_READ 97.3 %, sure"; and the event's time there.
std::string BriefOf(const Analysis& analysis, const Figures& figures);
std::string BriefTimeOf(const Analysis& analysis, const Report& report);

// "module BDM 62.0 %, between nodes 37.0 %", the largest first; empty where no point is named.
std::string ModulesOf(const Analysis& analysis, const Figures& figures);

// Why the answer is as sure as it is; how far the first candidate is ahead; how many parts of the baseline
// agree. There must be a candidate.
std::string CertaintyOf(const Analysis& analysis);
std::string MarginOf(const std::vector<Candidate>& candidates, const Figures& figures);
std::string AgreementOf(const Analysis& analysis);

// The point that comes first in a trial, or that none can be told.
std::string FirstOf(const Trial& trial);

// The causes that the analyses of one event name, each in another graph: "BDM_DISK_READ 97.3 %, sure"; what
// several name alike, once. Empty without an analysis.
std::string CausesOf(const std::vector<const Analysis*>& analyses, const Figures& figures);

// Whether an analysis has an answer that is a cause: neither the slow point itself nor within the usual.
bool NamesACause(const Analysis& analysis);

// What the plug-in's own walk says beside the answer, with the window that it looked at; its subject is the
// walk.
std::string WalkOf(const Analysis& analysis, int64_t zoneOffset);

// ---- the overview

// A local time in hours and minutes, behind its day where the range has several.
std::string ShortTime(int64_t time, const Report& report);

// The range as a headline has it, "2023-01-05 10:30 to 14:30", behind the node where one is named.
std::string RangeOf(const Report& report);

// Of an event: "12:58 to 13:00", "13:26 to now"; and "until 13:00", "now". What goes on where the newest row
// is not of now was last seen there: "13:26 on" and "still at 14:29". One that begins with the first row is
// "until 11:23" or "since the first row".
struct Span {
    Window window;
    bool isOngoing = false;
    bool isCut = false;  // at its begin: there are no rows before it
};
std::string ShortSpan(const Span& span, const Report& report);
std::string WhetherOver(const Span& span, const Report& report);

// "2.4 times"; "over 9999 times".
std::string TimesOf(double ratio);

// "480 of 480 intervals, newest row 20 s old"; what of the range has no rows, empty when it is covered; and a
// line for each thing that the picture lacks: these rows, a point's delays, the errors, the healings.
std::string NewestOf(const Report& report);
std::string MissingOf(const Report& report);
std::vector<std::string> LacksOf(const Report& report);

// What there is behind the name of a point or type: "has been slow since 13:26, 2.4 times", "was slow 12:58
// to 13:00", "was slow in 8 events, the last 13:24 to 13:27"; `amount` may be empty.
struct Course {
    const char* adjective;  // "slow", "frequent"
    size_t times = 1;
    Span last;
    std::string amount;
    bool isHealed = false;  // by the agent
};
std::string CourseOf(const Course& course, const Report& report);

// That no point was slow, where that can be told, without a stop.
std::string NoneSlow(const Report& report);

// What a type of errors was in the range that has no event; and what a point was.
constexpr const char* AS_USUAL = "as usual";
std::string QuietStateOf(const Look& look, const Report& report);

// Above the rows of points, those of types, what was healed, and the events; and below those that are shown.
constexpr const char* DELAYS_TITLE = "Delay, times the usual";
constexpr const char* ERRORS_TITLE = "Errors";
constexpr const char* HEALED_TITLE = "Healed";
constexpr const char* EVENTS_TITLE = "Events, the newest first";
std::string EarlierEvents(size_t count);

// How many errors an event has: "582 errors".
std::string ErrorsOf(const ErrorEvent& event);

// The healings: "13:02 BDM for IOHANG (DISK_SLOW); 13:03 POOL for IOERR on node 2". Empty without one.
std::string BriefHealingsOf(const Report& report);

// ---- a watch

// What has changed: "TGT_LUMO_HOST_READ slow, 2030 us (2.4 times), BDM_DISK_READ 99 %"; and the same behind
// its time, with the day where that is not the day of `now`.
std::string SentenceOf(const Change& change, int64_t zoneOffset);
std::string LineOf(const Change& change, int64_t now, int64_t zoneOffset);
const char* WordOf(ChangeKind kind);

// How often a watch looks; of when a report is where nothing could be looked at since.
std::string IntervalOf(int64_t seconds);
std::string LastSeenOf(const Report& report);

// Why something could not be looked at just now; `failed` as with FailureOf().
std::string TroubleOf(const Reason& reason, const std::string& failed);

// ---- what it rests on

// Of the event that is explained: when, peak, why the detector is silent, what is usual and by what. Empty
// without an event.
Facts EventFactsOf(const Analysis& analysis, const Report& report, const Figures& figures);

// Delay and load of the slow point beside what is usual; empty where nothing is known of them.
Facts LoadFactsOf(const Analysis& analysis, const Figures& figures);

// The events beside the one that is explained, in the order of time; and of them those that no other analysis
// of the report explains.
std::vector<Event> OthersOf(const Analysis& analysis);
std::vector<Event> OnlyListedOf(const Analysis& analysis, const Report& report);

// That there are such events, behind the last answer of a point; empty behind others, or where there is none.
std::string AlsoListed(const Report& report, size_t position);

// Why the detector is silent on the event that is explained; empty when it is not.
std::string SilenceOf(const Analysis& analysis);

// How many flags of the range would be there by chance, and so what one of them says; empty where there are
// no samples. It concerns the whole range and stands behind all answers.
std::string ChanceOf(const Report& report);

// What the words of an answer mean, each on a line.
std::string GlossaryOf();

// What was looked at: the range, how much of it has rows, and what is missing.
Facts BasisOf(const Report& report);

// The whole answer where no point is slow: an all clear only where the whole range was looked at.
std::string NothingOf(const Report& report);

// How far the point went from the usual: "largest deviation 2.1, 1039 us at 12:59:00"; or
// that it has no rows.
std::string LargestOf(const Look& look, const Report& report, const Figures& figures);

}  // namespace explain

// Every sentence of the reports, once: text, page and JSON take theirs from here. Names in a sentence are as
// the configuration has them: whoever shows it makes it harmless.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "text/counted.h"     // Counted(), Duration(): whoever writes sentences writes these
#include "text/local_time.h"  // and LocalTime(), ZoneText()

namespace explain {

enum class BaselinePart;
enum class Certainty;
enum class Nature;
enum class Verdict;
struct Analysis;
struct Candidate;
struct ChanceFlags;
struct Event;
struct Look;
struct Reason;
struct Report;

// How a form of the report writes a share of 0 to 1.
using ShareFigure = std::string (*)(double);

// The time of day of a local time, as "14:03:00". `zoneOffset` is in seconds east of UTC.
std::string TimeOfDay(int64_t time, int64_t zoneOffset);

// "2023-01-05 12:59:00 to 13:00:00", with the second day where it is another, without the second time where
// it is the same.
std::string LocalTimes(int64_t start, int64_t end, int64_t zoneOffset);

// With so many digits after the point.
std::string Fixed(double value, int decimals);

// A share of 0 to 1 as "84.3 %".
std::string Percent(double share);

// "only 10 samples: three-sigma needs 11 to fire"; with `most`, "only 4 to 10 samples ...", of several
// reasons that differ in their counts.
std::string SentenceOf(const Reason& reason);
std::string SentenceOf(const Reason& reason, size_t most);

// "point", "load", "nothing", "cannot tell"; "device", "load", "usual", "unknown"; "first half".
const char* WordOf(Verdict verdict);
const char* WordOf(Nature nature);
const char* WordOf(BaselinePart part);
const char* WordOf(Certainty certainty);  // "sure", "likely", "unsure"

// What stands for the module of points that wait for other nodes.
constexpr const char* BETWEEN_NODES = "between nodes";

// What stands for the name of a point that could not be told.
constexpr const char* CANNOT_TELL_WHICH = "cannot tell";

// The whole answer where no point is slow: an all clear only where the whole range was looked at.
std::string NothingOf(const Report& report);

// Why the detector is silent on the event that is explained; empty when it is not.
std::string SilenceOf(const Analysis& analysis);

// Whether the event still goes on: "still going on at the last sample", "over".
std::string StateOf(const Event& event);

// The answer in a few sentences.
std::string AnswerOf(const Analysis& analysis, ShareFigure figure);

// "14.2 deviations above the usual".
std::string DeviationsOf(double deviations);

// What the delay at equal load says; what the nature of a delay means.
std::string EqualLoadOf(const std::optional<double>& ratio);
std::string MeaningOf(Nature nature);

// How sure the order of the candidates is, of which there must be one: how far the first is ahead; how many
// parts of the baseline agree.
std::string MarginOf(const std::vector<Candidate>& candidates, ShareFigure figure);
std::string AgreementOf(const Analysis& analysis);

// "module BDM 62.0 %, between nodes 37.0 %", the largest first.
std::string ModulesOf(const Analysis& analysis, ShareFigure figure);

// What the plug-in's own walk says beside the answer, with the window that it looked at; its subject is the
// walk.
std::string WalkOf(const Analysis& analysis, int64_t zoneOffset);

// What an answer rests on: "480 of 480 intervals, 190 of 190 points, newest row 14:29:30 (20 s old)".
std::string BasisOf(const Report& report);

// How far the point went from the usual: "largest deviation 2.1, 1039 us at 12:59:00"; or that it has no
// rows.
std::string LargestOf(const Look& look, int64_t zoneOffset);

// How many samples are flagged, and how many would be by chance.
std::string ChanceOf(const ChanceFlags& flags);

}  // namespace explain
